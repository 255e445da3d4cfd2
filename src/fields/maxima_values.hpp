// What is read of the maxima of a cell.
#pragma once

#include <cmath>

#include "fields/Field.hpp"
#include "physics/flow_maxima.hpp"

namespace fields {

/// A field of what is kept of a cell, at a time (s) up to which it holds; for a field that is none
/// of the maxima no number.
inline double value_of(Field field, const physics::FlowMaxima& maxima, double t) {
  switch (field) {
    case Field::peak_depth:
      return maxima.depth;
    case Field::peak_level:
      return maxima.level;
    case Field::peak_speed:
      return std::sqrt(maxima.speed_squared);
    case Field::peak_discharge:
      return std::sqrt(maxima.discharge_squared);
    case Field::time_of_peak:
      return maxima.time_of_depth;
    case Field::arrival_time:
      return maxima.arrival;
    case Field::time_under_water:
      return physics::time_under_water_until(maxima, t);
    case Field::depth:
    case Field::discharge_x:
    case Field::discharge_y:
    case Field::largest_depth:
    case Field::infiltrated_depth:
    case Field::bed_level:
    case Field::sediment_thickness:
    case Field::bed_load_x:
    case Field::bed_load_y:
      break;
  }
  return NAN;
}

}  // namespace fields
