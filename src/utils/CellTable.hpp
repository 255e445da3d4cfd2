// A result table with a row per cell, which begins with the cell's centre.
#pragma once

#include <string>
#include <string_view>

#include "utils/OutputFile.hpp"

namespace utils {

/// Projected coordinates keep their millimetres: a row whose x is 1000 m or more (in size) writes
/// its centre with three decimals; everything else has six significant digits.
class CellTable {
 public:
  CellTable(const std::string& name, std::string_view header);

  /// Starts a row; the coordinates of the centre go into the buffer returned.
  TextBuffer& begin_row(double x);
  /// Ends the centre; the values go into the buffer returned.
  TextBuffer& begin_values();
  void end_row();
  /// Puts the complete file in its place.
  void commit() { file_.commit(text_); }

 private:
  WholeFile file_;
  TextBuffer text_;
};

}  // namespace utils
