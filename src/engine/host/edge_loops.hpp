// The loops over edges: fluxes into the slots of both sides, block by block.
#pragma once

#include <type_traits>

#include "engine/host/loops.hpp"
#include "kernels/edge.hpp"

// Names are internal to each build of loops.cpp, so that no build runs the instructions of another.
namespace engine {
namespace {

using kernels::CellColumns;
using kernels::EdgeColumns;
using kernels::SlotColumns;
using kernels::StepValues;

/// Cells of a block of edges, in a type that gathers can use. Blocks stay in the first cache.
struct EdgeBlock {
  static constexpr int size = 256;
  int left[size], right[size];
};

template <class Index>
void stage(EdgeBlock& block, const EdgeColumns<Index>& edges, int first_cell, int first,
           int count) {
#pragma omp simd
  for (int k = 0; k < count; ++k) {
    block.left[k] = first_cell + edges.left[first + k];
    block.right[k] = first_cell + edges.right[first + k];
  }
}

/// Fluxes of the edges [first, first + count), whose cells are staged, into the slots from 0 on.
template <class given>
struct FluxesOfWater {
  template <class Index>
  [[gnu::flatten]] static double block(CellColumns cells, EdgeColumns<Index> edges,
                                       const EdgeBlock& block, int first, int count,
                                       SlotColumns left, SlotColumns right, StepValues step) {
#pragma omp simd
    for (int k = 0; k < count; ++k) {
      const int e = first + k;
      const physics::Edge edge = {edges.nx[e], edges.ny[e], edges.length[e]};
      kernels::flux_of_water<given>(cells, block.left[k], block.right[k], edge, step, left, right,
                                    k);
    }
    return 0.0;
  }
};

/// The same with the bed; returns the least radicand of the bed wave, 0 where none is negative.
template <class given>
struct FluxesOfWaterAndBed {
  template <class Index>
  [[gnu::flatten]] static double block(CellColumns cells, EdgeColumns<Index> edges,
                                       const EdgeBlock& block, int first, int count,
                                       SlotColumns left, SlotColumns right, StepValues step) {
    double least_radicand = 0.0;
#pragma omp simd reduction(min : least_radicand)
    for (int k = 0; k < count; ++k) {
      const int e = first + k;
      const physics::Edge edge = {edges.nx[e], edges.ny[e], edges.length[e]};
      const kernels::Radicands radicands = kernels::flux_of_water_and_bed<given>(
          cells, block.left[k], block.right[k], edge, step, left, right, k);
      // One after the other: GCC 12 does not vectorise a minimum of a minimum.
      least_radicand = physics::smaller(least_radicand, radicands.left);
      least_radicand = physics::smaller(least_radicand, radicands.right);
    }
    return least_radicand;
  }
};

template <class Fluxes, class Index>
bool fluxes_by_blocks(const CellColumns& cells, const EdgeColumns<Index>& edges,
                      const EdgeRange& range, const StepValues& step) {
  double least_radicand = 0.0;
  EdgeBlock block;
  for (int first = range.begin; first < range.end; first += EdgeBlock::size) {
    const int count = range.end - first < EdgeBlock::size ? range.end - first : EdgeBlock::size;
    stage(block, edges, range.first_cell, first, count);
    const double radicand =
        Fluxes::block(cells, edges, block, first, count, range.left.from(first - range.begin),
                      range.right.from(first - range.begin), step);
    least_radicand = physics::smaller(least_radicand, radicand);
  }
  return least_radicand == 0.0;
}

/// Within a patch, whose cells are numbered by Local, the terms of the depth are there.
template <template <class> class Fluxes, class Index>
bool fluxes(const CellColumns& cells, const EdgeColumns<Index>& edges, const EdgeRange& range,
            const StepValues& step) {
  constexpr bool in_patch = std::is_same_v<Index, kernels::Local>;
  using kernels::Given;
  return cells.eta != nullptr
             ? fluxes_by_blocks<Fluxes<Given<true, in_patch>>>(cells, edges, range, step)
             : fluxes_by_blocks<Fluxes<Given<false, in_patch>>>(cells, edges, range, step);
}

}  // namespace
}  // namespace engine
