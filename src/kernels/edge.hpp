// The body of an edge between two cells: its flux, into a slot of each.
#pragma once

#include "kernels/columns.hpp"
#include "physics/flux_clhllc.hpp"
#include "physics/flux_lhllc.hpp"
#include "physics/pointwise.hpp"

namespace kernels {

/// What an edge finds in the columns, and what it has to compute: the free surface is bed and depth
/// after a step, and as the run gives it before the first one; the terms of the depth are there for
/// the cells of a patch while it is computed.
template <bool eta_given_, bool terms_given_>
struct Given {
  static constexpr bool eta = eta_given_, terms = terms_given_;
};

/// A cell in the frame of an edge.
template <class given, class Cells>
QM_HD inline physics::EdgeSide side_of(const Cells& cells, int i, const physics::Edge& edge,
                                       double zero_depth) {
  const double h = cells.h[i];
  const double bed = cells.bed[i];
  const physics::CellWater water = {h, cells.qx[i], cells.qy[i], bed,
                                    given::eta ? cells.eta[i] : bed + h};
  if constexpr (given::terms) {
    return physics::to_edge_frame(water, {cells.reciprocal[i], cells.celerity[i]}, edge,
                                  zero_depth);
  } else {
    return physics::to_edge_frame(water, edge, zero_depth);
  }
}

template <class Cells>
QM_HD inline physics::CellSediment sediment_of(const Cells& cells, int i) {
  return {cells.hs[i], cells.qsx[i], cells.qsy[i], cells.dqs_dh[i]};
}

template <class Slots>
QM_HD inline void fill_slot(const Slots& slots, int k, const physics::WaterSlot& slot) {
  slots.mass[k] = slot.h;
  slots.momentum_x[k] = slot.qx;
  slots.momentum_y[k] = slot.qy;
}

/// Water between the cells l and r, into slot k of both sides.
template <class given, class Cells, class Slots>
QM_HD inline void flux_of_water(const Cells& cells, int l, int r, const physics::Edge& edge,
                                const StepValues& step, const Slots& left, const Slots& right,
                                int k) {
  const physics::SlotPair slots =
      physics::flux_lhllc(side_of<given>(cells, l, edge, step.zero_depth),
                          side_of<given>(cells, r, edge, step.zero_depth), edge);
  fill_slot(left, k, slots.left);
  fill_slot(right, k, slots.right);
}

/// Radicands of the bed wave on both sides of an edge: the coupled system is not hyperbolic where
/// one is negative.
struct Radicands {
  double left, right;
};

/// Water and bed between the cells l and r, into slot k of both sides.
template <class given, class Cells, class Slots>
QM_HD inline Radicands flux_of_water_and_bed(const Cells& cells, int l, int r,
                                             const physics::Edge& edge, const StepValues& step,
                                             const Slots& left, const Slots& right, int k) {
  const physics::CoupledSlotPair slots =
      physics::flux_clhllc(side_of<given>(cells, l, edge, step.zero_depth), sediment_of(cells, l),
                           side_of<given>(cells, r, edge, step.zero_depth), sediment_of(cells, r),
                           edge, step.porosity, step.zero_depth);
  fill_slot(left, k, slots.left.water);
  fill_slot(right, k, slots.right.water);
  left.bed[k] = slots.left.hs;
  right.bed[k] = slots.right.hs;
  return {slots.left_radicand, slots.right_radicand};
}

/// Whether the coupled system of water and bed is hyperbolic in a cell, seen from an edge.
QM_HD inline bool is_hyperbolic(const CellColumns& cells, int i, const physics::Edge& edge,
                                const StepValues& step) {
  const physics::EdgeSide side = side_of<Given<false, false>>(cells, i, edge, step.zero_depth);
  const physics::CoupledSpeeds speeds =
      physics::coupled_speeds(side, cells.dqs_dh[i], step.porosity, step.zero_depth);
  return !(speeds.radicand < 0.0);
}

}  // namespace kernels
