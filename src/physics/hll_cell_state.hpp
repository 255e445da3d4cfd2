// What the first-order form of the positive scheme knows of a cell: every edge meets the cell's own
// water, over a bed that is level within the cell.
#pragma once

#include "physics/hll_edge_states.hpp"

namespace physics {

/// A cell's water, and what its edges need to know of what it has to give.
struct HllCellState {
  double h, e;             ///< depth and level, m
  double u, v;             ///< m/s
  double share;            ///< of the outflow that its edges may expect, which it can give
  double celerity_length;  ///< see expected_outflow, m2/s
};

/// dt: the step, s.
QM_HD inline HllCellState hll_cell_state(const HllNeighbour& own, const HllCell& cell, double dt) {
  const PrimitiveWater& w = own.water;
  const OutwardNormals n = outward_normals(cell.shape);
  const double c = std::sqrt(9.81 * w.h) * cell.third_perimeter;
  const double outflow = expected_outflow(w.h, w.u * n.k0.x + w.v * n.k0.y, c) +
                         expected_outflow(w.h, w.u * n.k1.x + w.v * n.k1.y, c) +
                         expected_outflow(w.h, w.u * n.k2.x + w.v * n.k2.y, c);
  return {w.h, own.bed + w.h, w.u, w.v, share_of_outflow(cell, w.h, outflow, dt), c};
}

/// The state on an edge that leads out of the cell.
QM_HD inline HllEdgeState hll_edge_state(const HllCellState& s, const Edge& edge) {
  const double outward = edge.length * (s.u * edge.nx + s.v * edge.ny);
  return {s.h, s.e, s.u, s.v, s.share * expected_outflow(s.h, outward, s.celerity_length)};
}

}  // namespace physics
