// One step of a cell of the second-order scheme and of its first-order form: balance, rain, soil,
// the bound of a draining film, and friction. Nothing is clipped.
// Source: Bollermann, Noelle and Lukacova-Medvidova (2011), Commun. Comput. Phys. 10, for the idea
// that a cell which drains gives what it has and no more.
#pragma once

#include "physics/cell_update.hpp"
#include "physics/hll_triangle.hpp"
#include "physics/primitive_water.hpp"

namespace physics {

/// Operands of the update.
struct HllCellStep {
  double h, qx, qy;          // state: m, m2/s
  double u, v;               // its velocity, m/s
  double Fh, Fqx, Fqy;       // sum of the slots: m3/s, m4/s2
  PlanVector source;         // sink of momentum, m2/s2
  double dt_over_area;       // s/m2
  double dt;                 // s
  double rain;               // depth of rain of the step, m
  double infiltration_step;  // demand of the soil, m
  double infiltrated_depth;  // cumulative, m
  double resistance;         // manning_resistance of the bed, m^(1/3)
};

/// The cell after the step.
struct HllCellUpdate {
  double h, qx, qy;
  double infiltrated_depth;
  double taken_discharge;  // size of what the bound of a draining film takes away, m2/s
};

/// A film that drains is set no faster than this: twice the energy that it had, with all its depth
/// turned to speed. Its velocity stays what it was where the balance asks for more.
QM_HD inline bool drains_too_fast(double h_before, double h_after, double speed_squared_before,
                                  double speed_squared) {
  const bool faster = speed_squared > 2.0 * speed_squared_before + (8.0 * 9.81) * h_before;
  return (h_after < h_before) & faster;
}

/// Share of its speed that friction leaves the water in a step: implicit in the new speed, so that
/// it never turns round. drag_rate: drag per speed, 1/m.
QM_HD inline double share_left_by_friction(double drag_rate, double speed, double dt) {
  return 2.0 / (1.0 + std::sqrt(1.0 + (4.0 * dt) * (drag_rate * speed)));
}

template <bool friction>
QM_HD inline HllCellUpdate update_hll(const HllCellStep& c, double zero_depth) {
  const double balanced = c.h + c.Fh * c.dt_over_area;
  const double qx = c.qx + (c.Fqx * c.dt_over_area - c.dt * c.source.x);
  const double qy = c.qy + (c.Fqy * c.dt_over_area - c.dt * c.source.y);

  const double flooded = balanced + c.rain;
  const double r = reciprocal_of_wet(flooded, is_wet(flooded, zero_depth));
  double u = qx * r;
  double v = qy * r;

  // The soil takes what it asks for, or all there is, and its momentum along.
  const bool infiltrates = c.infiltration_step > 0.0;
  const double taken = infiltrates ? smaller(c.infiltration_step, flooded) : 0.0;
  const double h = flooded - taken;
  const bool wet = is_wet(h, zero_depth);

  if constexpr (friction) {
    const double depth = wet ? h : 1.0;
    const double rate = drag_per_speed(c.resistance, depth, reciprocal_of_wet(h, wet));
    const double left = share_left_by_friction(rate, std::sqrt(u * u + v * v), c.dt);
    u *= left;
    v *= left;
  }

  // Only now: what draws a film down a slope within a long step, friction has to hold first.
  const bool bound = drains_too_fast(c.h, balanced, c.u * c.u + c.v * c.v, u * u + v * v);
  const double too_much = std::sqrt((u - c.u) * (u - c.u) + (v - c.v) * (v - c.v));
  u = bound ? c.u : u;
  v = bound ? c.v : v;
  return {h, wet ? h * u : 0.0, wet ? h * v : 0.0, c.infiltrated_depth + taken,
          bound ? h * too_much : 0.0};
}

}  // namespace physics
