// Numbers as text, the same in every locale: a point before the decimals, nothing between
// thousands.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace utils {

/// A number as a stream writes it by default, to a number of significant digits.
std::string number_text(double value, int digits = 6);

/// A number with all its decimals, as in "12.50".
std::string fixed_text(double value, int decimals);

/// Digits that a number of an input file needs: a micrometre in projected coordinates, and no noise
/// of rounding.
inline constexpr int input_digits = 12;

/// A finite number with `input_digits`, or as many more as it takes to read back to the same bits.
std::string exact_text(double value);

/// Whether the text is a number, "inf" and "nan" included; `value` receives it. A number that is
/// too large for a double is none, one that is too small is 0.
bool parse_number(std::string_view text, double& value);

/// The finite number that a text is, as input files hold them; none if it is something else.
std::optional<double> parse_finite_number(std::string_view text);

/// The integer that a text is, if it fits the type: int or long long.
template <class Integer>
std::optional<Integer> parse_integer(std::string_view text);

/// The printable start of a text in quotes, for messages that say what was found.
std::string quoted_start(std::string_view text);

}  // namespace utils
