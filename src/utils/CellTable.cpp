#include "utils/CellTable.hpp"

#include <cmath>

namespace utils {

CellTable::CellTable(const std::string& name, std::string_view header, Bed bed)
    : file_(name), bed_(bed) {
  text_ << header;
}

void CellTable::add_row(double x, double y, double z, std::span<const double> values) {
  put_row(text_, bed_, x, y, z, values);
  file_.drain(text_);
}

void CellTable::add_rows(std::string_view rows) {
  text_ << rows;
  file_.drain(text_);
}

void put_row(TextBuffer& text, CellTable::Bed bed, double x, double y, double z,
             std::span<const double> values) {
  // Intended: x alone decides for the whole centre. The logarithm of what is nearly 1000 is 3.
  const double size = std::fabs(x);
  if (size >= 1000.0 || (size > 999.0 && std::log10(size) >= 3.0)) text.use_fixed_notation();
  text << x << '\t' << y;
  if (bed == CellTable::Bed::z_of_the_centre) text << '\t' << z;
  text.use_default_notation();
  for (const double value : values) text << '\t' << value;
  text << '\n';
}

}  // namespace utils
