#include "fields/ObjectsFlow.hpp"

#include <algorithm>

#include "fields/maxima_values.hpp"
#include "fields/nothing_imposed.hpp"
#include "globals/Globals.hpp"
#include "model/SWE_Exner.hpp"

namespace fields {

using cases::Number;

namespace {

ModelObjects objects_of(const cases::Case& contents) {
  Globals::t = Globals_Params::tStart = contents.t_start;
  Globals_Params::tEnd = contents.t_end;
  Constants::ZERO_DEPTH = contents.zero_depth;
  Globals_Sed::g_notHyperbolicIsTold = false;
  Globals_Sed::g_d50 = contents.sediment.d50;
  Globals_Sed::g_sedimentsDensity = contents.sediment.density;
  Globals_Sed::g_sedimentsManning = contents.sediment.manning;
  Globals_Sed::g_sedimentsPorosity = contents.sediment.porosity;
  return build_objects(contents);
}

/// Calls visit(a column of a state, the value of a cell) for those that a model has.
template <class State, class Visit>
void for_each_column(State& state, bool has_stepped, bool has_soils, bool has_sediments,
                     const Visit& visit) {
  visit(
      state.h, true, [](auto& cell) -> auto& { return cell.U.h; });
  visit(
      state.qx, true, [](auto& cell) -> auto& { return cell.U.qx; });
  visit(
      state.qy, true, [](auto& cell) -> auto& { return cell.U.qy; });
  visit(
      state.eta, !has_stepped, [](auto& cell) -> auto& { return cell.free_surface_level; });
  visit(
      state.max_h, true, [](auto& cell) -> auto& { return cell.max_values.h; });
  visit(
      state.infiltrated, has_soils,
      [](auto& cell) -> auto& { return cell.param.infiltrated_depth; });
  visit(
      state.hs, has_sediments, [](auto& cell) -> auto& { return cell.U.hs; });
  visit(
      state.qsx, has_sediments, [](auto& cell) -> auto& { return cell.U.qsx; });
  visit(
      state.qsy, has_sediments, [](auto& cell) -> auto& { return cell.U.qsy; });
  visit(
      state.dqs_dh, has_sediments, [](auto& cell) -> auto& { return cell.dqs_dh; });
}

bool has_term(const ComputationalCell& cell, const SourceTerm& term) {
  return std::find(cell.source_terms.begin(), cell.source_terms.end(), &term) !=
         cell.source_terms.end();
}

}  // namespace

ObjectsFlow::ObjectsFlow(const cases::Case& contents)
    : objects_(objects_of(contents)), model_(*objects_.model) {}

double ObjectsFlow::value(Field field, Number number) const {
  const ComputationalCell& of = cell(number);
  switch (field) {
    case Field::depth:
      return of.U.h;
    case Field::discharge_x:
      return of.U.qx;
    case Field::discharge_y:
      return of.U.qy;
    case Field::largest_depth:
      return of.max_values.h;
    case Field::infiltrated_depth:
      return of.param.infiltrated_depth;
    case Field::bed_level:
      return of.bed_level;
    case Field::sediment_thickness:
      return of.U.hs;
    case Field::bed_load_x:
      return of.U.qsx;
    case Field::bed_load_y:
      return of.U.qsy;
    case Field::peak_depth:
    case Field::peak_level:
    case Field::peak_speed:
    case Field::peak_discharge:
    case Field::time_of_peak:
    case Field::arrival_time:
    case Field::time_under_water:
      return maxima_ ? value_of(field, maxima_->of(number), maxima_->t()) : NAN;
  }
  return 0.0;
}

double ObjectsFlow::advance(const StepTimes& times) {
  Globals::t = times.t;
  Globals::dt = times.dt;
  Globals_Params::tStart = times.t_start;
  Globals_Params::tEnd = times.t_end;
  note_maxima(times.t);
  const double step = model_.computeFlowStep();
  has_stepped_ = true;
  if (watch_) watch_->note_states(step);
  return step;
}

void ObjectsFlow::read(Field field, std::span<double> values) const {
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = value(field, static_cast<Number>(i));
}

void ObjectsFlow::read(Field field, std::span<const Number> cells, std::span<double> values) const {
  for (std::size_t i = 0; i < cells.size(); ++i) values[i] = value(field, cells[i]);
}

CellState ObjectsFlow::state(Number number) const {
  const ComputationalCell& of = cell(number);
  const HydraulicVariableSWE& U = of.U;
  return {U.h, U.qx, U.qy, U.hs, U.qsx, U.qsy, of.dqs_dh, of.bed_level, of.free_surface_level};
}

void ObjectsFlow::keep_maxima(double arrival_depth) {
  maxima_.emplace(model_.cells.size(), Constants::ZERO_DEPTH, arrival_depth);
}

void ObjectsFlow::watch() {
  watch_ = std::make_unique<StepWatch>(model_);
  model_.observer = watch_.get();
  for (const auto& interface : model_.interfaces) {
    if (interface->cell_right == nullptr) boundaries_.push_back(interface.get());
  }
}

BoundaryInflow ObjectsFlow::boundary_inflow(int boundary) const {
  const GenericInterface& edge = *boundaries_[static_cast<std::size_t>(boundary)];
  const FluxSlots& slots = edge.cell_left->fluxes;
  const HydraulicVariableSWE& slot = slots[edge.local_index_left];
  return {slot.h, slot.hs};
}

bool ObjectsFlow::has_sediments() const {
  return dynamic_cast<const SWE_Exner*>(&model_) != nullptr;
}

void ObjectsFlow::save(engine::State& state) const {
  for_each_column(state, has_stepped_, has_soils(), has_sediments(),
                  [&](std::vector<double>& column, bool is_there, const auto& value) {
                    column.clear();
                    if (!is_there) return;
                    for (const auto& cell : model_.cells) column.push_back(value(*cell));
                  });
  state.rain_clocks.clear();
  for (const auto& rain : objects_.rain) {
    state.rain_clocks.push_back(physics::clock_before_rain(Globals_Params::tStart));
    for (const auto& cell : model_.cells) {  // all that it falls on have the same clock
      if (!has_term(*cell, *rain)) continue;
      const ParamCell& of = cell->param;
      state.rain_clocks.back() = {of.last_update_time, of.hyetogram_index, of.rain_dt};
      break;
    }
  }
  state.has_told_not_hyperbolic = Globals_Sed::g_notHyperbolicIsTold;
  if (maxima_) maxima_->save(state, has_sediments());
}

void ObjectsFlow::load(const engine::State& state) {
  require_nothing_imposed(state);
  has_stepped_ = state.eta.empty();
  for_each_column(state, has_stepped_, has_soils(), has_sediments(),
                  [&](const std::vector<double>& column, bool is_there, const auto& value) {
                    if (!is_there) return;
                    for (std::size_t i = 0; i < column.size(); ++i) {
                      value(*model_.cells[i]) = column[i];
                    }
                  });
  for (const auto& cell : model_.cells) {
    if (has_sediments()) cell->bed_level = cell->bed_rock_level + cell->U.hs;
    if (has_stepped_) cell->free_surface_level = cell->bed_level + cell->U.h;
    for (std::size_t r = 0; r < state.rain_clocks.size(); ++r) {
      if (!has_term(*cell, *objects_.rain[r])) continue;
      const physics::RainClock& clock = state.rain_clocks[r];
      cell->param.last_update_time = clock.last_update_time;
      cell->param.hyetogram_index = clock.hyetogram_index;
      cell->param.rain_dt = clock.rain_dt;
    }
  }
  if (state.has_told_not_hyperbolic) Globals_Sed::g_notHyperbolicIsTold = true;
  if (!maxima_) return;
  maxima_->load(state, has_sediments(),
                [&](cases::Number number, double depth) { return cell(number).bed_level + depth; });
}

void ObjectsFlow::save_notes(engine::SavedNotes& notes) const {
  notes = {watch_->notes(), {}, {}, {}};
  for (cases::Number cell = 0; cell < model_.n_cells; ++cell) {
    const UnseenDepth depth = watch_->unseen_depth(cell);
    if (has_soils()) notes.recovered.push_back(depth.recovered);
    if (has_sediments()) notes.lifted.push_back(depth.lifted);
  }
}

void ObjectsFlow::load_notes(const engine::SavedNotes& notes) {
  watch_->set_notes(notes.of_last_step);
  for (cases::Number cell = 0; cell < model_.n_cells; ++cell) {
    UnseenDepth depth;
    if (has_soils()) depth.recovered = notes.recovered[cases::at(cell)];
    if (has_sediments()) depth.lifted = notes.lifted[cases::at(cell)];
    watch_->set_unseen_depth(cell, depth);
  }
}

}  // namespace fields
