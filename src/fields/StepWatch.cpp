#include "fields/StepWatch.hpp"

#include "globals/Globals.hpp"
#include "physics/cell_update_exner.hpp"
#include "physics/stable_step.hpp"

namespace fields {

namespace {

physics::FlowExtremes extremes_of(const ComputationalCell& cell) {
  const HydraulicVariableSWE& U = cell.U;
  return physics::extremes_of_state(U.h, U.qx, U.qy,
                                    physics::depth_terms(U.h, Constants::ZERO_DEPTH));
}

}  // namespace

StepWatch::StepWatch(PhysicalModel& model)
    : model_(model), infiltrated_before_(model.cells.size()), unseen_(model.cells.size()) {
  note_states(model.dtMin());
}

void StepWatch::sources_come_next() {
  for (std::size_t i = 0; i < unseen_.size(); ++i) {
    infiltrated_before_[i] = model_.cells[i]->param.infiltrated_depth;
  }
}

void StepWatch::balance_comes_next() {
  for (std::size_t i = 0; i < unseen_.size(); ++i) {
    const ComputationalCell& cell = *model_.cells[i];
    unseen_[i].recovered += infiltrated_before_[i] - cell.param.infiltrated_depth;
    const double hs = physics::balanced_sediment(cell.U.hs, cell.flux_balance().hs,
                                                 Globals::dt * (1.0 / cell.area));
    if (hs < 0.0) unseen_[i].lifted -= hs;
  }
}

void StepWatch::note_states(double stable_step) {
  physics::FlowExtremes all;
  for (const auto& cell : model_.cells) {
    const physics::FlowExtremes of_cell = extremes_of(*cell);
    physics::note(notes_.speed_squared, of_cell.speed_squared, cell->id);
    physics::note(notes_.speed_squared_per_depth, of_cell.speed_squared_per_depth, cell->id);
    all = physics::united(all, of_cell);
  }
  notes_.not_finite = all.not_finite;
  notes_.films = all.films;
  notes_.limiting_cell = limiting_cell(stable_step);
}

int StepWatch::limiting_cell(double smallest) const {
  const double dry_step =
      physics::stable_step_dry(model_.char_length_min, model_.h0, Constants::ZERO_DEPTH);
  const auto sets_step = [&](int cell) {
    return model_.cells[static_cast<std::size_t>(cell)]->dtMin() == smallest;
  };
  const auto first = [&] {
    for (int cell = 0; cell < model_.n_cells; ++cell) {
      if (sets_step(cell)) return cell;
    }
    return -1;
  };
  return physics::limiting_cell(smallest, dry_step, notes_.limiting_cell, sets_step, first);
}

}  // namespace fields
