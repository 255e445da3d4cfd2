// The table of the maxima of the flow of a run.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "export/CaseResults.hpp"
#include "fields/maxima_columns.hpp"

namespace exports {

using fields::maxima_quantities;
using fields::MaximaQuantity;

/// One value per cell in every column of fields::maxima_columns. Six significant digits survive in
/// a float.
struct MaximaTable {
  std::array<std::vector<float>, fields::maxima_columns.size()> columns;

  const std::vector<float>& operator[](const MaximaQuantity& quantity) const {
    return columns[quantity.column];
  }
  const std::vector<float>& peak_depth() const { return columns[maxima_quantities[0].column]; }
};

/// The one of that name; null if there is none.
const MaximaQuantity* find_maxima_quantity(const std::string& name);
/// Reads the table of a case; refuses a case that asks for none, and a file that is not of it.
MaximaTable read_maxima(const CaseResults& results);

}  // namespace exports
