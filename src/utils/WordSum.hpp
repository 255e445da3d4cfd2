// A checksum of bytes at their places, four by four, for damage and not against intent: what comes
// in pieces, in any order, has the sum of the whole. A change of one word always shows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "utils/mixed_bits.hpp"

namespace utils {

class WordSum {
 public:
  static constexpr std::size_t word = 4;  ///< bytes

  /// Whole words, from the one with a number on.
  void add(std::uint64_t first, const char* bytes, std::size_t count) {
    std::uint64_t key = (first + 1) * odd_of_golden_ratio, sum = sum_;  // copies, for registers
    for (std::size_t i = 0; i < count; i += word) {
      std::uint32_t bits = 0;
      std::memcpy(&bits, bytes + i, word);
      sum += (std::uint64_t{bits} + 1) * ((key >> 32) | 1);
      key += odd_of_golden_ratio;
    }
    sum_ = sum;
  }
  std::uint64_t value() const { return sum_; }

 private:
  std::uint64_t sum_ = 0;
};

}  // namespace utils
