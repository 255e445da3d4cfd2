// Stable time steps before the Courant factor.
#pragma once

#include "physics/pointwise.hpp"

namespace physics {

/// "No bound": the step of a cell that does not limit the run, s.
inline constexpr double unbounded_step = 1e20;

/// Speed of the fastest wave of a state, |u| + c, in m/s; 0 when dry.
QM_HD inline double wave_speed(const DepthTerms& depth, double qx, double qy) {
  return fused(std::sqrt(fused(qx, qx, qy * qy)), depth.reciprocal, depth.celerity);
}

/// Stable step (s) of a cell: characteristic length over the speed of its fastest wave; unbounded
/// when dry.
QM_HD inline double stable_step(double h, double qx, double qy, double char_length,
                                double zero_depth) {
  const bool wet = is_wet(h, zero_depth);
  return wet ? char_length / wave_speed(depth_terms(h, zero_depth), qx, qy) : unbounded_step;
}

/// The same (s) from the largest crossing rate of cells (1/s); unbounded where none is above 0.
QM_HD inline double step_of_crossing_rate(double rate) {
  return rate > 0.0 ? 1.0 / rate : unbounded_step;
}

/// What a dry cell contributes to the step (s) of a domain, from the largest initial depth h0 (m):
/// nothing in one that was dry from the start.
QM_HD inline double stable_step_dry(double char_length_min, double h0, double zero_depth) {
  const bool was_wet = is_wet(h0, zero_depth);
  return was_wet ? char_length_min / (2.0 * std::sqrt(9.81 * h0)) : unbounded_step;
}

/// The cell whose wave set the smallest step (s) of a domain; -1 where dry cells did, or nothing. Of
/// several cells it is the one that set the step before (-1: none), or else the first:
/// sets_step(cell) tells whether a cell has that step, first() finds the lowest number that does.
template <class SetsStep, class First>
QM_HD inline int limiting_cell(double smallest, double dry_step, int before,
                               const SetsStep& sets_step, const First& first) {
  if (smallest == dry_step || smallest == unbounded_step) return -1;
  return before >= 0 && sets_step(before) ? before : first();
}

/// Step (s) of a domain from the smallest one of its cells, of which none may bound it.
QM_HD inline double stable_step_domain(double smallest, double char_length_min) {
  return smallest == unbounded_step ? char_length_min / 10.0 : smallest;
}

}  // namespace physics
