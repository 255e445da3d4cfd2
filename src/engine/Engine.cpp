#include "engine/Engine.hpp"

#include <algorithm>

#include "engine/host/HostBackend.hpp"
#include "physics/stable_step.hpp"

namespace engine {

Engine::Engine(const cases::Case& contents, int threads, int cells_per_patch)
    : team_(threads),
      tables_(make_tables(contents, team_, cells_per_patch)),
      forcing_(contents, tables_),
      activity_(tables_),
      backend_(std::make_unique<HostBackend>(tables_, team_)) {
  step_.zero_depth = tables_.zero_depth;
  step_.dry_step = tables_.dry_step;
  step_.porosity = tables_.porosity;
  step_.grains = tables_.grains;
}

double Engine::stable_step() const {
  const CellTable& c = tables_.cells;
  double smallest = physics::unbounded_step;
  for (std::size_t i = 0; i < c.h.size(); ++i) {
    const bool is_dry = c.h[i] <= tables_.zero_depth;
    const double step = is_dry ? tables_.dry_step
                               : physics::stable_step(c.h[i], c.qx[i], c.qy[i], c.char_length[i],
                                                      tables_.zero_depth);
    smallest = physics::smaller(smallest, step);
  }
  return physics::stable_step_domain(smallest, tables_.char_length_min);
}

double Engine::advance(const StepTimes& times) {
  forcing_.begin_step(times, tables_);
  step_.dt = times.dt;
  step_.rain_depths = forcing_.rain_depths();
  activity_.find(tables_, forcing_.it_rains());
  backend_->outer_fluxes(activity_.with_fluxes(), step_);

  const std::vector<int>& patches = activity_.patches();
  double smallest =
      backend_->advance(patches, step_, forcing_.soil_steps(), activity_, notes_.get());
  tables_.drop_given_surface();
  const bool skipped_dry_cells = patches.size() < tables_.patches.patches.size();
  if (skipped_dry_cells) smallest = physics::smaller(smallest, tables_.dry_step);
  if (notes_) notes_->sum_up(tables_, patches, smallest);
  return physics::stable_step_domain(smallest, tables_.char_length_min);
}

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
}

}  // namespace

State Engine::state() {
  State state;
  for_each_column(state, tables_, [&](std::vector<double>& values, const Column& column) {
    values.resize(column.size());
    read(column, values);
  });
  forcing_.save(state);
  return state;
}

void Engine::set_state(const State& state) {
  for_each_column(state, tables_, [&](const std::vector<double>& values, Column& column) {
    column.resize(values.size());
    for (std::size_t cell = 0; cell < values.size(); ++cell) {
      column[at(tables_.place[cell])] = values[cell];
    }
  });
  tables_.set_bed_from_sediment();
  forcing_.load(state);
  activity_.wake_all();
}

void Engine::read(const Column& column, std::span<double> values) {
  team_.run([&](int member) {
    const Range share = share_of(member, team_.size(), values.size());
    for (int cell = share.begin; cell < share.end; ++cell) {
      values[at(cell)] = column[at(tables_.place[at(cell)])];
    }
  });
}

void Engine::read(const Column& column, std::span<const cases::Number> cells,
                  std::span<double> values) const {
  for (std::size_t i = 0; i < cells.size(); ++i) {
    values[i] = column[at(tables_.place[at(cells[i])])];
  }
}

BoundaryInflow Engine::boundary_inflow(int boundary) const {
  const int number = tables_.boundary_place[at(boundary)];
  // A patch that took no part in the step took nothing in; its slots are older.
  if (!activity_.takes_part(tables_.boundaries[at(number)].cell / tables_.cells_per_patch())) {
    return {};
  }
  const std::size_t slot = at(tables_.first_boundary_slot() + number);
  return {tables_.outer.mass[slot], tables_.has_bed ? tables_.outer.bed[slot] : 0.0};
}

void Engine::watch() { notes_ = std::make_unique<StepNotes>(tables_, stable_step()); }

UnseenDepths Engine::unseen_depths(cases::Number cell) const {
  return notes_->unseen_depths(tables_.place[at(cell)]);
}

std::optional<NotHyperbolic> Engine::take_not_hyperbolic() {
  std::optional<NotHyperbolic> found = backend_->take_not_hyperbolic();
  if (!found) return {};
  const auto cell = std::find(tables_.place.begin(), tables_.place.end(), found->place);
  found->place = static_cast<int>(cell - tables_.place.begin());
  return found;
}

}  // namespace engine
