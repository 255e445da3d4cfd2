#include "fields/HllFlow.hpp"

#include <algorithm>

#include "fields/maxima_values.hpp"
#include "fields/nothing_imposed.hpp"

namespace fields {

using cases::at;
using cases::Number;

namespace {

/// Calls visit(a column of a state, that of the walk) for those that the case has.
template <class State, class Water, class Visit>
void for_each_column(State& state, Water& water, bool has_soils, bool has_sediments,
                     const Visit& visit) {
  visit(state.h, water.h);
  visit(state.qx, water.qx);
  visit(state.qy, water.qy);
  visit(state.max_h, water.max_h);
  if (has_soils) visit(state.infiltrated, water.infiltrated);
  if (!has_sediments) return;
  visit(state.hs, water.hs);
  visit(state.qsx, water.qsx);
  visit(state.qsy, water.qsy);
}

double value_or_zero(const std::vector<double>& column, Number cell) {
  return column.empty() ? 0.0 : column[at(cell)];
}

}  // namespace

HllFlow::HllFlow(const cases::Case& contents) : case_(contents), walk_(contents) {}

FlowScales HllFlow::scales() const {
  const std::vector<double>& h = walk_.water().h;
  return {h.empty() ? 0.0 : *std::max_element(h.begin(), h.end()), walk_.char_length_min()};
}

double HllFlow::advance(const StepTimes& times) {
  note_maxima(times.t);
  walk_.advance(times.t, times.dt);
  const HllWalk::StepBound bound = walk_.step_bound(times.t + times.dt, notes_.limiting_cell);
  if (is_watched_) note_states(bound.cell);
  return bound.step;
}

double HllFlow::value(Field field, Number cell) const {
  const HllWalk::Water& water = walk_.water();
  switch (field) {
    case Field::depth:
      return water.h[at(cell)];
    case Field::discharge_x:
      return water.qx[at(cell)];
    case Field::discharge_y:
      return water.qy[at(cell)];
    case Field::largest_depth:
      return water.max_h[at(cell)];
    case Field::infiltrated_depth:
      return water.infiltrated[at(cell)];
    case Field::bed_level:
      return walk_.bed(cell);
    case Field::sediment_thickness:
      return value_or_zero(water.hs, cell);
    case Field::bed_load_x:
      return value_or_zero(water.qsx, cell);
    case Field::bed_load_y:
      return value_or_zero(water.qsy, cell);
    case Field::peak_depth:
    case Field::peak_level:
    case Field::peak_speed:
    case Field::peak_discharge:
    case Field::time_of_peak:
    case Field::arrival_time:
    case Field::time_under_water:
      return maxima_ ? value_of(field, maxima_->of(cell), maxima_->t()) : NAN;
  }
  return 0.0;
}

void HllFlow::read(Field field, std::span<double> values) const {
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = value(field, static_cast<Number>(i));
}

void HllFlow::read(Field field, std::span<const Number> cells, std::span<double> values) const {
  for (std::size_t i = 0; i < cells.size(); ++i) values[i] = value(field, cells[i]);
}

CellState HllFlow::state(Number cell) const {
  const HllWalk::Water& water = walk_.water();
  const double h = water.h[at(cell)], bed = walk_.bed(cell);
  return {.h = h,
          .qx = water.qx[at(cell)],
          .qy = water.qy[at(cell)],
          .hs = value_or_zero(water.hs, cell),
          .qsx = value_or_zero(water.qsx, cell),
          .qsy = value_or_zero(water.qsy, cell),
          .bed_level = bed,
          .water_level = bed + h};
}

void HllFlow::watch() {
  is_watched_ = true;
  note_states(walk_.step_bound(case_.t_start).cell);
}

void HllFlow::note_states(Number limiting_cell) {
  const HllWalk::Water& water = walk_.water();
  physics::FlowExtremes all;
  for (Number cell = 0; cell < case_.mesh.n_cells(); ++cell) {
    const double h = water.h[at(cell)];
    const physics::FlowExtremes of_cell = physics::extremes_of_state(
        h, water.qx[at(cell)], water.qy[at(cell)], physics::depth_terms(h, case_.zero_depth));
    physics::note(notes_.speed_squared, of_cell.speed_squared, cell);
    physics::note(notes_.speed_squared_per_depth, of_cell.speed_squared_per_depth, cell);
    all = physics::united(all, of_cell);
  }
  notes_.not_finite = all.not_finite;
  notes_.films = all.films;
  notes_.limiting_cell = limiting_cell;
}

UnseenDepth HllFlow::unseen_depth(Number cell) const {
  const HllWalk::Water& water = walk_.water();
  return {.recovered = water.recovered[at(cell)],
          .taken_discharge = water.taken_discharge[at(cell)]};
}

void HllFlow::save(engine::State& state) const {
  const HllWalk::Water& water = walk_.water();
  state = {};
  for_each_column(state, water, has_soils(), case_.has_sediments,
                  [](auto& to, const auto& from) { to = from; });
  if (case_.has_sediments) state.dqs_dh.assign(water.h.size(), 0.0);  // of the other scheme
  if (maxima_) maxima_->save(state, case_.has_sediments);
  state.rain_clocks = walk_.rain_clocks();
}

void HllFlow::load(const engine::State& state) {
  require_nothing_imposed(state);
  HllWalk::Water water = walk_.water();
  for_each_column(state, water, has_soils(), case_.has_sediments,
                  [](const auto& from, auto& to) { to = from; });
  walk_.set_water(std::move(water), state.rain_clocks);
  if (!maxima_) return;
  maxima_->load(state, case_.has_sediments,
                [&](Number cell, double depth) { return walk_.bed(cell) + depth; });
}

void HllFlow::save_notes(engine::SavedNotes& notes) const {
  notes = {notes_, {}, {}, walk_.water().taken_discharge};
  if (has_soils()) notes.recovered = walk_.water().recovered;
  if (case_.has_sediments) notes.lifted.assign(walk_.water().h.size(), 0.0);  // nothing is
}

void HllFlow::load_notes(const engine::SavedNotes& notes) {
  notes_ = notes.of_last_step;
  HllWalk::Water water = walk_.water();
  water.taken_discharge = notes.taken_discharge;
  if (has_soils()) water.recovered = notes.recovered;
  walk_.set_water(std::move(water), walk_.rain_clocks());
}

bool HllFlow::has_soils() const { return !case_.fields.soil.empty() && !case_.soils.empty(); }

BoundaryInflow HllFlow::boundary_inflow(int boundary) const {
  const auto number = static_cast<std::size_t>(boundary);
  return {walk_.inflow(number), walk_.bed_inflow(number)};
}

}  // namespace fields
