// A checksum of 64 bits, for damage and not against intent: eight lanes that take 64 bytes at a
// time, each word by odd factors, a rotation and an exclusive or. Every step can be undone, so that
// a change within one word always shows.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <vector>

#include "utils/mixed_bits.hpp"

namespace utils {

class Checksum {
 public:
  /// Sums of different seeds have nothing in common.
  explicit Checksum(std::uint64_t seed = 0) {
    for (std::size_t k = 0; k < lanes_.size(); ++k) lanes_[k] = mixed_bits(seed + (k + 1) * odd);
  }

  void add(const void* bytes, std::size_t count) {
    if (count == 0) return;  // of nothing there may be no address
    const auto* next = static_cast<const unsigned char*>(bytes);
    count_ += count;
    if (held_ > 0) {
      const std::size_t taken = std::min(count, stripe_.size() - held_);
      std::memcpy(stripe_.data() + held_, next, taken);
      held_ += taken;
      next += taken;
      count -= taken;
      if (held_ < stripe_.size()) return;
      add_stripe(stripe_.data(), lanes_);
      held_ = 0;
    }
    Lanes lanes = lanes_;  // a copy, which stays in registers
    for (; count >= stripe_.size(); count -= stripe_.size(), next += stripe_.size()) {
      add_stripe(next, lanes);
    }
    lanes_ = lanes;
    if (count > 0) std::memcpy(stripe_.data(), next, count);
    held_ = count;
  }

  /// How many there are, and their bytes. Values may have no padding.
  template <class Value>
  void add_values(const std::vector<Value>& values) {
    static_assert(std::has_unique_object_representations_v<Value> ||
                  std::is_floating_point_v<Value>);
    const std::uint64_t size = values.size();
    add(&size, sizeof size);
    add(values.data(), values.size() * sizeof(Value));
  }

  /// Of all bytes so far.
  std::uint64_t value() const {
    Lanes lanes = lanes_;
    if (held_ > 0) {
      std::array<unsigned char, stripe_size> rest{};
      std::memcpy(rest.data(), stripe_.data(), held_);
      add_stripe(rest.data(), lanes);
    }
    std::uint64_t sum = mixed_bits(count_);
    for (const std::uint64_t lane : lanes) sum = (std::rotl(sum, 5) ^ mixed_bits(lane)) * odd;
    return mixed_bits(sum);
  }

 private:
  static constexpr std::size_t stripe_size = 64;
  static constexpr std::uint64_t odd = odd_of_golden_ratio;
  static constexpr std::uint64_t other_odd = 0xB504F333F9DE6485U;  ///< 2^63 times the root of 2
  using Lanes = std::array<std::uint64_t, stripe_size / 8>;

  static void add_stripe(const unsigned char* bytes, Lanes& lanes) {
    for (std::size_t k = 0; k < lanes.size(); ++k) {
      std::uint64_t word = 0;
      std::memcpy(&word, bytes + 8 * k, sizeof word);
      lanes[k] = (std::rotl(lanes[k], 27) ^ (word * odd)) * other_odd;
    }
  }
  Lanes lanes_{};
  std::array<unsigned char, stripe_size> stripe_{};  ///< bytes that fill no stripe yet
  std::size_t held_ = 0;                             ///< of them
  std::uint64_t count_ = 0;
};

}  // namespace utils
