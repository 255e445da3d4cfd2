// A checksum of bytes at their places, four by four, for damage and not against intent: what comes
// in pieces, in any order, has the sum of the whole. A change of one word always shows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace utils {

class WordSum {
 public:
  static constexpr std::size_t word = 4;  ///< bytes

  /// Whole words, from the one with a number on.
  void add(std::uint64_t first, const char* bytes, std::size_t count) {
    auto key = static_cast<std::uint32_t>(first + 1) * odd;
    std::uint64_t sum = sum_;  // a copy, which stays in registers
    for (std::size_t i = 0; i < count; i += word) {
      std::uint32_t bits = 0;
      std::memcpy(&bits, bytes + i, word);
      sum += (std::uint64_t{bits} + 1) * (key | 1);  // of 32 bits each, as vectors multiply
      key += odd;
    }
    sum_ = sum;
  }
  std::uint64_t value() const { return sum_; }

 private:
  static constexpr std::uint32_t odd = 0x9E3779B1U;  ///< a prime beside 2^32 over the golden ratio

  std::uint64_t sum_ = 0;
};

}  // namespace utils
