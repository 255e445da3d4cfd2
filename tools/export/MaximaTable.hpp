// The maxima of the flow of a run, with names and units: one list for every format.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "export/CaseResults.hpp"
#include "fields/maxima_columns.hpp"

namespace exports {

/// A column of the table as exports call it. nan stands where something has not been.
struct MaximaQuantity {
  const char* name;  ///< "arrival_time"
  const char* long_name;
  const char* unit;
  std::size_t column;  ///< of fields::maxima_columns
};

inline constexpr std::array<MaximaQuantity, 8> maxima_quantities = {
    {{"peak_depth", "peak depth", "m", 1},
     {"peak_level", "peak water level", "m", 2},
     {"peak_speed", "peak speed", "m s-1", 3},
     {"peak_discharge", "peak unit discharge", "m2 s-1", 4},
     {"hazard", "peak product of depth and speed", "m2 s-1", 5},
     {"time_of_peak", "time of the peak depth", "s", 6},
     {"arrival_time", "time of arrival", "s", 7},
     {"time_under_water", "time under water", "s", 8}}};

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
