// Numbers as texts.
#pragma once

#include <string>

namespace tools::check {

/// Six significant digits, as result files have.
std::string number(double value);
/// Three significant digits, for what is estimated or measured.
std::string rounded(double value);
/// A projected coordinate with its millimetres.
std::string coordinate(double value);
/// "(12.5, 480)".
std::string point(double x, double y);

}  // namespace tools::check
