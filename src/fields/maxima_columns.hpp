// The columns of the table of maxima: what writes them, what reads them again, and what results
// call them.
#pragma once

#include <array>
#include <string>

#include "fields/Field.hpp"

namespace fields {

struct MaximaColumn {
  Field field;
  const char* name;
};

/// Behind the centre of the cell. The largest product of depth and speed is that of the unit
/// discharge: it stands there a second time, for who looks for a hazard.
inline constexpr auto maxima_columns =
    std::to_array<MaximaColumn>({{Field::bed_level, "zb"},
                                 {Field::peak_depth, info(Field::peak_depth).column},
                                 {Field::peak_level, info(Field::peak_level).column},
                                 {Field::peak_speed, info(Field::peak_speed).column},
                                 {Field::peak_discharge, info(Field::peak_discharge).column},
                                 {Field::peak_discharge, "hv_max"},
                                 {Field::time_of_peak, info(Field::time_of_peak).column},
                                 {Field::arrival_time, info(Field::arrival_time).column},
                                 {Field::time_under_water, info(Field::time_under_water).column}});

/// A column of the table as data sets and maps call it. nan stands where something has not been.
struct MaximaQuantity {
  const char* name;  ///< "arrival_time"
  const char* long_name;
  const char* unit;
  std::size_t column;  ///< of maxima_columns
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

/// The line above the rows, without its end.
inline std::string maxima_header() {
  std::string text = "x\ty";
  for (const MaximaColumn& column : maxima_columns) text += std::string("\t") + column.name;
  return text;
}

}  // namespace fields
