// Discharge through the edges of a section.
#pragma once

#include "physics/edge_frame.hpp"

namespace physics {

/// Adds an edge's discharge (m3/s), taken from the state of its first cell, to the running sum Q.
QM_HD inline double add_edge_discharge(double Q, double qx, double qy, const Edge& edge) {
  return fused(fused(qx, edge.nx, qy * edge.ny), edge.length, Q);
}

}  // namespace physics
