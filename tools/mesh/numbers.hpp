// Numbers in the files and messages of an imported case; none is "-0".
#pragma once

#include <string>
#include <vector>

#include "utils/number_text.hpp"

namespace mesh_import {

/// A number for a message, with six significant digits.
inline std::string shown(double value) { return utils::number_text(value + 0.0); }

/// A coordinate for a message, with as many digits as it may have before the millimetre.
inline std::string shown_coordinate(double value) { return utils::number_text(value + 0.0, 12); }

/// A point for a message, to the millimetre.
inline std::string shown_point(double x, double y) {
  return "(" + utils::fixed_text(x + 0.0, 3) + ", " + utils::fixed_text(y + 0.0, 3) + ")";
}

/// The value that a case file will hold.
inline double as_written(double value) {
  return utils::parse_finite_number(utils::number_text(value + 0.0, utils::input_digits))
      .value_or(value);
}

inline std::vector<double> all_as_written(std::vector<double> values) {
  for (double& value : values) value = as_written(value);
  return values;
}

}  // namespace mesh_import
