// Steps of a flow, and its states in the objects of its model, where tests look at them.
#pragma once

#include "fields/WholeFlow.hpp"
#include "globals/Globals.hpp"
#include "model/PhysicalModel.hpp"

namespace support {

/// The clock of the globals, with a step (s).
inline fields::StepTimes step_times(double dt) {
  return {Globals::t, Globals_Params::tStart, Globals_Params::tEnd, dt};
}

/// Applies steps at a Courant number; the clock stands at the start of each step while it is
/// applied.
inline void advance(fields::Flow& flow, int steps, double courant) {
  double next = courant * flow.stable_step(0.0);
  for (int i = 0; i < steps; ++i) {
    const double dt = next;
    next = courant * flow.advance(step_times(dt));
    Globals::t += dt;
  }
}

/// Brings the objects of a flow up to date.
inline void store(const fields::WholeFlow& flow, PhysicalModel& model) {
  std::vector<double> infiltrated(model.cells.size()), largest(model.cells.size());
  flow.read(fields::Field::infiltrated_depth, infiltrated);
  flow.read(fields::Field::largest_depth, largest);
  for (std::size_t i = 0; i < model.cells.size(); ++i) {
    ComputationalCell& cell = *model.cells[i];
    const fields::CellState state = flow.state(static_cast<cases::Number>(i));
    cell.U.set_values(state.h, state.qx, state.qy, state.hs, state.qsx, state.qsy);
    cell.dqs_dh = state.dqs_dh;
    cell.bed_level = state.bed_level;
    cell.free_surface_level = state.water_level;
    cell.param.infiltrated_depth = infiltrated[i];
    cell.max_values.h = largest[i];
  }
}

}  // namespace support
