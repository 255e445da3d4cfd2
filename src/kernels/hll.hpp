// The bodies of a step of the HLL schemes: the water of a cell as its neighbours see it, the states
// on its edges, the flux between two of these, and the balance of a cell. They work on columns that
// belong to one patch at a time.
#pragma once

#include "kernels/boundary.hpp"
#include "physics/hll_boundary.hpp"
#include "physics/hll_cell_state.hpp"
#include "physics/hll_cell_update.hpp"
#include "physics/hll_edge_flux.hpp"

namespace kernels {

/// Cells that the loops take at once.
inline constexpr int hll_block = 16;

/// Water and bed of the cells of a patch and of the two rings around it. Like all columns in the
/// scratch of a patch these are plain pointers, or a type that watches over their use.
template <class Column>
struct HllWaterColumnsWith {
  Column h, u, v, drag, bed;  ///< see physics::HllNeighbour
};
using HllWaterColumns = HllWaterColumnsWith<double*>;

/// Static columns of the cells with edge states, interleaved block by block: all numbers of
/// hll_block cells, then those of the next; the weights likewise.
struct HllCellColumns {
  static constexpr int numbers_in_first_order = 6, numbers = 8, weights_per_cell = 6;
  const double* geometry;
  const float* weights;
  const Local* neighbours[3];  ///< numbers within the patch
};

/// States of the edges in second order: that of edge k of cell i is number k * stride + i.
template <class Column>
struct HllEdgeColumnsWith {
  Column h, e, u, v, cap;
  Column source_x, source_y;  ///< of the cells, m2/s2
  int stride;
};
using HllEdgeColumns = HllEdgeColumnsWith<double*>;

/// States of the cells in first order, which all their edges share.
template <class Column>
struct HllCellStatesWith {
  HllWaterColumnsWith<Column> waters;
  Column share, celerity_length;  ///< see physics::HllCellState
};
using HllCellStates = HllCellStatesWith<double*>;

/// Where the numbers of a cell begin in a column of so many per cell; they are hll_block apart.
QM_HD inline int hll_begin(int i, int numbers) {
  return i / hll_block * (hll_block * numbers) + i % hll_block;
}

/// The first numbers of a cell, as many as its scheme has.
QM_HD inline void set_hll_cell(double* geometry, int numbers, int i, const physics::HllCell& cell) {
  const double values[] = {cell.shape.r0.x,  cell.shape.r0.y,      cell.shape.r1.x,
                           cell.shape.r1.y,  cell.reciprocal_area, cell.third_perimeter,
                           cell.bed_slope.x, cell.bed_slope.y};
  double* const to = geometry + hll_begin(i, numbers);
  for (int k = 0; k < numbers; ++k) to[k * hll_block] = values[k];
}

QM_HD inline void set_hll_weights(float* weights, int i, const physics::SlopeWeights& w) {
  const float values[] = {w.x0, w.y0, w.x1, w.y1, w.x2, w.y2};
  float* const to = weights + hll_begin(i, HllCellColumns::weights_per_cell);
  for (int k = 0; k < HllCellColumns::weights_per_cell; ++k) to[k * hll_block] = values[k];
}

QM_HD inline physics::HllCell hll_cell(const double* from) {
  constexpr int b = hll_block;
  return {{{from[0], from[b]}, {from[2 * b], from[3 * b]}},
          {from[6 * b], from[7 * b]},
          from[4 * b],
          from[5 * b]};
}
/// In first order the bed is level within the cell.
QM_HD inline physics::HllCell hll_level_cell(const double* from) {
  constexpr int b = hll_block;
  return {{{from[0], from[b]}, {from[2 * b], from[3 * b]}}, {0.0, 0.0}, from[4 * b], from[5 * b]};
}

QM_HD inline physics::SlopeWeights hll_weights(const float* from) {
  constexpr int b = hll_block;
  return {from[0], from[b], from[2 * b], from[3 * b], from[4 * b], from[5 * b]};
}

/// The water of cell i of the tables, into entry k.
template <bool friction, class Column>
QM_HD inline void store_hll_water(const CellColumns& cells, int i,
                                  const HllWaterColumnsWith<Column>& waters, int k,
                                  double zero_depth) {
  const double resistance = friction ? physics::manning_resistance(cells.manning[i]) : 0.0;
  const physics::PrimitiveWater water = physics::primitive_water<friction>(
      cells.h[i], cells.qx[i], cells.qy[i], resistance, zero_depth);
  waters.h[k] = water.h;
  waters.u[k] = water.u;
  waters.v[k] = water.v;
  waters.drag[k] = water.drag;
  waters.bed[k] = cells.bed[i];
}

template <class Column>
QM_HD inline physics::HllNeighbour hll_neighbour(const HllWaterColumnsWith<Column>& waters, int k) {
  return {{waters.h[k], waters.u[k], waters.v[k], waters.drag[k]}, waters.bed[k]};
}

template <class Column>
QM_HD inline void store_hll_state(const HllEdgeColumnsWith<Column>& edges, int k,
                                  const physics::HllEdgeState& state) {
  edges.h[k] = state.h;
  edges.e[k] = state.e;
  edges.u[k] = state.u;
  edges.v[k] = state.v;
  edges.cap[k] = state.cap;
}

/// State k on an edge that leads out of its cell.
template <class Column>
QM_HD inline physics::HllEdgeState hll_state(const HllEdgeColumnsWith<Column>& edges, int k,
                                             const physics::Edge&) {
  return {edges.h[k], edges.e[k], edges.u[k], edges.v[k], edges.cap[k]};
}
template <class Column>
QM_HD inline physics::HllEdgeState hll_state(const HllCellStatesWith<Column>& cells, int k,
                                             const physics::Edge& edge) {
  const HllWaterColumnsWith<Column>& w = cells.waters;
  return physics::hll_edge_state(
      {w.h[k], w.bed[k] + w.h[k], w.u[k], w.v[k], cells.share[k], cells.celerity_length[k]}, edge);
}

/// The state of cell i of the tables in first order, which is entry k of its patch; its geometry
/// stands there.
template <class Column>
QM_HD inline void store_hll_cell_state(const CellColumns& cells, int i, const double* geometry,
                                       int k, const HllCellStatesWith<Column>& states,
                                       const StepValues& step) {
  constexpr bool no_friction = false;  // drag is for the predictor of the second order
  store_hll_water<no_friction>(cells, i, states.waters, k, step.zero_depth);
  const physics::HllCellState state =
      physics::hll_cell_state(hll_neighbour(states.waters, k), hll_level_cell(geometry), step.dt);
  states.share[k] = state.share;
  states.celerity_length[k] = state.celerity_length;
}

/// Limited slopes of the cells of a block, see physics::HllSlopes.
struct HllSlopesOfBlock {
  double e_x[hll_block], e_y[hll_block], h_x[hll_block], h_y[hll_block];
  double u_x[hll_block], u_y[hll_block], v_x[hll_block], v_y[hll_block];
};

/// The slopes of cell i of a patch; its geometry and weights stand there, its neighbours are these.
template <class Column>
QM_HD inline physics::HllSlopes hll_slopes(const HllWaterColumnsWith<Column>& waters,
                                           const double* geometry, const float* weights, int n0,
                                           int n1, int n2, int i, const StepValues& step) {
  return physics::hll_slopes(hll_neighbour(waters, i), hll_neighbour(waters, n0),
                             hll_neighbour(waters, n1), hll_neighbour(waters, n2),
                             hll_cell(geometry), hll_weights(weights), step.zero_depth);
}

/// The same, into entry k of its block.
QM_HD inline void store_hll_slopes(const HllWaterColumns& waters, const double* geometry,
                                   const float* weights, int n0, int n1, int n2, int i,
                                   HllSlopesOfBlock& slopes, int k, const StepValues& step) {
  const physics::HllSlopes s = hll_slopes(waters, geometry, weights, n0, n1, n2, i, step);
  slopes.e_x[k] = s.e.x;
  slopes.e_y[k] = s.e.y;
  slopes.h_x[k] = s.h.x;
  slopes.h_y[k] = s.h.y;
  slopes.u_x[k] = s.u.x;
  slopes.u_y[k] = s.u.y;
  slopes.v_x[k] = s.v.x;
  slopes.v_y[k] = s.v.y;
}

/// The edge states of cell i of a patch with these slopes; its geometry stands there.
template <class Column>
QM_HD inline void store_hll_edges(const HllWaterColumnsWith<Column>& waters, const double* geometry,
                                  const physics::HllSlopes& slopes, int i,
                                  const HllEdgeColumnsWith<Column>& edges, const StepValues& step) {
  const physics::HllCellEdges of_cell = physics::hll_edges_of_slopes(
      hll_neighbour(waters, i), slopes, hll_cell(geometry), step.dt, step.zero_depth);
  store_hll_state(edges, i, of_cell.k0);
  store_hll_state(edges, edges.stride + i, of_cell.k1);
  store_hll_state(edges, 2 * edges.stride + i, of_cell.k2);
  edges.source_x[i] = of_cell.source.x;
  edges.source_y[i] = of_cell.source.y;
}

/// The same of the slopes in entry k of its block.
QM_HD inline void store_hll_edges(const HllWaterColumns& waters, const double* geometry,
                                  const HllSlopesOfBlock& slopes, int k, int i,
                                  const HllEdgeColumns& edges, const StepValues& step) {
  const physics::HllSlopes s = {{slopes.e_x[k], slopes.e_y[k]},
                                {slopes.h_x[k], slopes.h_y[k]},
                                {slopes.u_x[k], slopes.u_y[k]},
                                {slopes.v_x[k], slopes.v_y[k]}};
  store_hll_edges(waters, geometry, s, i, edges, step);
}

QM_HD inline physics::BoundaryFlux hll_flux_of_kind(const BoundaryEdge& boundary,
                                                    const physics::HllBoundarySide& side) {
  switch (boundary.kind) {
    case BoundaryKind::wall:
      return physics::hll_wall(side);
    case BoundaryKind::transmissive:
      return physics::hll_free_outflow(side);
    case BoundaryKind::discharge:
      return physics::hll_discharge(side, boundary.imposed);
    case BoundaryKind::water_level:
      return physics::hll_water_level(side, boundary.imposed);
  }
  return {};
}

/// What passes a boundary, on whose edge stands a state, into slot k.
template <class States, class Slots>
QM_HD inline void hll_flux_of_boundary(const States& states, int state,
                                       const BoundaryEdge& boundary, const StepValues& step,
                                       const Slots& slots, int k) {
  const physics::HllBoundarySide side = physics::hll_boundary_side(
      hll_state(states, state, boundary.edge), boundary.edge, step.zero_depth);
  fill_slot(slots, k,
            physics::hll_boundary_slot(side, boundary.edge, hll_flux_of_kind(boundary, side)));
}

/// What a cell tells the loop around it.
struct HllCellAfter {
  double max_h;            ///< largest depth so far, m; for the loop to keep
  double crossing_rate;    ///< see physics::crossing_rate, 1/s
  double taken_discharge;  ///< see physics::HllCellUpdate, m2/s
  bool is_deeper;          ///< than ever before
  bool may_change;         ///< in a step without inflow
};

/// What a cell of a patch knows from the begin of its step: velocity (m/s), and the gradient of the
/// level as a sink of momentum (m2/s2), which is 0 in first order.
template <class Column, class Source>
struct HllBeforeColumnsWith {
  Column u, v;
  Source source_x, source_y;
};
using HllBeforeColumns = HllBeforeColumnsWith<const double*, const double*>;

/// Where the state after a step goes, of the cells of the tables.
struct HllAfterColumns {
  double *h, *qx, *qy;
  double *hs, *bed;                 ///< sediment and level of the bed, m; null without sediments
  const double* reciprocal_length;  ///< see physics::crossing_rate, 1/m
};

/// The step of cell i of the tables, which is number k of its patch, from its slots.
template <bool friction, bool rain, bool soil, class Before, class Slots>
QM_HD inline HllCellAfter advance_hll(const CellColumns& cells, int i, int k, const Before& before,
                                      int s0, int s1, int s2, const Slots& slots, double demand,
                                      const HllAfterColumns& to, const StepValues& step) {
  const double resistance = friction ? physics::manning_resistance(cells.manning[i]) : 0.0;
  const physics::HllCellUpdate after = physics::update_hll<friction>(
      {.h = cells.h[i],
       .qx = cells.qx[i],
       .qy = cells.qy[i],
       .u = before.u[k],
       .v = before.v[k],
       .Fh = physics::sum_of_slots(slots.mass[s0], slots.mass[s1], slots.mass[s2]),
       .Fqx =
           physics::sum_of_slots(slots.momentum_x[s0], slots.momentum_x[s1], slots.momentum_x[s2]),
       .Fqy =
           physics::sum_of_slots(slots.momentum_y[s0], slots.momentum_y[s1], slots.momentum_y[s2]),
       .source = {before.source_x[k], before.source_y[k]},
       .dt_over_area = step.dt * cells.reciprocal_area[i],
       .dt = step.dt,
       .rain = rain ? step.rain_depths[cells.rain[i]] : 0.0,
       .infiltration_step = demand,
       .infiltrated_depth = soil ? cells.infiltrated[i] : 0.0,
       .resistance = resistance},
      step.zero_depth);
  if constexpr (soil) cells.infiltrated[i] = after.infiltrated_depth;
  to.h[i] = after.h;
  to.qx[i] = after.qx;
  to.qy[i] = after.qy;
  const physics::PrimitiveWater water =
      physics::primitive_water<false>(after.h, after.qx, after.qy, 0.0, step.zero_depth);
  const double max_h = cells.max_h[i];
  const bool wet = physics::is_wet(after.h, step.zero_depth);
  return {physics::larger(max_h, after.h),
          physics::crossing_rate(water, to.reciprocal_length[i], step.zero_depth),
          after.taken_discharge, after.h > max_h, soil ? after.h != 0.0 : wet};
}

}  // namespace kernels
