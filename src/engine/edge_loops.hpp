// The loops over edges: fluxes into the slots of both sides, block by block.
#pragma once

#include "engine/views.hpp"
#include "physics/flux_clhllc.hpp"
#include "physics/flux_lhllc.hpp"
#include "physics/pointwise.hpp"

// Names are internal to each build of kernels.cpp, so that no build runs the instructions of
// another.
namespace engine {
namespace {

using physics::CellSediment;
using physics::EdgeSide;

/// A cell in the frame of an edge. After a step the free surface is bed and depth; before the first
/// one it is as the run gives it.
template <bool eta_given>
EdgeSide side_of(const CellColumns& cells, int i, const physics::Edge& edge, double zero_depth) {
  const double h = cells.h[i];
  const double bed = cells.bed[i];
  return physics::to_edge_frame(
      {h, cells.qx[i], cells.qy[i], bed, eta_given ? cells.eta[i] : bed + h},
      {cells.reciprocal[i], cells.celerity[i]}, edge, zero_depth);
}

CellSediment sediment_of(const CellColumns& cells, int i) {
  return {cells.hs[i], cells.qsx[i], cells.qsy[i], cells.dqs_dh[i]};
}

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
template <bool eta_given>
struct FluxesOfWater {
  template <class Index>
  [[gnu::flatten]] static double block(CellColumns cells, EdgeColumns<Index> edges,
                                       const EdgeBlock& block, int first, int count,
                                       SlotColumns left, SlotColumns right, StepValues step) {
#pragma omp simd
    for (int k = 0; k < count; ++k) {
      const int e = first + k;
      const physics::Edge edge = {edges.nx[e], edges.ny[e], edges.length[e]};
      const EdgeSide L = side_of<eta_given>(cells, block.left[k], edge, step.zero_depth);
      const EdgeSide R = side_of<eta_given>(cells, block.right[k], edge, step.zero_depth);
      const physics::SlotPair slots = physics::flux_lhllc(L, R, edge);
      left.mass[k] = slots.left.h;
      left.momentum_x[k] = slots.left.qx;
      left.momentum_y[k] = slots.left.qy;
      right.mass[k] = slots.right.h;
      right.momentum_x[k] = slots.right.qx;
      right.momentum_y[k] = slots.right.qy;
    }
    return 0.0;
  }
};

/// The same with the bed; returns the least radicand of the bed wave, 0 where none is negative.
template <bool eta_given>
struct FluxesOfWaterAndBed {
  template <class Index>
  [[gnu::flatten]] static double block(CellColumns cells, EdgeColumns<Index> edges,
                                       const EdgeBlock& block, int first, int count,
                                       SlotColumns left, SlotColumns right, StepValues step) {
    double least_radicand = 0.0;
#pragma omp simd reduction(min : least_radicand)
    for (int k = 0; k < count; ++k) {
      const int e = first + k;
      const int l = block.left[k], r = block.right[k];
      const physics::Edge edge = {edges.nx[e], edges.ny[e], edges.length[e]};
      const physics::CoupledSlotPair slots = physics::flux_clhllc(
          side_of<eta_given>(cells, l, edge, step.zero_depth), sediment_of(cells, l),
          side_of<eta_given>(cells, r, edge, step.zero_depth), sediment_of(cells, r), edge,
          step.porosity, step.zero_depth);
      left.mass[k] = slots.left.water.h;
      left.momentum_x[k] = slots.left.water.qx;
      left.momentum_y[k] = slots.left.water.qy;
      left.bed[k] = slots.left.hs;
      right.mass[k] = slots.right.water.h;
      right.momentum_x[k] = slots.right.water.qx;
      right.momentum_y[k] = slots.right.water.qy;
      right.bed[k] = slots.right.hs;
      least_radicand = physics::smaller(least_radicand, slots.left_radicand);
      least_radicand = physics::smaller(least_radicand, slots.right_radicand);
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

template <template <bool> class Fluxes, class Index>
bool fluxes(const CellColumns& cells, const EdgeColumns<Index>& edges, const EdgeRange& range,
            const StepValues& step) {
  return cells.eta != nullptr ? fluxes_by_blocks<Fluxes<true>>(cells, edges, range, step)
                              : fluxes_by_blocks<Fluxes<false>>(cells, edges, range, step);
}

}  // namespace
}  // namespace engine
