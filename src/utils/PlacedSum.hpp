// A checksum of values at places, for damage and not against intent: parts that hold some of the
// places add up to the sum of the whole, in any order. A change at one place always shows.
#pragma once

#include <bit>
#include <cstdint>
#include <span>
#include <type_traits>

#include "utils/mixed_bits.hpp"

namespace utils {

class PlacedSum {
 public:
  /// Sums of different columns have nothing in common.
  explicit PlacedSum(std::uint64_t column = 0) : seed_(mixed_bits(column * odd_of_golden_ratio)) {}

  /// What stands at a place: one value or more, each with a fixed number of bits.
  template <class... Values>
  void add(std::uint64_t place, const Values&... values) {
    std::uint64_t bits = key_of(place);
    ((bits = mixed_bits(bits ^ bits_of(values))), ...);
    sum_ += bits;
  }
  /// Any number of values at a place.
  template <class Value>
  void add_list(std::uint64_t place, std::span<const Value> values) {
    std::uint64_t bits = mixed_bits(key_of(place) ^ values.size());
    for (const Value& value : values) bits = mixed_bits(bits ^ bits_of(value));
    sum_ += bits;
  }
  /// A column whose first value stands at a place.
  template <class Value>
  void add_column(std::uint64_t first, std::span<const Value> values) {
    for (const Value& value : values) add(first++, value);
  }

  std::uint64_t value() const { return sum_; }

 private:
  std::uint64_t key_of(std::uint64_t place) const {
    return seed_ + (place + 1) * odd_of_golden_ratio;
  }
  template <class Value>
  static std::uint64_t bits_of(Value value) {
    static_assert(std::is_arithmetic_v<Value>);
    if constexpr (std::is_same_v<Value, double>) {
      return std::bit_cast<std::uint64_t>(value);
    } else if constexpr (std::is_same_v<Value, float>) {
      return std::bit_cast<std::uint32_t>(value);
    } else {
      return static_cast<std::uint64_t>(value);
    }
  }

  std::uint64_t seed_;
  std::uint64_t sum_ = 0;
};

}  // namespace utils
