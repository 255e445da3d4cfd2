#include "utils/ExactSum.hpp"

#include <bit>
#include <cmath>
#include <limits>

#include "utils/bytes.hpp"

namespace utils {

namespace {

constexpr int mantissa_bits = 52;
constexpr int exponent_of_ones = 0x7ff;  // of infinities and what is no number
constexpr int most_between_carries = 1 << 30;
constexpr std::uint64_t digit_mask = 0xffffffff;

constexpr std::size_t at(int i) { return static_cast<std::size_t>(i); }

}  // namespace

void ExactSum::add(double value) {
  const auto bits = std::bit_cast<std::uint64_t>(value);
  const int exponent = static_cast<int>(bits >> mantissa_bits) & exponent_of_ones;
  std::uint64_t mantissa = bits & ((std::uint64_t{1} << mantissa_bits) - 1);
  if (exponent == exponent_of_ones) {
    (mantissa != 0 ? has_nan_ : value > 0.0 ? has_infinity_ : has_minus_infinity_) = true;
    return;
  }
  if (exponent > 0) mantissa |= std::uint64_t{1} << mantissa_bits;
  const int lowest_bit = exponent > 0 ? exponent - 1 : 0;
  const int shift = lowest_bit % bits_per_digit;
  // Up to 85 bits over three digits; a shift by 64 would be none.
  const std::uint64_t low = mantissa << shift;
  const std::uint64_t high = shift > 0 ? mantissa >> (64 - shift) : 0;
  const std::int64_t sign = value < 0.0 ? -1 : 1;
  std::int64_t* const digit = &digits_[at(lowest_bit / bits_per_digit)];
  digit[0] += sign * static_cast<std::int64_t>(low & digit_mask);
  digit[1] += sign * static_cast<std::int64_t>(low >> bits_per_digit);
  digit[2] += sign * static_cast<std::int64_t>(high);
  if (++since_carry_ == most_between_carries) carry();
}

void ExactSum::add(const ExactSum& other) {
  ExactSum carried = other;
  carried.carry();
  carry();
  for (int i = 0; i < count; ++i) digits_[at(i)] += carried.digits_[at(i)];
  carry();
  has_nan_ |= other.has_nan_;
  has_infinity_ |= other.has_infinity_;
  has_minus_infinity_ |= other.has_minus_infinity_;
}

void ExactSum::carry() {
  std::int64_t carried = 0;
  for (int i = 0; i + 1 < count; ++i) {
    const std::int64_t digit = digits_[at(i)] + carried;
    carried = digit >> bits_per_digit;  // towards minus infinity
    digits_[at(i)] = static_cast<std::int64_t>(static_cast<std::uint64_t>(digit) & digit_mask);
  }
  digits_[at(count - 1)] += carried;
  since_carry_ = 0;
}

void ExactSum::require_carried() const {
  constexpr std::int64_t most = std::int64_t{1} << 62;
  for (std::size_t i = 0; i < digits_.size(); ++i) {
    const bool is_highest = i + 1 == digits_.size();
    const std::int64_t digit = digits_[i];
    const bool fits = is_highest ? -most < digit && digit < most
                                 : 0 <= digit && digit <= static_cast<std::int64_t>(digit_mask);
    if (!fits) throw BadBytes();
  }
}

double ExactSum::value() const {
  if (has_nan_ || (has_infinity_ && has_minus_infinity_)) {
    return std::numeric_limits<double>::quiet_NaN();
  }
  if (has_infinity_) return std::numeric_limits<double>::infinity();
  if (has_minus_infinity_) return -std::numeric_limits<double>::infinity();
  ExactSum size = *this;
  size.carry();
  const bool is_negative = size.digits_.back() < 0;
  if (is_negative) {
    for (std::int64_t& digit : size.digits_) digit = -digit;
    size.carry();
  }
  const double magnitude = rounded(size.digits_);
  return is_negative ? -magnitude : magnitude;
}

double ExactSum::rounded(const Digits& magnitude) {
  int top = count - 1;
  while (top >= 0 && magnitude[at(top)] == 0) --top;
  if (top < 0) return 0.0;
  const auto bit = [&](int i) {
    return (magnitude[at(i / bits_per_digit)] >> (i % bits_per_digit)) & 1;
  };
  const int highest =
      top * bits_per_digit +
      static_cast<int>(std::bit_width(static_cast<std::uint64_t>(magnitude[at(top)]))) - 1;
  const int lowest = highest > mantissa_bits ? highest - mantissa_bits : 0;  // that a double holds
  std::int64_t mantissa = 0;
  for (int i = highest; i >= lowest; --i) mantissa = 2 * mantissa + bit(i);
  const bool is_half_or_more = lowest > 0 && bit(lowest - 1) != 0;
  bool is_more_than_half = false;
  for (int i = lowest - 2; i >= 0 && !is_more_than_half; --i) is_more_than_half = bit(i) != 0;
  if (is_half_or_more && (is_more_than_half || mantissa % 2 != 0)) ++mantissa;
  constexpr int exponent_of_lowest_bit = -1074;
  return std::ldexp(static_cast<double>(mantissa), lowest + exponent_of_lowest_bit);
}

}  // namespace utils
