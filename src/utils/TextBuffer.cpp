#include "utils/TextBuffer.hpp"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <new>

namespace utils {

namespace {

// Most values are written through an integer that holds their digits: the value is scaled by an
// exact power of ten, with one rounding, and rounded to an integer. Whatever lies too close to the
// middle between two integers for that to be certain, and what is very large or very small, is left
// to std::to_chars, which is exact and several times slower.

constexpr std::size_t longest_number = 320;  // -1.8e308 with three decimals takes 314 characters
constexpr double doubtful =
    1e-3;  // distance from the middle; scaled values are wrong by 2e-4 at most

constexpr int smallest_exponent = -16;
constexpr double powers_of_ten[] = {
    1e-16, 1e-15, 1e-14, 1e-13, 1e-12, 1e-11, 1e-10, 1e-9, 1e-8, 1e-7, 1e-6, 1e-5, 1e-4,
    1e-3,  1e-2,  1e-1,  1e0,   1e1,   1e2,   1e3,   1e4,  1e5,  1e6,  1e7,  1e8,  1e9,
    1e10,  1e11,  1e12,  1e13,  1e14,  1e15,  1e16,  1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr double power_of_ten(int exponent) { return powers_of_ten[exponent - smallest_exponent]; }

/// Rounds a positive value to an integer; false if its fraction is too close to one half.
bool round_surely(double value, std::int64_t& rounded) {
  const auto whole = static_cast<std::int64_t>(value);
  const double fraction = value - static_cast<double>(whole);
  rounded = whole + (fraction > 0.5 ? 1 : 0);
  return std::fabs(fraction - 0.5) > doubtful;
}

/// Writes an integer with a given number of digits.
template <int digits>
void write_digits(char* out, std::int64_t value) {
  auto rest = static_cast<std::uint32_t>(value);
  for (int i = digits - 1; i >= 0; --i) {
    out[i] = static_cast<char>('0' + rest % 10);
    rest /= 10;
  }
}

/// Three decimals; null if the value is left to std::to_chars.
char* write_fixed(char* out, double value) {
  constexpr double too_large = 1e9;
  const double size = std::fabs(value);
  std::int64_t thousandths;
  if (!(size < too_large) || !round_surely(1000.0 * size, thousandths)) return nullptr;
  if (std::signbit(value)) *out++ = '-';
  out = std::to_chars(out, out + longest_number, thousandths / 1000).ptr;
  *out++ = '.';
  write_digits<3>(out, thousandths % 1000);
  return out + 3;
}

/// The decimal exponent of a positive value within the powers of ten above.
int decimal_exponent(double value) {
  const auto exponent = static_cast<int>(std::bit_cast<std::uint64_t>(value) >> 52) - 1023;
  const int low = (exponent * 1233) >> 12;  // log10(2) = 1233/4096, near enough for this range
  return value >= power_of_ten(low + 1) ? low + 1 : low;
}

/// Six significant digits; null if the value is left to std::to_chars.
char* write_general(char* out, double value) {
  constexpr int significant = 6;
  const double size = std::fabs(value);
  if (size == 0.0) {
    if (std::signbit(value)) *out++ = '-';
    *out++ = '0';
    return out;
  }
  if (!(size >= 2e-16 && size < 1e21)) return nullptr;
  int exponent = decimal_exponent(size);
  const int shift = significant - 1 - exponent;
  const double scaled = shift >= 0 ? size * power_of_ten(shift) : size / power_of_ten(-shift);
  std::int64_t rounded;
  if (!round_surely(scaled, rounded)) return nullptr;
  if (rounded == 1000000) {
    rounded = 100000;
    ++exponent;
  }
  char digits[significant];
  write_digits<significant>(digits, rounded);
  int shown = significant;
  while (digits[shown - 1] == '0') --shown;

  if (std::signbit(value)) *out++ = '-';
  if (exponent < -4 || exponent >= significant) {
    *out++ = digits[0];
    if (shown > 1) *out++ = '.';
    for (int i = 1; i < shown; ++i) *out++ = digits[i];
    *out++ = 'e';
    *out++ = exponent < 0 ? '-' : '+';
    write_digits<2>(out, std::abs(exponent));
    return out + 2;
  }
  if (exponent < 0) {
    *out++ = '0';
    *out++ = '.';
    for (int i = exponent + 1; i < 0; ++i) *out++ = '0';
    std::memcpy(out, digits, significant);
    return out + shown;
  }
  const int before_point = exponent + 1;
  std::memcpy(out, digits, significant);
  if (shown <= before_point) return out + before_point;
  out[before_point] = '.';
  std::memcpy(out + before_point + 1, digits + before_point,
              static_cast<std::size_t>(significant - before_point));
  return out + shown + 1;
}

}  // namespace

// A long text moves without a second copy, and what is never written is never taken.
void TextBuffer::grow(std::size_t characters) {
  const std::size_t room = 2 * room_ + characters;
  void* const larger = std::realloc(memory_.get(), room);
  if (larger == nullptr) {
    if (const std::new_handler missing = std::get_new_handler()) missing();
    throw std::bad_alloc();
  }
  static_cast<void>(memory_.release());
  memory_.reset(static_cast<char*>(larger));
  room_ = room;
}

TextBuffer& TextBuffer::operator<<(double value) {
  make_room(longest_number);
  char* const begin = memory_.get() + size_;
  char* end = fixed_ ? write_fixed(begin, value) : write_general(begin, value);
  if (end == nullptr) {
    const auto notation = fixed_ ? std::chars_format::fixed : std::chars_format::general;
    end = std::to_chars(begin, begin + longest_number, value, notation, fixed_ ? 3 : 6).ptr;
  }
  size_ += static_cast<std::size_t>(end - begin);
  return *this;
}

}  // namespace utils
