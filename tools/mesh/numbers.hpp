// Numbers in the files and messages of a case.
#pragma once

#include <charconv>
#include <cmath>
#include <optional>
#include <string>
#include <string_view>

namespace mesh_import {

/// Twelve significant digits: a micrometre in projected coordinates, and no noise of rounding.
constexpr int significant_digits = 12;

inline void append_number(std::string& text, double value) {
  char digits[40];
  const auto end = std::to_chars(digits, digits + sizeof digits, value + 0.0,  // no "-0"
                                 std::chars_format::general, significant_digits);
  text.append(digits, end.ptr);
}

inline void append_integer(std::string& text, int value) {
  char digits[16];
  text.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

/// A number for a message, with six significant digits.
inline std::string shown(double value) {
  char digits[40];
  const auto end =
      std::to_chars(digits, digits + sizeof digits, value + 0.0, std::chars_format::general, 6);
  return std::string(digits, end.ptr);
}

/// A point for a message, to the millimetre.
inline std::string shown_point(double x, double y) {
  const auto fixed = [](double value) {
    char digits[400];
    const auto end =
        std::to_chars(digits, digits + sizeof digits, value + 0.0, std::chars_format::fixed, 3);
    return std::string(digits, end.ptr);
  };
  return "(" + fixed(x) + ", " + fixed(y) + ")";
}

/// The finite number that the whole text spells, if it does.
inline std::optional<double> parse_number(std::string_view text) {
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  double value = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) {
    return std::nullopt;
  }
  return value;
}

/// The value that a case file will hold.
inline double as_written(double value) {
  std::string text;
  append_number(text, value);
  return parse_number(text).value_or(value);
}

}  // namespace mesh_import
