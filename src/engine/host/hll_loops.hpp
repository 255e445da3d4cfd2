// The loops of the HLL schemes over one patch.
#pragma once

#include "engine/host/cell_loops.hpp"
#include "engine/host/loops.hpp"

// Names are internal to each build of loops.cpp, so that no build runs the instructions of another.
namespace engine {
namespace {

/// The water of consecutive cells of the tables.
template <bool friction>
[[gnu::flatten]] void hll_waters(const kernels::CellColumns& given, int first, int count,
                                 kernels::HllWaterColumns waters, double zero_depth) {
  const kernels::CellColumns cells = given;  // a copy, which the loop cannot change
#pragma omp simd
  for (int k = 0; k < count; ++k) {
    kernels::store_hll_water<friction>(cells, first + k, waters, k, zero_depth);
  }
}

/// That of cells at given places, into the entries from k on.
template <bool friction>
[[gnu::flatten]] void hll_waters_at(const kernels::CellColumns& given, const int* places, int begin,
                                    int count, kernels::HllWaterColumns waters, double zero_depth) {
  const kernels::CellColumns cells = given;  // a copy, which the loop cannot change
#pragma omp simd
  for (int k = 0; k < count; ++k) {
    kernels::store_hll_water<friction>(cells, places[k], waters, begin + k, zero_depth);
  }
}

void hll_waters_of_patch(const kernels::CellColumns& cells, const HllRange& range,
                         const kernels::HllWaterColumns& waters, double zero_depth) {
  if (cells.manning != nullptr) {
    hll_waters<true>(cells, range.first_cell, range.cells, waters, zero_depth);
    hll_waters_at<true>(cells, range.around, range.ring, range.cells_around, waters, zero_depth);
  } else {
    hll_waters<false>(cells, range.first_cell, range.cells, waters, zero_depth);
    hll_waters_at<false>(cells, range.around, range.ring, range.cells_around, waters, zero_depth);
  }
}

/// States of first order: of consecutive cells of the tables, and of those at given places, into
/// the entries from a multiple of a block on.
[[gnu::flatten]] void hll_states(const kernels::CellColumns& given, int first_cell, int count,
                                 kernels::HllCellColumns shapes, kernels::HllCellStates states,
                                 kernels::StepValues step) {
  const kernels::CellColumns cells = given;  // a copy, which the loop cannot change
  constexpr int block = kernels::hll_block;
  for (int first = 0; first < count; first += block) {
    const double* const geometry =
        shapes.geometry + first * kernels::HllCellColumns::numbers_in_first_order;
    const int end = count - first < block ? count - first : block;
#pragma omp simd
    for (int k = 0; k < end; ++k) {
      kernels::store_hll_cell_state(cells, first_cell + first + k, geometry + k, first + k, states,
                                    step);
    }
  }
}

[[gnu::flatten]] void hll_states_at(const kernels::CellColumns& given, const int* places, int begin,
                                    int count, kernels::HllCellColumns shapes,
                                    kernels::HllCellStates states, kernels::StepValues step) {
  const kernels::CellColumns cells = given;  // a copy, which the loop cannot change
  constexpr int block = kernels::hll_block;
  for (int first = 0; first < count; first += block) {
    const double* const geometry =
        shapes.geometry + (begin + first) * kernels::HllCellColumns::numbers_in_first_order;
#pragma omp simd
    for (int k = 0; k < block; ++k) {
      kernels::store_hll_cell_state(cells, places[first + k], geometry + k, begin + first + k,
                                    states, step);
    }
  }
}

void hll_states_of_patch(const kernels::CellColumns& cells, const HllRange& range,
                         const kernels::HllCellColumns& shapes,
                         const kernels::HllCellStates& states, const kernels::StepValues& step) {
  hll_states(cells, range.first_cell, range.cells, shapes, states, step);
  hll_states_at(cells, range.around, range.ring, range.cells_around, shapes, states, step);
}

/// Edge states of second order, block by block. Slopes and states each have a loop of their own:
/// together they need more registers than there are.
[[gnu::flatten]] void hll_edges(kernels::HllWaterColumns waters, kernels::HllCellColumns cells,
                                int count, kernels::HllEdgeColumns edges,
                                kernels::StepValues step) {
  constexpr int block = kernels::hll_block;
  constexpr int numbers = kernels::HllCellColumns::numbers;
  constexpr int weights_per_cell = kernels::HllCellColumns::weights_per_cell;
  for (int first = 0; first < count; first += block) {
    const double* const geometry = cells.geometry + first * numbers;
    const float* const weights = cells.weights + first * weights_per_cell;
    int neighbours[3][block];
    for (int s = 0; s < 3; ++s) {
#pragma omp simd
      for (int k = 0; k < block; ++k) neighbours[s][k] = cells.neighbours[s][first + k];
    }
    kernels::HllSlopesOfBlock slopes;
#pragma omp simd
    for (int k = 0; k < block; ++k) {
      kernels::store_hll_slopes(waters, geometry + k, weights + k, neighbours[0][k],
                                neighbours[1][k], neighbours[2][k], first + k, slopes, k, step);
    }
#pragma omp simd
    for (int k = 0; k < block; ++k) {
      kernels::store_hll_edges(waters, geometry + k, slopes, k, first + k, edges, step);
    }
  }
}

/// The states on both sides of a block of edges, in a type that gathers can use.
struct HllEnds {
  int left[kernels::hll_block], right[kernels::hll_block];
};

inline HllEnds ends_of_block(const kernels::EdgeColumns<kernels::Local>& edges, int first) {
  HllEnds ends;
#pragma omp simd
  for (int k = 0; k < kernels::hll_block; ++k) {
    ends.left[k] = edges.left[first + k];
    ends.right[k] = edges.right[first + k];
  }
  return ends;
}

/// Fetches what the next patch reads of a block of its cells.
inline void fetch(const HllAhead& ahead, int block) {
  constexpr int cells = kernels::hll_block, cells_of_line = 8;  // numbers in 64 bytes of the cache
  if (block * cells >= ahead.cells) return;
  const double* const geometry = ahead.geometry + block * cells * ahead.numbers;
  for (int line = 0; line < cells / cells_of_line; ++line) {
    const int first = block * cells + line * cells_of_line;
    for (const double* column : ahead.columns) __builtin_prefetch(column + first, 0, 2);
    for (int k = 0; k < ahead.numbers; ++k) {
      __builtin_prefetch(geometry + k * cells + line * cells_of_line, 0, 2);
    }
  }
}

/// Fluxes of all edges of a patch, whose count is a multiple of a block, into its slots.
template <class States>
[[gnu::flatten]] void hll_fluxes(const kernels::EdgeColumns<kernels::Local>& given, int count,
                                 States states, kernels::SlotColumns left,
                                 kernels::SlotColumns right, double zero_depth, HllAhead ahead) {
  const kernels::EdgeColumns<kernels::Local> edges = given;
  constexpr int block = kernels::hll_block;
  for (int first = 0; first < count; first += block) {
    fetch(ahead, first / block);
    const HllEnds ends = ends_of_block(edges, first);
#pragma omp simd
    for (int k = 0; k < block; ++k) {
      const int e = first + k;
      const physics::Edge edge = {edges.nx[e], edges.ny[e], edges.length[e]};
      const physics::SlotPair slots = physics::hll_edge_flux(
          kernels::hll_state(states, ends.left[k], edge),
          kernels::hll_state(states, ends.right[k], physics::reversed(edge)), edge, zero_depth);
      left.mass[e] = slots.left.h;
      left.momentum_x[e] = slots.left.qx;
      left.momentum_y[e] = slots.left.qy;
      right.mass[e] = slots.right.h;
      right.momentum_x[e] = slots.right.qx;
      right.momentum_y[e] = slots.right.qy;
    }
  }
}

/// A block of cells: their slots, in a type that gathers can use, and what their step leaves.
struct HllBlock {
  static constexpr int size = cells_of_block;
  int slots[3][size];
  double max_h[size];
  double taken_discharge[size];
};

template <bool friction, bool rain, bool soil, bool noted>
[[gnu::flatten]] HllAdvance advance_hll_block(kernels::CellColumns cells, HllCellRange range,
                                              kernels::StepValues step, int first, int count,
                                              HllBlock& block) {
  double rate = 0.0;
  int deeper_cells = 0, changing_cells = 0;
#pragma omp simd reduction(max : rate) reduction(+ : deeper_cells, changing_cells)
  for (int k = 0; k < count; ++k) {
    const double demand = soil ? range.demand[first + k] : 0.0;
    const kernels::HllCellAfter after = kernels::advance_hll<friction, rain, soil>(
        cells, range.first_cell + first + k, first + k, range.before, block.slots[0][k],
        block.slots[1][k], block.slots[2][k], range.slots_of_patch, demand, range.to, step);
    block.max_h[k] = after.max_h;
    if constexpr (noted) block.taken_discharge[k] = after.taken_discharge;
    rate = physics::larger(rate, after.crossing_rate);
    deeper_cells += after.is_deeper ? 1 : 0;
    changing_cells += after.may_change ? 1 : 0;
  }
  if (deeper_cells > 0) {
#pragma omp simd
    for (int k = 0; k < count; ++k) cells.max_h[range.first_cell + first + k] = block.max_h[k];
  }
  if (range.hints != nullptr && deeper_cells > 0) {
    range.hints[first / cells_of_shortest].may_be_deeper = true;
  }
  if constexpr (noted) {
    for (int k = 0; k < count; ++k) range.taken_discharge[first + k] += block.taken_discharge[k];
  }
  return {rate, changing_cells == 0};
}

template <bool friction, bool rain, bool soil>
HllAdvance advance_hll_cells(const kernels::CellColumns& cells, const HllCellRange& range,
                             const kernels::StepValues& step) {
  const auto advance_block = range.taken_discharge != nullptr
                                 ? advance_hll_block<friction, rain, soil, true>
                                 : advance_hll_block<friction, rain, soil, false>;
  HllAdvance all = {0.0, true};
  for (int first = 0; first < range.cells; first += HllBlock::size) {
    const int count = range.cells - first < HllBlock::size ? range.cells - first : HllBlock::size;
    HllBlock block;
    for (int s = 0; s < 3; ++s) {
#pragma omp simd
      for (int k = 0; k < count; ++k) block.slots[s][k] = range.slots[s][first + k];
    }
    const HllAdvance of_block = advance_block(cells, range, step, first, count, block);
    all.crossing_rate = physics::larger(all.crossing_rate, of_block.crossing_rate);
    all.all_rest = all.all_rest && of_block.all_rest;
  }
  if (range.extremes != nullptr) {
    kernels::CellColumns after = cells;
    after.h = range.to.h;
    after.qx = range.to.qx;
    after.qy = range.to.qy;
    *range.extremes =
        extremes_of(after, step.zero_depth, range.first_cell, range.first_cell + range.cells);
  }
  return all;
}

HllAdvance advance_hll_patch(const kernels::CellColumns& cells, const HllCellRange& range,
                             const kernels::StepValues& step) {
  const int combination = (cells.manning != nullptr ? 4 : 0) +
                          (step.rain_depths != nullptr ? 2 : 0) + (range.demand != nullptr ? 1 : 0);
  switch (combination) {
    case 0:
      return advance_hll_cells<false, false, false>(cells, range, step);
    case 1:
      return advance_hll_cells<false, false, true>(cells, range, step);
    case 2:
      return advance_hll_cells<false, true, false>(cells, range, step);
    case 3:
      return advance_hll_cells<false, true, true>(cells, range, step);
    case 4:
      return advance_hll_cells<true, false, false>(cells, range, step);
    case 5:
      return advance_hll_cells<true, false, true>(cells, range, step);
    case 6:
      return advance_hll_cells<true, true, false>(cells, range, step);
    default:
      return advance_hll_cells<true, true, true>(cells, range, step);
  }
}

}  // namespace
}  // namespace engine
