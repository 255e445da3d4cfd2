#include "utils/number_text.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <locale>
#include <sstream>

namespace utils {

namespace {

template <class... Format>
std::string text_of(double value, Format... format) {
  std::array<char, 400> text;  // 309 digits before the point, and what comes behind it
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value, format...).ptr;
  return std::string(text.data(), end);
}

/// Without a leading "+", which is a sign to formatted extraction, but not to from_chars.
std::string_view without_plus(std::string_view text) {
  const bool signed_twice = text.size() > 1 && text[1] == '-';
  return !text.empty() && text.front() == '+' && !signed_twice ? text.substr(1) : text;
}

}  // namespace

std::string number_text(double value, int digits) {
  return text_of(value, std::chars_format::general, digits);
}

std::string fixed_text(double value, int decimals) {
  return text_of(value, std::chars_format::fixed, decimals);
}

std::string exact_text(double value) {
  constexpr int most_digits = 17;  // with which every number reads back
  double read = 0.0;
  for (int digits = input_digits; digits < most_digits; ++digits) {
    std::string text = number_text(value, digits);
    if (parse_number(text, read) && read == value) return text;
  }
  return number_text(value, most_digits);
}

bool parse_number(std::string_view text, double& value) {
  const char* const last = text.data() + text.size();
  const auto [end, error] = std::from_chars(text.data(), last, value);
  if (end != last) return false;
  if (error != std::errc::result_out_of_range) return error == std::errc();
  // Streams tell what is too small, which is 0, from what is too large, which fails.
  std::istringstream stream{std::string(text)};
  stream.imbue(std::locale::classic());
  return static_cast<bool>(stream >> value);
}

std::optional<double> parse_finite_number(std::string_view text) {
  double value = 0.0;
  if (!parse_number(without_plus(text), value) || !std::isfinite(value)) return {};
  return value;
}

template <class Integer>
std::optional<Integer> parse_integer(std::string_view text) {
  const std::string_view digits = without_plus(text);
  Integer value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (error != std::errc() || end != digits.data() + digits.size()) return {};
  return value;
}
template std::optional<int> parse_integer<int>(std::string_view);
template std::optional<long long> parse_integer<long long>(std::string_view);

std::string quoted_start(std::string_view text) {
  constexpr std::size_t shown = 40;
  std::string quoted = "\"";
  for (const char c : text.substr(0, shown)) quoted += c >= ' ' && c != 127 ? c : '?';
  return quoted + (text.size() > shown ? "...\"" : "\"");
}

}  // namespace utils
