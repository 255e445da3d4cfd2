// How messages name a cell.
#pragma once

#include <string>

#include "utils/number_text.hpp"

namespace utils {

/// Its number and its centre (m): "7 (counted from 0), centre (1.5, 2) m".
inline std::string cell_place(int cell, double x, double y) {
  constexpr int digits = 12;
  return std::to_string(cell) + " (counted from 0), centre (" + number_text(x, digits) + ", " +
         number_text(y, digits) + ") m";
}

}  // namespace utils
