// Distinct numbers of cells or nodes, and where each stands among them: found without a search.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <vector>

#include "case/Mesh.hpp"

namespace ranks {

/// Takes up to 12 bytes for every 64 numbers between the least and the largest of a neighbourhood,
/// and next to nothing for those of which it holds none nearby. That is little where what lies
/// together has near numbers, as mesh generators give them; a number alone takes 92 bytes, for as
/// long as a case is read.
class NumberSet {
 public:
  NumberSet() = default;
  /// All that stand in some columns; numbers below 0 stand for nothing.
  explicit NumberSet(std::initializer_list<std::span<const cases::Number>> columns);

  std::size_t size() const { return size_; }
  /// Ascending.
  std::vector<cases::Number> numbers() const;
  /// How many smaller ones there are than one that it holds.
  cases::Number place_of(cases::Number number) const {
    const Page& page = pages_[cases::at(page_of_[page_number(number)])];
    const std::size_t word = word_of(number);
    const std::uint64_t smaller = page.bits[word] & (bit_of(number) - 1);
    return page.before + page.before_word[word] + std::popcount(smaller);
  }

 private:
  static constexpr std::size_t words = 8;  ///< of a page
  /// Marks of 512 numbers that follow each other.
  struct Page {
    std::array<std::uint64_t, words> bits{};
    std::array<std::uint16_t, words> before_word{};  ///< numbers of the page before each word
    cases::Number before = 0;                        ///< numbers before the page
  };

  static std::size_t page_number(cases::Number number) { return cases::at(number) / (64 * words); }
  static std::size_t word_of(cases::Number number) { return cases::at(number) / 64 % words; }
  static std::uint64_t bit_of(cases::Number number) {
    return std::uint64_t{1} << (cases::at(number) % 64);
  }

  void insert(cases::Number number);
  void count();

  std::vector<cases::Number> page_of_;  ///< place in pages_; -1: none
  std::vector<Page> pages_;
  std::size_t size_ = 0;
};

}  // namespace ranks
