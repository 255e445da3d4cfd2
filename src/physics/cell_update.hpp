// Pieces of the explicit finite-volume update that both models share.
#pragma once

#include "physics/pointwise.hpp"

namespace physics {

/// Inflow of a cell from its first three slots, in their order: 0.0 for one that it lacks.
/// Intended: the update is that of a triangle; a fourth slot does not count.
QM_HD inline double sum_of_slots(double first, double second, double third) {
  return ((0.0 + first) + second) + third;
}

/// Momentum source per unit of g h dt, turned into a change of unit discharge (m2/s).
QM_HD inline double momentum_change(double source, double dt, double h) {
  return source * ((dt * 9.81) * h);
}

/// Whether the sources turned a discharge round; a product of exactly 0 is no reversal.
QM_HD inline bool is_reversed(double q_before, double q_after) { return q_before * q_after < 0.0; }

/// Fastest velocity seen so far (m/s), kept as a vector, and deepest water (m).
struct Maxima {
  double h;
  double u, v;
};

/// Maxima after a step that ended with depth h, its terms, and unit discharges qx, qy.
QM_HD inline Maxima updated_maxima(Maxima m, double h, const DepthTerms& depth, double qx,
                                   double qy, double zero_depth) {
  m.h = h > m.h ? h : m.h;
  const bool wet = is_wet(h, zero_depth);
  const double u = qx * depth.reciprocal;
  const double v = qy * depth.reciprocal;
  const double speed_squared = wet ? u * u + v * v : -1.0;
  const bool faster = speed_squared > m.u * m.u + m.v * m.v;
  m.u = faster ? u : m.u;
  m.v = faster ? v : m.v;
  return m;
}

}  // namespace physics
