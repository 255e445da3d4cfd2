#include "mesh/check/numbers.hpp"

#include "utils/number_text.hpp"

namespace tools::check {

std::string number(double value) { return utils::number_text(value, 6); }

std::string rounded(double value) { return utils::number_text(value, 3); }

std::string coordinate(double value) { return utils::number_text(value, 12); }

std::string point(double x, double y) { return "(" + coordinate(x) + ", " + coordinate(y) + ")"; }

}  // namespace tools::check
