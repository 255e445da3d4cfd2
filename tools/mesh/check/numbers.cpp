#include "mesh/check/numbers.hpp"

#include <sstream>

namespace tools::check {

namespace {

std::string text_of(double value, int digits) {
  std::ostringstream text;
  text.precision(digits);
  text << value;
  return text.str();
}

}  // namespace

std::string number(double value) { return text_of(value, 6); }

std::string rounded(double value) { return text_of(value, 3); }

std::string coordinate(double value) { return text_of(value, 12); }

std::string point(double x, double y) { return "(" + coordinate(x) + ", " + coordinate(y) + ")"; }

}  // namespace tools::check
