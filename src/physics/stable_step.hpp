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

/// Step (s) that bounds the dry cells of a domain, from the largest initial depth h0 (m).
QM_HD inline double stable_step_dry(double char_length_min, double h0) {
  return char_length_min / (2.0 * std::sqrt(9.81 * h0));
}

}  // namespace physics
