// The states on the edges of a cell half a step ahead: linear in the cell over the plane of its
// bed, limited, moved in time by the equations themselves, and with what may leave through each
// edge. Sources: van Leer (1984), SIAM J. Sci. Stat. Comput. 5, for the predictor (MUSCL-Hancock);
// Audusse et al. (2004), SIAM J. Sci. Comput. 25, for level and depth as variables of a lake at
// rest.
#pragma once

#include "physics/hll_limited_slope.hpp"
#include "physics/primitive_water.hpp"

namespace physics {

/// Water on one side of an edge midpoint: depth and level (m), velocity (m/s), and the largest
/// outflow of the step through the edge (m3/s).
struct HllEdgeState {
  double h, e;
  double u, v;
  double cap;
};

/// Those of the three local edges, and the gradient of the level in the cell as a sink of momentum
/// (m2/s2).
struct HllCellEdges {
  HllEdgeState k0, k1, k2;
  PlanVector source;
};

/// What a cell is to the scheme: its shape, the slope of its bed, and lengths (m).
struct HllCell {
  HllTriangle shape;
  PlanVector bed_slope;
  double reciprocal_area;  ///< 1/m2
  double third_perimeter;  ///< m
};

/// A cell's water and bed level as its neighbours see it.
struct HllNeighbour {
  PrimitiveWater water;
  double bed;  ///< m
};

/// Outflow that an edge may expect (m3/s): by the velocity o normal to it (times its length), or by
/// the front of a dam break, or a tenth of its waves.
QM_HD inline double expected_outflow(double h, double o, double celerity_length) {
  const double c = celerity_length;
  return h * larger(larger(o, o * (1.0 / 3.0) + (2.0 / 3.0) * c), 0.1 * c);
}

/// Share of the outflow that all edges expect (m3/s) which a cell of depth h can give in a step of
/// dt, s: just short of all its water.
QM_HD inline double share_of_outflow(const HllCell& cell, double h, double outflow, double dt) {
  return (1.0 - 1e-12) * h / (dt * cell.reciprocal_area * outflow + 1e-300);
}

/// Sets what may leave through each edge: the water that the cell holds, in shares of the outflows
/// to be expected, so that no depth ever falls below zero.
QM_HD inline void share_water(HllCellEdges& edges, const HllCell& cell, double h, double dt) {
  const OutwardNormals n = outward_normals(cell.shape);
  const double c = std::sqrt(9.81 * h) * cell.third_perimeter;
  const double a0 = expected_outflow(edges.k0.h, edges.k0.u * n.k0.x + edges.k0.v * n.k0.y, c);
  const double a1 = expected_outflow(edges.k1.h, edges.k1.u * n.k1.x + edges.k1.v * n.k1.y, c);
  const double a2 = expected_outflow(edges.k2.h, edges.k2.u * n.k2.x + edges.k2.v * n.k2.y, c);
  const double share = share_of_outflow(cell, h, a0 + a1 + a2, dt);
  edges.k0.cap = share * a0;
  edges.k1.cap = share * a1;
  edges.k2.cap = share * a2;
}

/// Slopes in a cell: of level and depth, and of both velocities.
struct HllSlopes {
  PlanVector e, h, u, v;
};

/// Differences with those across open boundaries, which have no weight, as a plane through the cell
/// has them: the water goes on beyond. Without this the level would be flat in every cell of an
/// outlet. The differences of a plane over like triangles sum to 0.
QM_HD inline EdgeValues continued(const EdgeValues& D, const SlopeWeights& w) {
  const bool open0 = std::fabs(w.x0) + std::fabs(w.y0) == 0.0f;
  const bool open1 = std::fabs(w.x1) + std::fabs(w.y1) == 0.0f;
  const bool open2 = std::fabs(w.x2) + std::fabs(w.y2) == 0.0f;
  return {open0 ? -(D.k1 + D.k2) : D.k0, open1 ? -(D.k0 + D.k2) : D.k1,
          open2 ? -(D.k0 + D.k1) : D.k2};
}

/// How far the level of a neighbour lies below that of a cell whose water falls over a brink to it,
/// m: below the bed of the cell, had that gone on for two cells at its steepest.
QM_HD inline double fall_over_brink(double h, const HllCell& cell) {
  const EdgeValues bed = at_midpoints(cell.shape, cell.bed_slope);
  return h + 4.0 * larger(largest_of(bed), -smallest_of(bed));
}

/// Limited slopes from a cell and the neighbours across its local edges; where there is none, the
/// cell itself stands in. A dry bank and what a dry neighbour holds do not count, and beside one
/// the limiter is stricter. Velocities do not go on beyond open boundaries, where they would feed
/// themselves as water enters, nor over a brink: water is as fast as it falls deep, and the cells
/// above would hold back one another's water.
QM_HD inline HllSlopes hll_slopes(const HllNeighbour& own, const HllNeighbour& n0,
                                  const HllNeighbour& n1, const HllNeighbour& n2,
                                  const HllCell& cell, const SlopeWeights& weights,
                                  double zero_depth) {
  const PrimitiveWater& w = own.water;
  const double e = own.bed + w.h;
  const double e0 = (n0.bed + n0.water.h) - e;
  const double e1 = (n1.bed + n1.water.h) - e;
  const double e2 = (n2.bed + n2.water.h) - e;
  const bool wet = is_wet(w.h, zero_depth);
  const bool wet0 = is_wet(n0.water.h, zero_depth);
  const bool wet1 = is_wet(n1.water.h, zero_depth);
  const bool wet2 = is_wet(n2.water.h, zero_depth);
  const double least_depth = smallest_of({n0.water.h, n1.water.h, n2.water.h});
  const bool among_wet = is_wet(least_depth, zero_depth);
  const double beta = among_wet ? 1.5 : 1.0;
  const EdgeValues De = {wet0 ? e0 : smaller(e0, 0.0), wet1 ? e1 : smaller(e1, 0.0),
                         wet2 ? e2 : smaller(e2, 0.0)};
  const double fall = fall_over_brink(w.h, cell);
  const bool on0 = wet0 & (e0 > -fall), on1 = wet1 & (e1 > -fall), on2 = wet2 & (e2 > -fall);
  const EdgeValues Du = {on0 ? n0.water.u - w.u : 0.0, on1 ? n1.water.u - w.u : 0.0,
                         on2 ? n2.water.u - w.u : 0.0};
  const EdgeValues Dv = {on0 ? n0.water.v - w.v : 0.0, on1 ? n1.water.v - w.v : 0.0,
                         on2 ? n2.water.v - w.v : 0.0};
  const EdgeValues beyond = continued(De, weights);
  const EdgeValues levels = {among_wet ? beyond.k0 : De.k0, among_wet ? beyond.k1 : De.k1,
                             among_wet ? beyond.k2 : De.k2};
  const PlanVector s = limited_slope(levels, weights, cell.shape, beta);
  const PlanVector su = limited_slope(Du, weights, cell.shape, beta);
  const PlanVector sv = limited_slope(Dv, weights, cell.shape, beta);

  // No edge of the water below the bed.
  const PlanVector t = {s.x - cell.bed_slope.x, s.y - cell.bed_slope.y};
  const double deficit = -smallest_of(at_midpoints(cell.shape, t));
  const double covered = smaller(1.0, w.h / (deficit + 1e-300));
  const double theta = wet ? covered : 0.0;
  const double one = wet ? 1.0 : 0.0;
  return {{theta * s.x, theta * s.y},
          {theta * t.x, theta * t.y},
          {one * su.x, one * su.y},
          {one * sv.x, one * sv.y}};
}

/// Change of a cell's water within half a step: depth (m), and the velocity after it (m/s).
struct HllPrediction {
  double dh, u, v;
};

/// No edge midpoint falls dry by it, and no depth more than doubles. tau: half of the step, s.
QM_HD inline HllPrediction hll_prediction(const PrimitiveWater& w, const HllSlopes& s,
                                          const EdgeValues& depth_at_midpoints, double tau,
                                          double zero_depth) {
  const double change = -tau * (w.u * s.h.x + w.v * s.h.y + w.h * (s.u.x + s.v.y));
  const double least = -larger(w.h + smallest_of(depth_at_midpoints), 0.0);
  const double dh = smaller(larger(change, least), w.h);
  const double f = 1.0 / (1.0 + tau * w.drag);
  const double u = (w.u - tau * (w.u * s.u.x + w.v * s.u.y + 9.81 * s.e.x)) * f;
  const double v = (w.v - tau * (w.u * s.v.x + w.v * s.v.y + 9.81 * s.e.y)) * f;
  const bool wet = is_wet(w.h, zero_depth);
  return {wet ? dh : 0.0, wet ? u : 0.0, wet ? v : 0.0};
}

/// Gradient of the level in the cell, integrated over its water, as a sink of momentum per area.
/// The second part makes it equal to the thrust on the edges where the bed is level: momentum is
/// kept.
QM_HD inline PlanVector level_gradient(const HllCell& cell, double h, const PlanVector& s,
                                       const EdgeValues& dh, const EdgeValues& de) {
  const OutwardNormals n = outward_normals(cell.shape);
  const double half = 0.5 * cell.reciprocal_area;
  const double p0 = dh.k0 * de.k0, p1 = dh.k1 * de.k1, p2 = dh.k2 * de.k2;
  return {9.81 * (h * s.x + half * (n.k0.x * p0 + n.k1.x * p1 + n.k2.x * p2)),
          9.81 * (h * s.y + half * (n.k0.y * p0 + n.k1.y * p1 + n.k2.y * p2))};
}

/// From limited slopes; dt: the step, s.
QM_HD inline HllCellEdges hll_edges_of_slopes(const HllNeighbour& own, const HllSlopes& s,
                                              const HllCell& cell, double dt, double zero_depth) {
  const EdgeValues dh = at_midpoints(cell.shape, s.h);
  const EdgeValues de = at_midpoints(cell.shape, s.e);
  const EdgeValues du = at_midpoints(cell.shape, s.u);
  const EdgeValues dv = at_midpoints(cell.shape, s.v);
  const HllPrediction p = hll_prediction(own.water, s, dh, 0.5 * dt, zero_depth);
  const double h = own.water.h + p.dh;
  const double e = (own.bed + own.water.h) + p.dh;
  // Rounding may leave an edge that falls dry a little below zero.
  HllCellEdges edges = {{larger(h + dh.k0, 0.0), e + de.k0, p.u + du.k0, p.v + dv.k0, 0.0},
                        {larger(h + dh.k1, 0.0), e + de.k1, p.u + du.k1, p.v + dv.k1, 0.0},
                        {larger(h + dh.k2, 0.0), e + de.k2, p.u + du.k2, p.v + dv.k2, 0.0},
                        level_gradient(cell, h, s.e, dh, de)};
  share_water(edges, cell, own.water.h, dt);
  return edges;
}

/// From a cell and the neighbours across its local edges.
QM_HD inline HllCellEdges hll_edges(const HllNeighbour& own, const HllNeighbour& n0,
                                    const HllNeighbour& n1, const HllNeighbour& n2,
                                    const HllCell& cell, const SlopeWeights& weights, double dt,
                                    double zero_depth) {
  const HllSlopes slopes = hll_slopes(own, n0, n1, n2, cell, weights, zero_depth);
  return hll_edges_of_slopes(own, slopes, cell, dt, zero_depth);
}

}  // namespace physics
