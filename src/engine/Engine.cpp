#include "engine/Engine.hpp"

#include <algorithm>
#include <utility>

#include "engine/host/HostBackend.hpp"
#include "physics/stable_step.hpp"

namespace engine {

Engine::Engine(ModelInput&& input, int threads)
    : team_(threads),
      forcing_(std::move(input.rain), input.soils.size()),
      tables_(make_tables(std::move(input), threads)),
      activity_(tables_),
      backend_(std::make_unique<HostBackend>(tables_, team_)) {
  step_.zero_depth = tables_.zero_depth;
  step_.dry_step = tables_.dry_step;
  step_.porosity = tables_.porosity;
  step_.grains = tables_.grains;
}

void Engine::impose(int boundary, double value) {
  tables_.boundaries[at(tables_.boundary_number[at(boundary)])].imposed = value;
}

void Engine::fluxes(const StepTimes& times) {
  forcing_.begin_step(times, tables_.soils);
  step_.dt = times.dt;
  step_.rain_depths = forcing_.rain_depths();
  activity_.find(tables_, forcing_.it_rains());
  backend_->outer_fluxes(activity_.with_fluxes(), step_);
}

double Engine::advance() {
  const std::vector<int>& patches = activity_.patches();
  double smallest =
      backend_->advance(patches, step_, forcing_.soil_steps(), activity_, notes_.get());
  tables_.drop_given_surface();
  const bool skipped_dry_cells = active_patches() < this->patches();
  if (skipped_dry_cells) smallest = physics::smaller(smallest, tables_.dry_step);
  if (notes_) notes_->sum_up(tables_, patches, smallest);
  return physics::stable_step_domain(smallest, tables_.char_length_min);
}

void Engine::watch(const physics::StepNotes& before) {
  notes_ = std::make_unique<StepNotes>(tables_, before);
}

UnseenDepths Engine::unseen_depths(int model_cell) const {
  return notes_->unseen_depths(tables_.cell_number[at(model_cell)]);
}

StateColumns Engine::states() const {
  const CellTable& c = tables_.cells;
  return {c.h.size(),
          c.h.data(),
          c.qx.data(),
          c.qy.data(),
          tables_.reciprocal.data(),
          tables_.celerity.data()};
}

int Engine::cell_at(int place) const {
  const auto found = std::find(tables_.cell_number.begin(), tables_.cell_number.end(), place);
  return static_cast<int>(found - tables_.cell_number.begin());
}

BoundaryInflow Engine::boundary_inflow(int boundary) const {
  const int number = tables_.boundary_number[at(boundary)];
  const int cells_per_patch = tables_.patches.patches.front().cells.size();
  // A patch that took no part in the step took nothing in; its slots are older.
  if (!activity_.takes_part(tables_.boundaries[at(number)].cell / cells_per_patch))
    return {0.0, 0.0};
  const std::size_t slot = at(tables_.first_boundary_slot() + number);
  return {tables_.outer.mass[slot], has_bed() ? tables_.outer.bed[slot] : 0.0};
}

CellOutput Engine::cell(int model_cell) const {
  const std::size_t k = place_of(model_cell);
  const CellTable& c = tables_.cells;
  const auto value = [&](const Column& column) { return column.empty() ? 0.0 : column[k]; };
  return {.h = c.h[k],
          .qx = c.qx[k],
          .qy = c.qy[k],
          .eta = c.eta.empty() ? c.bed[k] + c.h[k] : c.eta[k],
          .max_h = c.max_h[k],
          .infiltrated = value(c.infiltrated),
          .bed = c.bed[k],
          .hs = value(c.hs),
          .qsx = value(c.qsx),
          .qsy = value(c.qsy),
          .dqs_dh = value(c.dqs_dh)};
}

}  // namespace engine
