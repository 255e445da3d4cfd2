// Imposed water level: the depth is imposed, the normal velocity follows from the outgoing
// Riemann invariant un + 2c, whatever the flow regime.
#pragma once

#include "physics/edge_frame.hpp"

namespace physics {

/// Flux for the imposed depth h_imposed (m, level minus bed; may be negative). A dry cell is filled
/// at the rate c h without momentum.
QM_HD inline BoundaryFlux boundary_water_level(const EdgeSide& s, double h_imposed,
                                               double zero_depth) {
  const double c_imposed = celerity(h_imposed, zero_depth);
  const double qn = (s.un + 2.0 * (s.c - c_imposed)) * h_imposed;
  const double Fh = s.wet ? qn : -c_imposed * h_imposed;
  const double Fn = s.wet ? sigma(qn, h_imposed, zero_depth) : 0.0;
  // The cell's own velocity, not the imposed one, tells outflow from inflow.
  const double Ft = s.wet && s.un > 0.0 ? s.ut * qn : 0.0;
  return {Fh, Fn, Ft};
}

}  // namespace physics
