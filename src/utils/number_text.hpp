// Numbers as text, the same in every locale: a point before the decimals, nothing between
// thousands.
#pragma once

#include <string>
#include <string_view>

namespace utils {

/// A number as a stream writes it by default, to a number of significant digits.
std::string number_text(double value, int digits = 6);

/// A number with all its decimals, as in "12.50".
std::string fixed_text(double value, int decimals);

/// Whether the text is a number, "inf" and "nan" included; `value` receives it. A number that is
/// too large for a double is none, one that is too small is 0.
bool parse_number(std::string_view text, double& value);

/// The text without a leading "+", which is a sign to formatted extraction, but not to from_chars.
std::string_view without_plus(std::string_view text);

/// Whether the text is a finite number, as input files hold them; `value` receives it.
bool parse_finite_number(std::string_view text, double& value);

}  // namespace utils
