// The water of a cell in the variables that the second-order scheme reconstructs, and what follows
// from them: all of it is computed anew from depth and unit discharges.
#pragma once

#include "physics/pointwise.hpp"

namespace physics {

/// Depth (m), velocity (m/s) and the rate at which friction slows it down (1/s); a dry cell stands.
struct PrimitiveWater {
  double h, u, v, drag;
};

/// 1/h of a wet depth (1/m), 1 for a dry one; bounded, so that a depth of all but 0 over a
/// threshold of 0 has finite powers.
QM_HD inline double reciprocal_of_wet(double h, bool wet) {
  return 1.0 / (wet ? larger(h, 1e-60) : 1.0);
}

/// Resistance of a bed of Manning's n (s/m^(1/3)), g n^2 in m^(1/3): times |u| / h^(4/3) it is the
/// drag.
QM_HD inline double manning_resistance(double n) { return 9.81 * n * n; }

/// Drag per speed of water that deep, resistance / h^(4/3) in 1/m.
QM_HD inline double drag_per_speed(double resistance, double h, double reciprocal_h) {
  return resistance * power_minus_4_3(larger(h, 1e-60), reciprocal_h);
}

/// From depth (m) and unit discharges (m2/s) over a bed of that resistance.
template <bool friction>
QM_HD inline PrimitiveWater primitive_water(double h, double qx, double qy, double resistance,
                                            double zero_depth) {
  const bool wet = is_wet(h, zero_depth);
  const double r = reciprocal_of_wet(h, wet);
  const double u = wet ? qx * r : 0.0;
  const double v = wet ? qy * r : 0.0;
  if constexpr (!friction) return {h, u, v, 0.0};
  const double drag = drag_per_speed(resistance, wet ? h : 1.0, r) * std::sqrt(u * u + v * v);
  return {h, u, v, wet ? drag : 0.0};
}

/// How often per second the fastest wave of a cell crosses its length, of which the reciprocal is
/// given (1/m); 0 for a dry one. The stable step is the reciprocal of the largest of all cells.
QM_HD inline double crossing_rate(const PrimitiveWater& water, double reciprocal_length,
                                  double zero_depth) {
  const bool wet = is_wet(water.h, zero_depth);
  const double speed = std::sqrt(water.u * water.u + water.v * water.v);
  return wet ? (speed + std::sqrt(9.81 * water.h)) * reciprocal_length : 0.0;
}

}  // namespace physics
