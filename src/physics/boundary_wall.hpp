// Solid wall: reflects the water that moves towards it.
#pragma once

#include "physics/edge_frame.hpp"

namespace physics {

/// Flux through a wall: no mass, no tangential momentum, the thrust of the reflected wave.
QM_HD inline BoundaryFlux boundary_wall(const EdgeSide& s, double zero_depth) {
  const double towards = s.c * s.qn + sigma(s.qn, s.h, zero_depth);
  const double away = sigma(0.0, s.h, zero_depth);
  const double Fn = s.qn >= 0.0 ? towards : away;
  return {0.0, s.wet ? Fn : 0.0, 0.0};
}

}  // namespace physics
