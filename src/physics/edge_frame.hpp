// The frame of an edge: rotation of a cell's discharges to the edge's normal and tangent, and of a
// flux back to the slots of its cells.
#pragma once

#include "physics/cell_geometry.hpp"
#include "physics/pointwise.hpp"

namespace physics {

/// An edge as a flux sees it: unit normal (out of the left cell) and length (m).
struct Edge {
  double nx, ny;
  double length;
};

/// The edge from node a to node b; its normal is that direction turned clockwise by a right angle.
QM_HD inline Edge edge_between(PlanPoint a, PlanPoint b) {
  const double length = plan_distance(a, b);
  return {(b.y - a.y) / length, (a.x - b.x) / length, length};
}

/// The same edge out of its right cell.
QM_HD inline Edge reversed(const Edge& edge) { return {-edge.nx, -edge.ny, edge.length}; }

/// What a flux reads of a cell: depth (m), unit discharges (m2/s), bed and water level (m).
struct CellWater {
  double h, qx, qy;
  double zb, eta;
};

/// A cell's water in the frame of an edge; a dry cell has no discharge, velocity or celerity.
struct EdgeSide {
  bool wet;
  double h, zb, eta;
  double qn, qt;  // normal and tangential unit discharge, m2/s
  double un, ut;  // normal and tangential velocity, m/s
  double c;       // celerity, m/s
};

/// Inflow into a cell through one edge: volume rate (m3/s) and momentum rates (m4/s2).
struct WaterSlot {
  double h, qx, qy;
};

/// The slots of the two cells of an interior edge.
struct SlotPair {
  WaterSlot left, right;
};

/// Flux per unit length along the outward normal of a boundary edge.
struct BoundaryFlux {
  double mass, normal, tangential;
};

/// Rotates a cell's water, with the terms of its depth, to an edge.
QM_HD inline EdgeSide to_edge_frame(const CellWater& cell, const DepthTerms& depth,
                                    const Edge& edge, double zero_depth) {
  const bool wet = is_wet(cell.h, zero_depth);
  const double qn = wet ? cell.qx * edge.nx + cell.qy * edge.ny : 0.0;
  const double qt = wet ? cell.qy * edge.nx - cell.qx * edge.ny : 0.0;
  return {wet,
          cell.h,
          cell.zb,
          cell.eta,
          qn,
          qt,
          qn * depth.reciprocal,
          qt * depth.reciprocal,
          depth.celerity};
}
QM_HD inline EdgeSide to_edge_frame(const CellWater& cell, const Edge& edge, double zero_depth) {
  return to_edge_frame(cell, depth_terms(cell.h, zero_depth), edge, zero_depth);
}

/// Normal momentum flux of a side, advection and hydrostatic thrust, m3/s2; 0 when dry.
QM_HD inline double normal_momentum(const EdgeSide& s) {
  return s.wet ? fused(s.qn, s.un, (4.905 * s.h) * s.h) : 0.0;
}

/// Slot of the cell on the left: what leaves it along the normal, with opposite sign.
QM_HD inline WaterSlot left_slot(const Edge& edge, double Fh, double Fn, double Ft) {
  return {-edge.length * Fh, -edge.length * fused(Fn, edge.nx, -(Ft * edge.ny)),
          -edge.length * fused(Fn, edge.ny, Ft * edge.nx)};
}

/// Slot of the cell on the right: what arrives along the normal.
QM_HD inline WaterSlot right_slot(const Edge& edge, double Fh, double Fn, double Ft) {
  return {edge.length * Fh, edge.length * fused(Fn, edge.nx, -(Ft * edge.ny)),
          edge.length * fused(Fn, edge.ny, Ft * edge.nx)};
}

/// Slot of a boundary edge's only cell.
QM_HD inline WaterSlot boundary_slot(const Edge& edge, const BoundaryFlux& flux) {
  return left_slot(edge, flux.mass, flux.normal, flux.tangential);
}

}  // namespace physics
