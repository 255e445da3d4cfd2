// Every body of a step on two random cells and the edge between them, for a comparison of host and
// device.
#pragma once

#include "device/every_formula.hpp"
#include "kernels/boundary.hpp"
#include "kernels/cell.hpp"
#include "kernels/columns.hpp"
#include "kernels/edge.hpp"
#include "kernels/hll.hpp"
#include "kernels/hll_bed.hpp"
#include "kernels/maxima.hpp"
#include "kernels/soil.hpp"

namespace device_check {

/// Two cells with all their columns, and the slots of one edge and a boundary.
struct TwoCells {
  double h[2], qx[2], qy[2], reciprocal[2], celerity[2], bed[2], eta[2], max_h[2], max_node[2],
      reciprocal_area[2], char_length[2], manning[2], infiltrated[2], hs[2], qsx[2], qsy[2],
      dqs_dh[2], rock[2];
  int rain[2], soil[2];
  double mass[3], momentum_x[3], momentum_y[3], bed_slots[3];  ///< left, right, boundary
  double rain_depths[2];
};

QM_HD inline kernels::CellColumns columns_of(TwoCells& c, bool eta_given) {
  kernels::CellColumns columns = {};
  columns.h = c.h;
  columns.qx = c.qx;
  columns.qy = c.qy;
  columns.reciprocal = c.reciprocal;
  columns.celerity = c.celerity;
  columns.bed = c.bed;
  columns.eta = eta_given ? c.eta : nullptr;
  columns.max_h = c.max_h;
  columns.max_node = c.max_node;
  columns.reciprocal_area = c.reciprocal_area;
  columns.char_length = c.char_length;
  columns.manning = c.manning;
  columns.infiltrated = c.infiltrated;
  columns.rain = c.rain;
  columns.soil = c.soil;
  columns.hs = c.hs;
  columns.qsx = c.qsx;
  columns.qsy = c.qsy;
  columns.dqs_dh = c.dqs_dh;
  columns.rock = c.rock;
  return columns;
}

QM_HD inline kernels::SlotColumns slots_of(TwoCells& c, int k) {
  return {c.mass + k, c.momentum_x + k, c.momentum_y + k, c.bed_slots + k};
}

QM_HD inline TwoCells random_cells(Random& random) {
  TwoCells c = {};
  for (int i = 0; i < 2; ++i) {
    const physics::CellWater water = random_water(random);
    const physics::CellSediment sediment = random_sediment(random);
    const physics::DepthTerms terms = physics::depth_terms(water.h, zero_depth);
    c.h[i] = water.h;
    c.qx[i] = water.qx;
    c.qy[i] = water.qy;
    c.reciprocal[i] = terms.reciprocal;
    c.celerity[i] = terms.celerity;
    c.bed[i] = water.zb;
    c.eta[i] = water.eta;
    c.max_h[i] = uniform(random, 0.0, 1.0);
    c.max_node[i] = water.zb + 0.2;
    c.reciprocal_area[i] = uniform(random, 0.01, 10.0);
    c.char_length[i] = 1.0;
    c.manning[i] = uniform(random, 0.01, 0.1);
    c.infiltrated[i] = uniform(random, 0.0, 0.02);
    c.hs[i] = sediment.hs;
    c.qsx[i] = sediment.qsx;
    c.qsy[i] = sediment.qsy;
    c.dqs_dh[i] = sediment.dqs_dh;
    c.rock[i] = water.zb - sediment.hs;
    c.rain[i] = i;
    c.soil[i] = i;
  }
  c.rain_depths[1] = uniform(random, 0.0, 1e-3);
  return c;
}

QM_HD inline void add_slots(Results& results, const TwoCells& c) {
  for (int k = 0; k < 3; ++k) add(results, c.mass[k] + c.momentum_x[k] + c.momentum_y[k]);
  for (int k = 0; k < 3; ++k) add(results, c.bed_slots[k]);
}

QM_HD inline void add_cells(Results& results, const TwoCells& c, const kernels::CellAfter& after) {
  for (int i = 0; i < 2; ++i) {
    add(results, c.h[i]);
    add(results, c.qx[i]);
    add(results, c.qy[i]);
    add(results, c.reciprocal[i] + c.celerity[i] + c.bed[i] + c.infiltrated[i]);
    add(results, c.hs[i] + c.qsx[i] + c.qsy[i] + c.dqs_dh[i]);
  }
  add(results, after.max_h);
  add(results, after.wave_speed);
  add(results, (after.is_deeper ? 1 : 0) + (after.is_dry ? 2 : 0) + (after.may_change ? 4 : 0));
}

QM_HD inline void add_boundary_bodies(Results& results, TwoCells& c, const physics::Edge& edge,
                                      const kernels::StepValues& step, double imposed) {
  using kernels::BoundaryKind;
  const BoundaryKind kinds[] = {BoundaryKind::wall, BoundaryKind::transmissive,
                                BoundaryKind::discharge, BoundaryKind::water_level};
  for (const BoundaryKind kind : kinds) {
    const kernels::BoundaryEdge boundary = {kind, 0, edge, imposed, 1e-3};
    kernels::flux_of_boundary(columns_of(c, false), boundary, step, slots_of(c, 0), 2);
    add(results, c.mass[2] + c.momentum_x[2] + c.momentum_y[2]);
    add(results, c.bed_slots[2]);
  }
}

/// Two cells of a patch for the HLL schemes, each the neighbour of the other, and one edge between
/// them.
struct TwoHllCells {
  double h[2], u[2], v[2], drag[2], bed[2];
  double geometry[kernels::hll_block * kernels::HllCellColumns::numbers];
  float weights[kernels::hll_block * kernels::HllCellColumns::weights_per_cell];
  double edge_h[6], edge_e[6], edge_u[6], edge_v[6], cap[6], source_x[2], source_y[2];
  double share[2], celerity_length[2];
  double after_h[2], after_qx[2], after_qy[2], after_hs[2], after_bed[2], reciprocal_length[2];
  double per_discharge[2], gain[2], reserve[2], hs[2];
};

QM_HD inline kernels::HllWaterColumns waters_of(TwoHllCells& c) {
  return {c.h, c.u, c.v, c.drag, c.bed};
}

QM_HD inline kernels::HllEdgeColumns edges_of(TwoHllCells& c) {
  return {c.edge_h, c.edge_e, c.edge_u, c.edge_v, c.cap, c.source_x, c.source_y, 2};
}

QM_HD inline kernels::HllCellStates states_of(TwoHllCells& c) {
  return {waters_of(c), c.share, c.celerity_length};
}

QM_HD inline kernels::HllBedColumns beds_of(TwoHllCells& c) {
  return {c.per_discharge, c.gain, c.reserve, c.hs};
}

QM_HD inline kernels::HllBeforeColumns before_of(const TwoHllCells& c) {
  return {c.u, c.v, c.source_x, c.source_y};
}

QM_HD inline kernels::HllAfterColumns after_of(TwoHllCells& c) {
  return {c.after_h, c.after_qx, c.after_qy, c.after_hs, c.after_bed, c.reciprocal_length};
}

/// After the fluxes of the water.
QM_HD inline void add_hll_bed_fluxes(Results& results, TwoCells& cells, TwoHllCells& c,
                                     const physics::Edge& edge, const kernels::StepValues& step) {
  for (int i = 0; i < 2; ++i) {
    kernels::store_hll_cell_state(columns_of(cells, false), i, c.geometry + i, i, states_of(c),
                                  step);
    add(results, c.share[i] + c.celerity_length[i]);
    kernels::store_hll_bed<true>(columns_of(cells, false), i, waters_of(c), c.geometry + i, i,
                                 beds_of(c), step);
    add(results, c.per_discharge[i] + c.gain[i] + c.hs[i]);
    add(results, c.reserve[i]);
  }
  const kernels::SlotColumns slots = slots_of(cells, 0);
  slots.bed[1] = kernels::hll_bed_discharge(states_of(c), beds_of(c), 0, 1, edge, slots.mass[0]);
  slots.bed[0] = -slots.bed[1];
  const kernels::BoundaryEdge boundaries[] = {
      {kernels::BoundaryKind::transmissive, 0, edge, 0.0, 0.0},
      {kernels::BoundaryKind::discharge, 0, edge, -0.5, -1e-3}};
  for (const kernels::BoundaryEdge& boundary : boundaries) {
    kernels::hll_bed_flux_of_boundary(states_of(c), 1, beds_of(c), boundary, step, slots, 2);
    add_slots(results, cells);
  }
}

QM_HD inline void add_hll_bodies(Results& results, Random& random, TwoCells& cells,
                                 const physics::Edge& edge, const kernels::StepValues& step) {
  TwoHllCells c = {};
  for (int i = 0; i < 2; ++i) {
    const RandomHllCell of = random_hll_cell(random);
    kernels::set_hll_cell(c.geometry, kernels::HllCellColumns::numbers, i, of.cell);
    kernels::set_hll_weights(c.weights, i, of.weights);
    kernels::store_hll_water<true>(columns_of(cells, false), i, waters_of(c), i, zero_depth);
    c.reciprocal_length[i] = uniform(random, 0.1, 10.0);
    add(results, c.u[i] + c.v[i] + c.drag[i]);
  }
  for (int i = 0; i < 2; ++i) {
    kernels::HllSlopesOfBlock slopes;
    kernels::store_hll_slopes(waters_of(c), c.geometry + i, c.weights + i, 1 - i, i, 1 - i, i,
                              slopes, 0, step);
    kernels::store_hll_edges(waters_of(c), c.geometry + i, slopes, 0, i, edges_of(c), step);
    add(results, c.source_x[i] + c.source_y[i]);
  }
  const physics::SlotPair slots =
      physics::hll_edge_flux(kernels::hll_state(edges_of(c), 0, edge),
                             kernels::hll_state(edges_of(c), 3, edge), edge, zero_depth);
  kernels::fill_slot(slots_of(cells, 0), 0, slots.left);
  kernels::fill_slot(slots_of(cells, 0), 1, slots.right);
  const kernels::BoundaryEdge boundary = {kernels::BoundaryKind::discharge, 0, edge, -0.5, 0.0};
  kernels::hll_flux_of_boundary(edges_of(c), 4, boundary, step, slots_of(cells, 0), 2);
  add_slots(results, cells);
  add_hll_bed_fluxes(results, cells, c, edge, step);
  const kernels::HllCellAfter after =
      kernels::advance_hll<true, true, true>(columns_of(cells, false), 1, 1, before_of(c), 1, 2, 0,
                                             slots_of(cells, 0), 1e-4, after_of(c), step);
  add(results, c.after_h[1] + c.after_qx[1] + c.after_qy[1]);
  add(results, after.crossing_rate + after.taken_discharge + after.max_h);
  add(results, kernels::advance_hll_bed<true>(columns_of(cells, false), 1, 1, 2, 0,
                                              slots_of(cells, 0), after_of(c), step));
  add(results, c.after_hs[1] + c.after_bed[1] + cells.qsx[1] + cells.qsy[1]);
}

QM_HD inline void add_maxima_bodies(Results& results, TwoCells& c) {
  double kept[8][2] = {};
  for (int i = 0; i < 2; ++i) kept[6][i] = NAN;  // it is not under water
  const kernels::MaximaColumns maxima = {kept[0], kept[1], kept[2], kept[3],
                                         kept[4], kept[5], kept[6], kept[7]};
  const kernels::MaximaValues values = {3.0, zero_depth, 0.05};
  const kernels::CellColumns cells = columns_of(c, false);
  for (int i = 0; i < 2; ++i) {
    const kernels::MaximaNews news = kernels::news_of_state(cells, maxima, i, values);
    add(results, (news.speed ? 1 : 0) + (news.discharge ? 2 : 0) + (news.is_under ? 4 : 0));
    kernels::note_depth(cells, maxima, i, values.t);
    kernels::note_level(cells, maxima, i, zero_depth);
    kernels::note_discharge(cells, maxima, i, zero_depth);
    kernels::note_speed(cells, maxima, i, zero_depth);
    kernels::note_time_under_water(cells, maxima, i, values);
    for (const auto& column : kept) add(results, column[i] == column[i] ? column[i] : -1.0);
  }
}

/// Every body on the cells of that number.
QM_HD inline Results every_body(std::uint64_t number) {
  Results results = {};
  Random random = {(number << 20) + 0x80000U};  // apart from the states of every_formula
  const TwoCells before = random_cells(random);
  const physics::Edge edge = random_edge(random);
  const double dt = uniform(random, 1e-4, 2.0);
  const kernels::StepValues step = {dt,       zero_depth,    1.0,
                                    porosity, {0.001, 2.65}, before.rain_depths};

  TwoCells c = before;
  for (int i = 0; i < 2; ++i) kernels::store_terms(columns_of(c, true), i, zero_depth);
  add(results, c.reciprocal[0] + c.celerity[1]);
  kernels::flux_of_water<kernels::Given<true, true>>(columns_of(c, true), 0, 1, edge, step,
                                                     slots_of(c, 0), slots_of(c, 1), 0);
  add_slots(results, c);
  const kernels::Radicands radicands = kernels::flux_of_water_and_bed<kernels::Given<false, false>>(
      columns_of(c, false), 0, 1, edge, step, slots_of(c, 0), slots_of(c, 1), 0);
  add_slots(results, c);
  add(results, radicands.left);
  add(results, radicands.right);
  add(results, kernels::is_hyperbolic(columns_of(c, false), 1, edge, step) ? 1.0 : 0.0);
  add_boundary_bodies(results, c, edge, step, uniform(random, -2.0, 2.0));

  const physics::GreenAmptSoil loam = {3e-5, 0.11, 0.25, 0.02, 1e-3};
  const double demand =
      kernels::demand_of_soil(columns_of(c, false), 1, 1, loam, physics::soil_step(loam, dt), 0.0);
  add(results, demand);
  const physics::HortonSoil clay = {1e-4, 1e-5, 20.0, 0.01, 1e-3};
  add(results,
      kernels::demand_of_soil(columns_of(c, false), 0, 0, clay, physics::soil_step(clay, dt), 0.0));

  const kernels::CellSlots slots = {0, 2, 1};
  TwoCells with_soil = c;
  add_cells(results, with_soil,
            kernels::advance_water<true, true, true>(columns_of(with_soil, false), 1, slots,
                                                     slots_of(with_soil, 0), demand, step));
  add(results, kernels::lifted_sediment(columns_of(c, false), 1, slots, slots_of(c, 0), step));
  add_cells(results, c,
            kernels::advance_water_and_bed<true, true>(columns_of(c, false), 1, slots,
                                                       slots_of(c, 0), step));
  TwoCells triangles = before;
  add_hll_bodies(results, random, triangles, edge, step);
  add_maxima_bodies(results, c);
  return results;
}

}  // namespace device_check
