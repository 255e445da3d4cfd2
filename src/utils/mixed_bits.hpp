// Bits of a number spread over all of another one, as checksums need it.
#pragma once

#include <cstdint>

namespace utils {

/// The finaliser of splitmix64: Steele, Lea and Flood (2014), OOPSLA. No two numbers have the same.
constexpr std::uint64_t mixed_bits(std::uint64_t x) {
  x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9U;
  x = (x ^ (x >> 27)) * 0x94D049BB133111EBU;
  return x ^ (x >> 31);
}

/// 2^64 over the golden ratio.
inline constexpr std::uint64_t odd_of_golden_ratio = 0x9E3779B97F4A7C15U;

}  // namespace utils
