// The loop over cells: balance, sources, dry rules, maxima and stable step in one pass, block by
// block.
#pragma once

#include "engine/views.hpp"
#include "physics/bed_load_mpm.hpp"
#include "physics/cell_update_exner.hpp"
#include "physics/cell_update_swe.hpp"
#include "physics/flow_extremes.hpp"
#include "physics/friction_manning.hpp"
#include "physics/stable_step.hpp"

// Names are internal to each build of kernels.cpp, so that no build runs the instructions of
// another.
namespace engine {
namespace {

using physics::DepthTerms;

template <bool friction>
physics::MomentumSource friction_of(const CellColumns& cells, int i, double zero_depth) {
  if constexpr (!friction) return {0.0, 0.0};
  const double h = cells.h[i];
  const bool wet = physics::is_wet(h, zero_depth);
  const physics::MomentumSource source = physics::friction_manning(
      cells.manning[i], wet ? h : 1.0, cells.reciprocal[i], cells.qx[i], cells.qy[i]);
  return {wet ? source.qx : 0.0, wet ? source.qy : 0.0};
}

/// A block of cells: their slots, in a type that gathers can use, and what their step leaves.
struct CellBlock {
  static constexpr int size = 256;
  int slots[3][size];
  double wave_speeds[size];  ///< largest ones, m/s; 0: does not bound the step
  double max_h[size];
  int dry_cells = 0;     ///< of depth up to the threshold
  int active_cells = 0;  ///< those that may change in a step without inflow
  int new_maxima = 0;
};

void stage(CellBlock& block, const CellColumns& cells, int first, int count) {
#pragma omp simd
  for (int k = 0; k < count; ++k) {
    for (int s = 0; s < 3; ++s) block.slots[s][k] = cells.slots[s][first + k];
  }
}

/// Sum of a column of slots over the slots of a cell, in their order.
double balance(const CellBlock& block, int k, const double* slots) {
  return ((0.0 + slots[block.slots[0][k]]) + slots[block.slots[1][k]]) + slots[block.slots[2][k]];
}

/// Stores what follows from the new depth and discharges of a cell; whether it was never as deep.
bool finish_cell(const CellColumns& cells, CellBlock& block, int i, int k, double h, double qx,
                 double qy, double zero_depth) {
  const DepthTerms depth = physics::depth_terms(h, zero_depth);
  const double max_h = physics::larger(cells.max_h[i], h);
  cells.h[i] = h;
  cells.qx[i] = qx;
  cells.qy[i] = qy;
  cells.reciprocal[i] = depth.reciprocal;
  cells.celerity[i] = depth.celerity;
  block.max_h[k] = max_h;
  block.wave_speeds[k] = physics::is_wet(h, zero_depth) ? physics::wave_speed(depth, qx, qy) : 0.0;
  return max_h != cells.max_h[i];
}

/// Largest depths rarely change once a flood has passed: they are written where one of a block does.
void store_maxima(const CellColumns& cells, const CellBlock& block, int first, int count) {
#pragma omp simd
  for (int k = 0; k < count; ++k) cells.max_h[first + k] = block.max_h[k];
}

template <bool friction, bool rain, bool soil>
struct AdvanceWater {
  [[gnu::flatten]] static void block(CellColumns cells, CellRange range, StepValues step, int first,
                                     int count, CellBlock& result) {
    int dry_cells = 0, active_cells = 0, new_maxima = 0;
#pragma omp simd reduction(+ : dry_cells, active_cells, new_maxima)
    for (int k = 0; k < count; ++k) {
      const int i = first + k;
      const physics::MomentumSource source = friction_of<friction>(cells, i, step.zero_depth);
      const physics::SweCellUpdate after =
          physics::update_swe({.h = cells.h[i],
                               .qx = cells.qx[i],
                               .qy = cells.qy[i],
                               .Fh = balance(result, k, range.slots.mass),
                               .Fqx = balance(result, k, range.slots.momentum_x),
                               .Fqy = balance(result, k, range.slots.momentum_y),
                               .dt_over_area = step.dt * cells.reciprocal_area[i],
                               .dt = step.dt,
                               .rain = rain ? step.rain_depths[cells.rain[i]] : 0.0,
                               .source_qx = source.qx,
                               .source_qy = source.qy,
                               .infiltration_step = soil ? range.demand[i - range.begin] : 0.0,
                               .infiltrated_depth = soil ? cells.infiltrated[i] : 0.0,
                               .bed_rock_level = cells.bed[i],
                               .max_node_level = cells.max_node[i]},
                              step.zero_depth);
      new_maxima += finish_cell(cells, result, i, k, after.h, after.qx, after.qy, step.zero_depth) ? 1 : 0;
      if constexpr (soil) cells.infiltrated[i] = after.infiltrated_depth;
      dry_cells += after.h <= step.zero_depth ? 1 : 0;
      // A soil drinks even a film.
      active_cells += (soil ? after.h == 0.0 : after.h <= step.zero_depth) ? 0 : 1;
    }
    result.new_maxima += new_maxima;
    result.dry_cells += dry_cells;
    result.active_cells += active_cells;
  }
};

template <bool friction, bool rain, bool soil>
struct AdvanceWaterAndBed {
  [[gnu::flatten]] static void block(CellColumns cells, CellRange range, StepValues step, int first,
                                     int count, CellBlock& result) {
    int dry_cells = 0, new_maxima = 0;
#pragma omp simd reduction(+ : dry_cells, new_maxima)
    for (int k = 0; k < count; ++k) {
      const int i = first + k;
      const physics::MomentumSource source = friction_of<friction>(cells, i, step.zero_depth);
      const physics::ExnerCellUpdate after =
          physics::update_exner({.h = cells.h[i],
                                 .qx = cells.qx[i],
                                 .qy = cells.qy[i],
                                 .hs = cells.hs[i],
                                 .qsx = cells.qsx[i],
                                 .qsy = cells.qsy[i],
                                 .Fh = balance(result, k, range.slots.mass),
                                 .Fqx = balance(result, k, range.slots.momentum_x),
                                 .Fqy = balance(result, k, range.slots.momentum_y),
                                 .Fhs = balance(result, k, range.slots.bed),
                                 .dt_over_area = step.dt * cells.reciprocal_area[i],
                                 .dt = step.dt,
                                 .rain = rain ? step.rain_depths[cells.rain[i]] : 0.0,
                                 .source_qx = source.qx,
                                 .source_qy = source.qy},
                                step.zero_depth);
      new_maxima += finish_cell(cells, result, i, k, after.h, after.qx, after.qy, step.zero_depth) ? 1 : 0;
      const physics::BedLoad load = physics::bed_load_of_cell(
          {after.h, after.qx, after.qy, after.hs, after.qsx, after.qsy}, cells.reciprocal[i],
          friction ? cells.manning[i] : 0.0, step.grains, step.zero_depth);
      cells.hs[i] = after.hs;
      cells.bed[i] = cells.rock[i] + after.hs;
      cells.qsx[i] = load.qsx;
      cells.qsy[i] = load.qsy;
      cells.dqs_dh[i] = load.dqs_dh;
      dry_cells += after.h <= step.zero_depth ? 1 : 0;
    }
    result.new_maxima += new_maxima;
    result.dry_cells += dry_cells;
    result.active_cells += count - dry_cells;
  }
};

/// Whether a cell of a block can lower the smallest step so far: it cannot where the shortest of
/// them, with the fastest wave of all, would not. The margin is for the rounding of the product.
bool can_be_smaller(double smallest, const CellColumns& cells, const double* wave_speeds, int first,
                    int count) {
  double fastest = 0.0;
#pragma omp simd reduction(max : fastest)
  for (int k = 0; k < count; ++k) fastest = physics::larger(fastest, wave_speeds[k]);
  double shortest = cells.shortest[first / cells_of_shortest];
  for (int k = cells_of_shortest; k < count; k += cells_of_shortest) {
    shortest = physics::smaller(shortest, cells.shortest[(first + k) / cells_of_shortest]);
  }
  return shortest < smallest * (1.0 + 1e-14) * fastest;
}

/// The smallest of the steps so far and those of a block.
double smallest_step(double smallest, const CellColumns& cells, const double* wave_speeds,
                     int first, int count) {
  if (!can_be_smaller(smallest, cells, wave_speeds, first, count)) return smallest;
  for (int k = 0; k < count; ++k) {
    const bool wet = wave_speeds[k] > 0.0;
    if (wet) smallest = physics::smaller(smallest, cells.char_length[first + k] / wave_speeds[k]);
  }
  return smallest;
}

/// Extremes of the states of the cells [begin, end).
[[gnu::flatten]] physics::FlowExtremes extremes_of(const CellColumns& given, int begin, int end) {
  const CellColumns cells = given;  // a copy, which the loop cannot change
  double fastest = 0.0, most_rapid = 0.0;
  int not_finite = 0;
#pragma omp simd reduction(max : fastest, most_rapid) reduction(+ : not_finite)
  for (int i = begin; i < end; ++i) {
    const physics::FlowExtremes of_cell = physics::extremes_of_state(
        cells.h[i], cells.qx[i], cells.qy[i], {cells.reciprocal[i], cells.celerity[i]});
    fastest = physics::larger(fastest, of_cell.speed_squared);
    most_rapid = physics::larger(most_rapid, of_cell.speed_squared_per_depth);
    not_finite += of_cell.not_finite;
  }
  return {fastest, most_rapid, not_finite};
}

template <class Model>
Advance advance_cells(const CellColumns& cells, const CellRange& range, const StepValues& step,
                      double smallest) {
  int active_cells = 0;
  for (int first = range.begin; first < range.end; first += CellBlock::size) {
    const int count = range.end - first < CellBlock::size ? range.end - first : CellBlock::size;
    CellBlock block;
    stage(block, cells, first, count);
    Model::block(cells, range, step, first, count, block);
    if (block.new_maxima > 0) store_maxima(cells, block, first, count);
    if (range.extremes != nullptr) {
      *range.extremes = physics::united(*range.extremes, extremes_of(cells, first, first + count));
    }
    smallest = smallest_step(smallest, cells, block.wave_speeds, first, count);
    if (block.dry_cells > 0) smallest = physics::smaller(smallest, step.dry_step);
    active_cells += block.active_cells;
  }
  return {smallest, active_cells == 0};
}

template <template <bool, bool, bool> class Model>
Advance advance(const CellColumns& cells, const CellRange& range, const StepValues& step,
                double smallest) {
  const int combination = (cells.manning != nullptr ? 4 : 0) +
                          (step.rain_depths != nullptr ? 2 : 0) + (range.demand != nullptr ? 1 : 0);
  switch (combination) {
    case 0:
      return advance_cells<Model<false, false, false>>(cells, range, step, smallest);
    case 1:
      return advance_cells<Model<false, false, true>>(cells, range, step, smallest);
    case 2:
      return advance_cells<Model<false, true, false>>(cells, range, step, smallest);
    case 3:
      return advance_cells<Model<false, true, true>>(cells, range, step, smallest);
    case 4:
      return advance_cells<Model<true, false, false>>(cells, range, step, smallest);
    case 5:
      return advance_cells<Model<true, false, true>>(cells, range, step, smallest);
    case 6:
      return advance_cells<Model<true, true, false>>(cells, range, step, smallest);
    default:
      return advance_cells<Model<true, true, true>>(cells, range, step, smallest);
  }
}

}  // namespace
}  // namespace engine
