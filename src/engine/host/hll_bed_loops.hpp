// The loops of the first-order HLL scheme over one patch that move its bed.
#pragma once

#include "engine/host/hll_loops.hpp"

// Names are internal to each build of loops.cpp, so that no build runs the instructions of another.
namespace engine {
namespace {

/// Place of the cell at an entry of a patch that has edge states; of a gap, that of the last cell
/// before it.
inline int place_at(const HllRange& range, int entry) {
  if (entry >= range.ring) return range.around[entry - range.ring];
  return range.first_cell + (entry < range.cells ? entry : range.cells - 1);
}

template <bool friction>
[[gnu::flatten]] void hll_beds(const kernels::CellColumns& given, const HllRange& range,
                               kernels::HllWaterColumns waters, kernels::HllCellColumns shapes,
                               int count, kernels::HllBedColumns beds, kernels::StepValues step) {
  const kernels::CellColumns cells = given;  // a copy, which the loop cannot change
  constexpr int block = kernels::hll_block;
  for (int first = 0; first < count; first += block) {
    const double* const geometry =
        shapes.geometry + first * kernels::HllCellColumns::numbers_in_first_order;
    int places[block];
    for (int k = 0; k < block; ++k) places[k] = place_at(range, first + k);
#pragma omp simd
    for (int k = 0; k < block; ++k) {
      kernels::store_hll_bed<friction>(cells, places[k], waters, geometry + k, first + k, beds,
                                       step);
    }
  }
}

void hll_beds_of_patch(const kernels::CellColumns& cells, const HllRange& range,
                       const kernels::HllWaterColumns& waters,
                       const kernels::HllCellColumns& shapes, int count,
                       const kernels::HllBedColumns& beds, const kernels::StepValues& step) {
  const auto loop = cells.manning != nullptr ? hll_beds<true> : hll_beds<false>;
  loop(cells, range, waters, shapes, count, beds, step);
}

/// Of all edges of a patch, whose count is a multiple of a block.
[[gnu::flatten]] void hll_bed_fluxes(const kernels::EdgeColumns<kernels::Local>& given, int count,
                                     kernels::HllCellStates states, kernels::HllBedColumns beds,
                                     kernels::SlotColumns left, kernels::SlotColumns right) {
  const kernels::EdgeColumns<kernels::Local> edges = given;
  constexpr int block = kernels::hll_block;
  for (int first = 0; first < count; first += block) {
    const HllEnds ends = ends_of_block(edges, first);
#pragma omp simd
    for (int k = 0; k < block; ++k) {
      const int e = first + k;
      const physics::Edge edge = {edges.nx[e], edges.ny[e], edges.length[e]};
      const double discharge =
          kernels::hll_bed_discharge(states, beds, ends.left[k], ends.right[k], edge, left.mass[e]);
      left.bed[e] = -discharge;
      right.bed[e] = discharge;
    }
  }
}

template <bool friction>
[[gnu::flatten]] double advance_hll_bed_block(kernels::CellColumns cells, HllCellRange range,
                                              kernels::StepValues step, int first, int count) {
  constexpr int block = kernels::hll_block;
  int slots[3][block];
  for (int s = 0; s < 3; ++s) {
    for (int k = 0; k < count; ++k) slots[s][k] = range.slots[s][first + k];
  }
  double rate = 0.0;
#pragma omp simd reduction(max : rate)
  for (int k = 0; k < count; ++k) {
    const double of_cell = kernels::advance_hll_bed<friction>(cells, range.first_cell + first + k,
                                                              slots[0][k], slots[1][k], slots[2][k],
                                                              range.slots_of_patch, range.to, step);
    rate = physics::larger(rate, of_cell);
  }
  return rate;
}

double advance_hll_bed_of_patch(const kernels::CellColumns& cells, const HllCellRange& range,
                                const kernels::StepValues& step) {
  const auto advance =
      cells.manning != nullptr ? advance_hll_bed_block<true> : advance_hll_bed_block<false>;
  constexpr int block = kernels::hll_block;
  double rate = 0.0;
  for (int first = 0; first < range.cells; first += block) {
    const int count = range.cells - first < block ? range.cells - first : block;
    rate = physics::larger(rate, advance(cells, range, step, first, count));
  }
  return rate;
}

}  // namespace
}  // namespace engine
