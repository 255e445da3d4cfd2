// What an engine is asked to keep between two steps, and what it goes on from.
#include <stdexcept>

#include "engine/Engine.hpp"

namespace engine {

namespace {

/// Calls visit(a column of a state, that of the tables) for all that a state holds.
template <class State, class Tables, class Visit>
void for_each_column(State& state, Tables& tables, const Visit& visit) {
  auto& c = tables.cells;
  visit(state.h, c.h);
  visit(state.qx, c.qx);
  visit(state.qy, c.qy);
  visit(state.eta, c.eta);
  visit(state.max_h, c.max_h);
  visit(state.infiltrated, c.infiltrated);
  visit(state.hs, c.hs);
  visit(state.qsx, c.qsx);
  visit(state.qsy, c.qsy);
  visit(state.dqs_dh, c.dqs_dh);
  if (!tables.maxima) return;
  auto& m = *tables.maxima;
  visit(state.peak_depth, m.depth);
  visit(state.time_of_peak, m.time_of_depth);
  visit(state.peak_level, m.level);
  visit(state.peak_speed_squared, m.speed_squared);
  visit(state.peak_discharge_squared, m.discharge_squared);
  visit(state.arrival_time, m.arrival);
  visit(state.under_water_since, m.under_water_since);
  visit(state.time_under_water, m.time_under_water);
}

}  // namespace

State Engine::state() {
  State state;
  save(state);
  return state;
}

void Engine::save(State& state) {
  bring_home();
  for_each_column(state, tables_, [&](std::vector<double>& values, const Column& column) {
    save_column(column, values);
  });
  forcing_.save(state);
  state.has_told_not_hyperbolic = has_told_not_hyperbolic_;
}

void Engine::save_column(const Column& column, std::vector<double>& values) {
  values.resize(column.empty() ? 0 : at(tables_.owned));
  if (!column.empty()) read(column, values);
}

void Engine::set_state(const State& state) {
  if (tables_.maxima && state.peak_depth.empty()) {
    throw std::invalid_argument("The state holds no maxima of the flow.");
  }
  bring_home();
  for_each_column(state, tables_, [&](const std::vector<double>& values, Column& column) {
    column.resize(values.empty() ? 0 : at(tables_.ghosts().end));
    load_column(values, column);
  });
  halo_.start(tables_);
  halo_.finish();
  tables_.set_bed_from_sediment({0, tables_.ghosts().end});
  forcing_.load(state, tables_);
  activity_.find_rain(tables_);
  activity_.wake_all();
  if (state.has_told_not_hyperbolic) ignore_not_hyperbolic();
  if (tables_.maxima) tables_.maxima->forget_hints();
  if (notes_) notes_->set_last_step(notes());
  take_anew();
}

std::vector<char> Engine::awake() const {
  if (device_) device_->bring_forcing_home();
  std::vector<char> awake;
  for (int k = 0; k < tables_.owned; ++k) {
    awake.push_back(activity_.is_awake(tables_.place[at(k)] / tables_.cells_per_patch()) ? 1 : 0);
  }
  return awake;
}

void Engine::set_awake(const std::vector<char>& awake) {
  std::vector<char> of_patches(tables_.patches.patches.size(), 0);
  for (std::size_t k = 0; k < awake.size(); ++k) {
    if (awake[k] != 0) of_patches[at(tables_.place[k] / tables_.cells_per_patch())] = 1;
  }
  if (device_) device_->bring_forcing_home();
  activity_.wake(std::move(of_patches));
}

void Engine::load_column(const std::vector<double>& values, Column& column) const {
  for (int k = 0; k < static_cast<int>(values.size()); ++k) {
    column[at(tables_.place[at(k)])] = values[at(k)];
  }
}

void Engine::save_notes(SavedNotes& notes) {
  bring_home();
  notes.of_last_step = notes_->of_last_step();
  save_column(notes_->recovered, notes.recovered);
  save_column(notes_->lifted, notes.lifted);
  save_column(notes_->taken_discharge, notes.taken_discharge);
}

void Engine::load_notes(const SavedNotes& notes) {
  bring_home();
  notes_->set_last_step(notes.of_last_step);
  load_column(notes.recovered, notes_->recovered);
  load_column(notes.lifted, notes_->lifted);
  load_column(notes.taken_discharge, notes_->taken_discharge);
  take_anew();
}

}  // namespace engine
