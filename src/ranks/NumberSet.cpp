#include "ranks/NumberSet.hpp"

#include "engine/aligned_vector.hpp"

namespace ranks {

using cases::Number;
using engine::at;

NumberSet::NumberSet(std::initializer_list<std::span<const Number>> columns) {
  for (const std::span<const Number> column : columns) {
    for (const Number number : column) {
      if (number >= 0) insert(number);
    }
  }
  count();
}

void NumberSet::insert(Number number) {
  const std::size_t k = page_number(number);
  if (k >= page_of_.size()) page_of_.resize(k + 1, -1);
  if (page_of_[k] < 0) {
    page_of_[k] = static_cast<Number>(pages_.size());
    pages_.emplace_back();
  }
  pages_[at(page_of_[k])].bits[word_of(number)] |= bit_of(number);
}

void NumberSet::count() {
  for (const Number k : page_of_) {
    if (k < 0) continue;
    Page& page = pages_[at(k)];
    page.before = static_cast<Number>(size_);
    int in_page = 0;
    for (std::size_t word = 0; word < words; ++word) {
      page.before_word[word] = static_cast<std::uint16_t>(in_page);
      in_page += std::popcount(page.bits[word]);
    }
    size_ += at(in_page);
  }
}

std::vector<Number> NumberSet::numbers() const {
  std::vector<Number> numbers;
  numbers.reserve(size_);
  for (std::size_t k = 0; k < page_of_.size(); ++k) {
    if (page_of_[k] < 0) continue;
    const Page& page = pages_[at(page_of_[k])];
    for (std::size_t word = 0; word < words; ++word) {
      const std::size_t first = 64 * (words * k + word);
      for (std::uint64_t bits = page.bits[word]; bits != 0; bits &= bits - 1) {
        numbers.push_back(static_cast<Number>(first) + std::countr_zero(bits));
      }
    }
  }
  return numbers;
}

}  // namespace ranks
