// The loop over cells: their step, largest depths and stable step in one pass, block by block.
#pragma once

#include "engine/host/loops.hpp"
#include "kernels/cell.hpp"

// Names are internal to each build of loops.cpp, so that no build runs the instructions of another.
namespace engine {
namespace {

using kernels::CellColumns;
using kernels::StepValues;

/// A block of cells: their slots, in a type that gathers can use, and what their step leaves.
struct CellBlock {
  static constexpr int size = cells_of_block;
  int slots[3][size];
  double wave_speeds[size];  ///< see kernels::CellAfter
  double max_h[size];
  int deeper_cells = 0, dry_cells = 0, changing_cells = 0;
};

void stage(CellBlock& block, const CellColumns& cells, int first, int count) {
#pragma omp simd
  for (int k = 0; k < count; ++k) {
    for (int s = 0; s < 3; ++s) block.slots[s][k] = cells.slots[s][first + k];
  }
}

/// Steps of the cells [first, first + count) of the two models.
template <bool friction, bool rain, bool soil>
struct AdvanceWater {
  static kernels::CellAfter cell(const CellColumns& cells, int i, const kernels::CellSlots& slots,
                                 const CellRange& range, const StepValues& step) {
    const double demand = soil ? range.demand[i - range.begin] : 0.0;
    return kernels::advance_water<friction, rain, soil>(cells, i, slots, range.slots, demand, step);
  }
};

template <bool friction, bool rain, bool>
struct AdvanceWaterAndBed {
  static kernels::CellAfter cell(const CellColumns& cells, int i, const kernels::CellSlots& slots,
                                 const CellRange& range, const StepValues& step) {
    return kernels::advance_water_and_bed<friction, rain>(cells, i, slots, range.slots, step);
  }
};

/// The terms of the depth of the cells [begin, end), before their step.
[[gnu::flatten]] void store_terms(const CellColumns& given, int begin, int end, double zero_depth) {
  const CellColumns cells = given;  // a copy, which the loop cannot change
#pragma omp simd
  for (int i = begin; i < end; ++i) kernels::store_terms(cells, i, zero_depth);
}

template <class Model>
[[gnu::flatten]] void advance_block(CellColumns cells, CellRange range, StepValues step, int first,
                                    int count, CellBlock& block) {
  int deeper_cells = 0, dry_cells = 0, changing_cells = 0;
#pragma omp simd reduction(+ : deeper_cells, dry_cells, changing_cells)
  for (int k = 0; k < count; ++k) {
    const kernels::CellAfter after = Model::cell(
        cells, first + k, {block.slots[0][k], block.slots[1][k], block.slots[2][k]}, range, step);
    block.max_h[k] = after.max_h;
    block.wave_speeds[k] = after.wave_speed;
    deeper_cells += after.is_deeper ? 1 : 0;
    dry_cells += after.is_dry ? 1 : 0;
    changing_cells += after.may_change ? 1 : 0;
  }
  block.deeper_cells = deeper_cells;
  block.dry_cells = dry_cells;
  block.changing_cells = changing_cells;
}

/// Largest depths rarely change once a flood has passed: they are written where one of a block
/// does.
void store_largest_depths(const CellColumns& cells, const CellBlock& block, int first, int count) {
#pragma omp simd
  for (int k = 0; k < count; ++k) cells.max_h[first + k] = block.max_h[k];
}

/// Whether a cell of a block can lower the smallest step so far: it cannot where the shortest of
/// them, with the fastest wave of all, would not. The margin is for the rounding of the product.
bool can_be_smaller(double smallest, const double* shortest_runs, const double* wave_speeds,
                    int count) {
  double fastest = 0.0;
#pragma omp simd reduction(max : fastest)
  for (int k = 0; k < count; ++k) fastest = physics::larger(fastest, wave_speeds[k]);
  double shortest = shortest_runs[0];
  for (int k = cells_of_shortest; k < count; k += cells_of_shortest) {
    shortest = physics::smaller(shortest, shortest_runs[k / cells_of_shortest]);
  }
  return shortest < smallest * (1.0 + 1e-14) * fastest;
}

/// The smallest of the steps so far and those of a block.
double smallest_step(double smallest, const CellColumns& cells, const double* shortest_runs,
                     const double* wave_speeds, int first, int count) {
  if (!can_be_smaller(smallest, shortest_runs, wave_speeds, count)) return smallest;
  for (int k = 0; k < count; ++k) {
    const bool wet = wave_speeds[k] > 0.0;
    if (wet) smallest = physics::smaller(smallest, cells.char_length[first + k] / wave_speeds[k]);
  }
  return smallest;
}

/// Extremes of the states of the cells [begin, end).
[[gnu::flatten]] physics::FlowExtremes extremes_of(const CellColumns& given, double zero_depth,
                                                   int begin, int end) {
  const CellColumns cells = given;  // a copy, which the loop cannot change
  double fastest = 0.0, most_rapid = 0.0;
  int not_finite = 0, films = 0;
#pragma omp simd reduction(max : fastest, most_rapid) reduction(+ : not_finite, films)
  for (int i = begin; i < end; ++i) {
    const physics::FlowExtremes of_cell = physics::extremes_of_state(
        cells.h[i], cells.qx[i], cells.qy[i], physics::depth_terms(cells.h[i], zero_depth));
    fastest = physics::larger(fastest, of_cell.speed_squared);
    most_rapid = physics::larger(most_rapid, of_cell.speed_squared_per_depth);
    not_finite += of_cell.not_finite;
    films += of_cell.films;
  }
  return {fastest, most_rapid, not_finite, films};
}

template <class Model>
Advance advance_cells(const CellColumns& cells, const CellRange& range, const StepValues& step,
                      double smallest) {
  int changing_cells = 0;
  for (int first = range.begin; first < range.end; first += CellBlock::size) {
    const int count = range.end - first < CellBlock::size ? range.end - first : CellBlock::size;
    CellBlock block;
    stage(block, cells, first, count);
    advance_block<Model>(cells, range, step, first, count, block);
    if (block.deeper_cells > 0) store_largest_depths(cells, block, first, count);
    if (range.hints != nullptr && block.deeper_cells > 0) {
      range.hints[(first - range.begin) / cells_of_shortest].may_be_deeper = true;
    }
    if (range.extremes != nullptr) {
      *range.extremes = physics::united(*range.extremes,
                                        extremes_of(cells, step.zero_depth, first, first + count));
    }
    const double* const shortest = range.shortest + (first - range.begin) / cells_of_shortest;
    smallest = smallest_step(smallest, cells, shortest, block.wave_speeds, first, count);
    if (block.dry_cells > 0) smallest = physics::smaller(smallest, step.dry_step);
    changing_cells += block.changing_cells;
  }
  return {smallest, changing_cells == 0};
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
