#include "utils/CellTable.hpp"

#include <cmath>

namespace utils {

CellTable::CellTable(const std::string& name, std::string_view header, Bed bed)
    : file_(name), bed_(bed) {
  text_ << header;
}

void CellTable::add_row(double x, double y, double z, std::span<const double> values) {
  // Intended: x alone decides for the whole centre. The logarithm of what is nearly 1000 is 3.
  const double size = std::fabs(x);
  if (size >= 1000.0 || (size > 999.0 && std::log10(size) >= 3.0)) text_.use_fixed_notation();
  text_ << x << '\t' << y;
  if (bed_ == Bed::z_of_the_centre) text_ << '\t' << z;
  text_.use_default_notation();
  for (const double value : values) text_ << '\t' << value;
  text_ << '\n';
  file_.drain(text_);
}

}  // namespace utils
