#include "utils/CellTable.hpp"

#include <cmath>

namespace utils {

CellTable::CellTable(const std::string& name, std::string_view header) : file_(name) {
  text_ << header;
}

TextBuffer& CellTable::begin_row(double x) {
  // Intended: x alone decides for the whole centre. The logarithm of what is nearly 1000 is 3.
  const double size = std::fabs(x);
  if (size >= 1000.0 || (size > 999.0 && std::log10(size) >= 3.0)) text_.use_fixed_notation();
  return text_;
}

TextBuffer& CellTable::begin_values() {
  text_.use_default_notation();
  return text_;
}

void CellTable::end_row() {
  text_ << '\n';
  file_.drain(text_);
}

}  // namespace utils
