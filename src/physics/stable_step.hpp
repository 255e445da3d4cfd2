// Stable time steps before the Courant factor.
#pragma once

#include "physics/pointwise.hpp"

namespace physics {

/// "No bound": the step of a cell that does not limit the run, s.
inline constexpr double unbounded_step = 1e20;

/// Stable step (s) of a cell: characteristic length over |u| + c; unbounded when dry.
QM_HD inline double stable_step(double h, double qx, double qy, double char_length,
                                double zero_depth) {
  const bool wet = is_wet(h, zero_depth);
  const double divisor = wet ? h : 1.0;
  const double speed = std::sqrt(qx * qx + qy * qy) / divisor;
  const double step = char_length / (speed + std::sqrt(9.81 * divisor));
  return wet ? step : unbounded_step;
}

/// What a dry cell contributes to the step (s) of a domain, from the largest initial depth h0 (m):
/// nothing in one that was dry from the start.
QM_HD inline double stable_step_dry(double char_length_min, double h0, double zero_depth) {
  const bool was_wet = is_wet(h0, zero_depth);
  return was_wet ? char_length_min / (2.0 * std::sqrt(9.81 * h0)) : unbounded_step;
}

/// Step (s) of a domain from the smallest one of its cells, of which none may bound it.
QM_HD inline double stable_step_domain(double smallest, double char_length_min) {
  return smallest == unbounded_step ? char_length_min / 10.0 : smallest;
}

}  // namespace physics
