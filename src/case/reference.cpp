#include "case/reference.hpp"

#include <algorithm>
#include <chrono>
#include <string_view>

#include "utils/number_text.hpp"

namespace cases {

namespace {

/// The number that the digits of a text write from a place on.
int number_at(std::string_view text, std::size_t begin, std::size_t digits) {
  int number = 0;
  for (const char c : text.substr(begin, digits)) number = 10 * number + (c - '0');
  return number;
}

}  // namespace

std::optional<int> epsg_of(const std::string& text) {
  constexpr std::size_t prefix = 5, most_digits = 8;
  const bool has_prefix = text.starts_with("EPSG:") || text.starts_with("epsg:");
  if (!has_prefix || text.size() > prefix + most_digits) return std::nullopt;
  const auto code = utils::parse_integer<int>(std::string_view(text).substr(prefix));
  return code && *code > 0 ? code : std::nullopt;
}

std::optional<std::string> epoch_of(const std::string& text) {
  std::string shape = text;
  std::replace_if(
      shape.begin(), shape.end(), [](char c) { return c >= '0' && c <= '9'; }, '0');
  if (shape != "0000-00-00T00:00:00Z" && shape != "0000-00-00 00:00:00") return std::nullopt;
  using namespace std::chrono;
  const year_month_day date{year(number_at(text, 0, 4)),
                            month(static_cast<unsigned>(number_at(text, 5, 2))),
                            day(static_cast<unsigned>(number_at(text, 8, 2)))};
  const int hour = number_at(text, 11, 2), minute = number_at(text, 14, 2);
  const int second = number_at(text, 17, 2);
  if (!date.ok() || hour > 23 || minute > 59 || second > 59) return std::nullopt;
  return text.substr(0, 10) + " " + text.substr(11, 8);
}

}  // namespace cases
