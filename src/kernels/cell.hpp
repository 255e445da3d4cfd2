// The body of a cell: balance of its slots, sources, dry rules, and what follows from its new
// state.
#pragma once

#include "kernels/columns.hpp"
#include "physics/bed_load_mpm.hpp"
#include "physics/cell_update_exner.hpp"
#include "physics/cell_update_swe.hpp"
#include "physics/friction_manning.hpp"
#include "physics/stable_step.hpp"

namespace kernels {

/// The slots of a cell, in their order.
struct CellSlots {
  int first, second, third;
};

/// What a cell tells the loop around it.
struct CellAfter {
  double max_h;       ///< largest depth so far, m; for the loop to keep
  double wave_speed;  ///< of the fastest wave, m/s; 0: it does not bound the step
  bool is_deeper;     ///< than ever before
  bool is_dry;        ///< of depth up to the threshold
  bool may_change;    ///< in a step without inflow
};

template <class Column>
QM_HD inline double balance(const CellSlots& cell, Column slots) {
  return physics::sum_of_slots(slots[cell.first], slots[cell.second], slots[cell.third]);
}

template <bool friction, class Cells>
QM_HD inline physics::MomentumSource friction_of(const Cells& cells, int i, double zero_depth) {
  if constexpr (!friction) return {0.0, 0.0};
  const double h = cells.h[i];
  const bool wet = physics::is_wet(h, zero_depth);
  const physics::MomentumSource source = physics::friction_manning(
      cells.manning[i], wet ? h : 1.0, cells.reciprocal[i], cells.qx[i], cells.qy[i]);
  return {wet ? source.qx : 0.0, wet ? source.qy : 0.0};
}

/// Stores the terms of the depth of a cell.
template <class Cells>
QM_HD inline void store_terms(const Cells& cells, int i, double zero_depth) {
  const physics::DepthTerms depth = physics::depth_terms(cells.h[i], zero_depth);
  cells.reciprocal[i] = depth.reciprocal;
  cells.celerity[i] = depth.celerity;
}

/// Stores the new depth and discharges of a cell, and what follows from them.
template <class Cells>
QM_HD inline CellAfter store_water(const Cells& cells, int i, double h, double qx, double qy,
                                   double zero_depth) {
  const physics::DepthTerms depth = physics::depth_terms(h, zero_depth);
  const double max_h = cells.max_h[i];
  cells.h[i] = h;
  cells.qx[i] = qx;
  cells.qy[i] = qy;
  const bool wet = physics::is_wet(h, zero_depth);
  const bool dry = h <= zero_depth;
  return {physics::larger(max_h, h), wet ? physics::wave_speed(depth, qx, qy) : 0.0, h > max_h, dry,
          !dry};
}

/// A step of a cell of the hydrodynamic model, whose soil asks for a depth (m).
template <bool friction, bool rain, bool soil, class Cells, class Slots>
QM_HD inline CellAfter advance_water(const Cells& cells, int i, const CellSlots& cell,
                                     const Slots& slots, double demand, const StepValues& step) {
  const physics::MomentumSource source = friction_of<friction>(cells, i, step.zero_depth);
  const physics::SweCellUpdate after =
      physics::update_swe({.h = cells.h[i],
                           .qx = cells.qx[i],
                           .qy = cells.qy[i],
                           .Fh = balance(cell, slots.mass),
                           .Fqx = balance(cell, slots.momentum_x),
                           .Fqy = balance(cell, slots.momentum_y),
                           .dt_over_area = step.dt * cells.reciprocal_area[i],
                           .dt = step.dt,
                           .rain = rain ? step.rain_depths[cells.rain[i]] : 0.0,
                           .source_qx = source.qx,
                           .source_qy = source.qy,
                           .infiltration_step = demand,
                           .infiltrated_depth = soil ? cells.infiltrated[i] : 0.0,
                           .bed_rock_level = cells.bed[i],
                           .max_node_level = cells.max_node[i]},
                          step.zero_depth);
  if constexpr (soil) cells.infiltrated[i] = after.infiltrated_depth;
  CellAfter told = store_water(cells, i, after.h, after.qx, after.qy, step.zero_depth);
  // Depths up to the threshold do not flow, but a soil takes them in.
  if constexpr (soil) told.may_change = after.h != 0.0;
  return told;
}

/// A step of a cell of the model with sediments.
template <bool friction, bool rain, class Cells, class Slots>
QM_HD inline CellAfter advance_water_and_bed(const Cells& cells, int i, const CellSlots& cell,
                                             const Slots& slots, const StepValues& step) {
  const physics::MomentumSource source = friction_of<friction>(cells, i, step.zero_depth);
  const physics::ExnerCellUpdate after =
      physics::update_exner({.h = cells.h[i],
                             .qx = cells.qx[i],
                             .qy = cells.qy[i],
                             .hs = cells.hs[i],
                             .qsx = cells.qsx[i],
                             .qsy = cells.qsy[i],
                             .Fh = balance(cell, slots.mass),
                             .Fqx = balance(cell, slots.momentum_x),
                             .Fqy = balance(cell, slots.momentum_y),
                             .Fhs = balance(cell, slots.bed),
                             .dt_over_area = step.dt * cells.reciprocal_area[i],
                             .dt = step.dt,
                             .rain = rain ? step.rain_depths[cells.rain[i]] : 0.0,
                             .source_qx = source.qx,
                             .source_qy = source.qy},
                            step.zero_depth);
  const CellAfter told = store_water(cells, i, after.h, after.qx, after.qy, step.zero_depth);
  const physics::BedLoad load =
      physics::bed_load_of_cell({after.h, after.qx, after.qy, after.hs, after.qsx, after.qsy},
                                physics::depth_terms(after.h, step.zero_depth).reciprocal,
                                friction ? cells.manning[i] : 0.0, step.grains, step.zero_depth);
  cells.hs[i] = after.hs;
  cells.bed[i] = cells.rock[i] + after.hs;
  cells.qsx[i] = load.qsx;
  cells.qsy[i] = load.qsy;
  cells.dqs_dh[i] = load.dqs_dh;
  return told;
}

/// Sediment (m) that the limit at the bed rock will create in a cell in this step.
template <class Cells, class Slots>
QM_HD inline double lifted_sediment(const Cells& cells, int i, const CellSlots& cell,
                                    const Slots& slots, const StepValues& step) {
  const double hs = physics::balanced_sediment(cells.hs[i], balance(cell, slots.bed),
                                               step.dt * cells.reciprocal_area[i]);
  return hs < 0.0 ? -hs : 0.0;
}

}  // namespace kernels
