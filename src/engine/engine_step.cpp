// A step over the tables: which patches take part, the fluxes around them, and their update.
#include <algorithm>
#include <cmath>

#include "engine/Engine.hpp"
#include "physics/boundary_discharge.hpp"
#include "physics/boundary_transmissive.hpp"
#include "physics/boundary_wall.hpp"
#include "physics/boundary_water_level.hpp"
#include "physics/flux_clhllc.hpp"
#include "physics/stable_step.hpp"

namespace engine {

void Engine::fluxes(const StepTimes& times) {
  step_.dt = times.dt;
  rain(times);
  for (std::size_t s = 0; s < soils_.size(); ++s) {
    soil_steps_[s] = soils_[s].is_green_ampt ? physics::soil_step(soils_[s].green_ampt, times.dt)
                                             : physics::soil_step(soils_[s].horton, times.dt);
  }
  find_active_patches();
  team_.run([&](int member) {
    Scratch& scratch = scratch_[at(member)];
    scratch.not_hyperbolic.reset();
    const Range share = share_of(member, team_.size(), with_fluxes_.size());
    for (int k = share.begin; k < share.end;) {
      const int end = end_of_run(k, share.end);
      outer_fluxes(with_fluxes_[at(k)], with_fluxes_[at(end - 1)], scratch);
      k = end;
    }
  });
}

void Engine::rain(const StepTimes& times) {
  bool rains = false;
  for (std::size_t r = 0; r < rain_.size(); ++r) {
    const physics::RainAddition rain = physics::rain_addition(rain_[r].hyetogram, rain_[r].clock,
                                                              times.t, times.t_start, times.t_end);
    rain_[r].clock = rain.clock;
    rain_depths_[r + 1] = rain.depth;
    if (rain.depth != 0.0) rains = true;
  }
  step_.rain_depths = rains ? rain_depths_.data() : nullptr;
}

/// A patch takes part where one of its own cells may change, or where water stands at its border.
/// Elsewhere all fluxes are exactly zero and the step would leave every cell as it is. Outer fluxes
/// are needed around every patch that takes part.
void Engine::find_active_patches() {
  const std::size_t count = patches_.patches.size();
  const bool rains = step_.rain_depths != nullptr;
  for (std::size_t p = 0; p < count; ++p) {
    marks_[p] = can_change_[p] != 0 || always_active_[p] != 0 || (rains && has_rain_[p] != 0);
  }
  active_.clear();
  for (std::size_t p = 0; p < count; ++p) {
    if (marks_[p] != 0 || (touches_mark(p) && touches_water(patches_.patches[p]))) {
      active_.push_back(static_cast<int>(p));
    }
  }
  for (const int p : active_) marks_[at(p)] = 1;
  with_fluxes_.clear();
  for (std::size_t p = 0; p < count; ++p) {
    if (marks_[p] != 0 || touches_mark(p)) with_fluxes_.push_back(static_cast<int>(p));
  }
}

bool Engine::touches_mark(std::size_t patch) const {
  const Range range = patches_.patches[patch].neighbours;
  return std::any_of(patches_.neighbours.begin() + range.begin,
                     patches_.neighbours.begin() + range.end,
                     [&](int q) { return marks_[at(q)] != 0; });
}

/// Whether a cell across a cut edge of a patch is wet.
bool Engine::touches_water(const Patch& patch) const {
  const EdgeTable& cut = patches_.cut_edges;
  const int edges = static_cast<int>(cut.left.size());
  return std::any_of(patches_.outer_slots.begin() + patch.outer_slots.begin,
                     patches_.outer_slots.begin() + patch.outer_slots.end, [&](int slot) {
                       if (slot >= 2 * edges) return false;  // a boundary
                       const int cell =
                           slot < edges ? cut.right[at(slot)] : cut.left[at(slot - edges)];
                       return physics::is_wet(cells_.h[at(cell)], step_.zero_depth);
                     });
}

/// End of the run of consecutive patches that starts at entry k of a list: their cut edges and
/// boundaries lie one behind the other.
int Engine::end_of_run(int k, int end) const {
  const int first = with_fluxes_[at(k)] - k;
  while (k < end && with_fluxes_[at(k)] - k == first) ++k;
  return k;
}

void Engine::outer_fluxes(int first_patch, int last_patch, Scratch& scratch) {
  const Patch& first = patches_.patches[at(first_patch)];
  const Patch& last = patches_.patches[at(last_patch)];
  const SlotColumns slots = outer_slot_columns();
  const int cut_edges = static_cast<int>(patches_.cut_edges.left.size());
  const Range cut = {first.cut_edges.begin, last.cut_edges.end};
  const EdgeRange range = {cut.begin, cut.end, 0, slots.from(cut.begin),
                           slots.from(cut_edges + cut.begin)};
  const EdgeColumns<int> edges = cut_edge_columns();
  if (!model_.fluxes(cell_columns(), edges, range, step_)) {
    find_not_hyperbolic(edges, range, patches_.cut_edge_number, scratch);
  }
  for (int b = first.boundaries.begin; b < last.boundaries.end; ++b) flux_of_boundary(b);
}

void Engine::flux_of_boundary(int number) {
  const Boundary& boundary = boundaries_[at(number)];
  const std::size_t c = at(boundary.cell);
  const double zero_depth = step_.zero_depth;
  const double eta = cells_.eta.empty() ? cells_.bed[c] + cells_.h[c] : cells_.eta[c];
  const physics::EdgeSide side =
      physics::to_edge_frame({cells_.h[c], cells_.qx[c], cells_.qy[c], cells_.bed[c], eta},
                             {reciprocal_[c], celerity_[c]}, boundary.edge, zero_depth);
  physics::BoundaryFlux flux{};
  double bed = 0.0;
  const auto own_bed_flux = [&] {
    return physics::boundary_bed_flux(
        {cells_.hs[c], cells_.qsx[c], cells_.qsy[c], cells_.dqs_dh[c]}, boundary.edge,
        step_.porosity);
  };
  switch (boundary.kind) {
    case BoundaryKind::wall:
      flux = physics::boundary_wall(side, zero_depth);
      break;
    case BoundaryKind::transmissive:
      flux = physics::boundary_transmissive(side, zero_depth);
      if (has_bed_) bed = own_bed_flux();
      break;
    case BoundaryKind::discharge:
      flux = physics::boundary_discharge(side, boundary.imposed, 0.0, zero_depth);
      if (has_bed_) bed = boundary.imposed_bed / (1.0 - step_.porosity);
      break;
    case BoundaryKind::water_level:
      flux = physics::boundary_water_level(side, boundary.imposed, zero_depth);
      if (has_bed_) bed = own_bed_flux();
      break;
  }
  const physics::WaterSlot slot = physics::boundary_slot(boundary.edge, flux);
  const std::size_t k = 2 * patches_.cut_edges.left.size() + at(number);
  outer_mass_[k] = slot.h;
  outer_momentum_x_[k] = slot.qx;
  outer_momentum_y_[k] = slot.qy;
  if (has_bed_) outer_bed_[k] = side.wet ? -boundary.edge.length * bed : 0.0;
}

double Engine::advance() {
  team_.run([&](int member) {
    Scratch& scratch = scratch_[at(member)];
    scratch.smallest_step = physics::unbounded_step;
    const Range share = share_of(member, team_.size(), active_.size());
    for (int k = share.begin; k < share.end; ++k) advance_patch(active_[at(k)], scratch);
  });
  cells_.eta = {};  // from now on bed and depth
  double step = physics::unbounded_step;
  for (const Scratch& scratch : scratch_) step = physics::smaller(step, scratch.smallest_step);
  const bool skipped_dry_cells = active_.size() < patches_.patches.size();
  if (skipped_dry_cells) step = physics::smaller(step, dry_step_);
  if (watch_) note_step(step);
  return physics::stable_step_domain(step, char_length_min_);
}

void Engine::advance_patch(int number, Scratch& scratch) {
  const Patch& patch = patches_.patches[at(number)];
  const CellColumns cells = cell_columns();
  const SlotColumns slots = scratch.slots();
  const EdgeColumns<Local> edges = patch_edge_columns();
  const EdgeRange within = {patch.edges.begin, patch.edges.end, patch.cells.begin, slots,
                            slots.from(patch.right_slots())};
  if (!model_.patch_fluxes(cells, edges, within, step_)) {
    find_not_hyperbolic(edges, within, patches_.edge_number, scratch);
  }

  const SlotColumns taken = slots.from(patch.outer_slots_begin());
  for (int k = 0; k < patch.outer_slots.size(); ++k) {
    const std::size_t outer = at(patches_.outer_slots[at(patch.outer_slots.begin + k)]);
    taken.mass[k] = outer_mass_[outer];
    taken.momentum_x[k] = outer_momentum_x_[outer];
    taken.momentum_y[k] = outer_momentum_y_[outer];
    if (has_bed_) taken.bed[k] = outer_bed_[outer];
  }
  taken.mass[patch.outer_slots.size()] = 0.0;
  taken.momentum_x[patch.outer_slots.size()] = 0.0;
  taken.momentum_y[patch.outer_slots.size()] = 0.0;
  if (has_bed_) taken.bed[patch.outer_slots.size()] = 0.0;

  const bool has_soil = !soils_.empty() && !soils_of_patch_[at(number)].empty();
  if (has_soil) set_demand(number, scratch);
  const bool drinks = has_soil && !has_bed_;  // sediment beds let no water in
  physics::FlowExtremes* const extremes = watch_ ? &watch_->extremes[at(number)] : nullptr;
  if (extremes != nullptr) *extremes = {};
  const CellRange range = {patch.cells.begin, patch.cells.end, slots,
                           drinks ? scratch.demand.data() : nullptr, extremes};
  if (watch_ && has_bed_) note_bare_rock(patch.cells, slots);
  const double so_far = scratch.smallest_step;
  // Who takes notes wants to see a step that is just as small as the smallest so far.
  const double below = watch_ ? std::nextafter(so_far, HUGE_VAL) : so_far;
  const Advance after = model_.advance(cells, range, step_, below);
  scratch.smallest_step = physics::smaller(so_far, after.stable_step);
  if (watch_) watch_->smallest_steps[at(number)] = after.stable_step;
  can_change_[at(number)] = after.all_dry ? 0 : 1;
}

void Engine::set_demand(int number, Scratch& scratch) {
  const Range cells = patches_.patches[at(number)].cells;
  const CellColumns columns = cell_columns();
  if (watch_) {
    std::copy_n(columns.infiltrated + cells.begin, cells.size(),
                scratch.infiltrated_before.begin());
  }
  std::fill_n(scratch.demand.begin(), cells.size(), 0.0);
  for (const int s : soils_of_patch_[at(number)]) {
    const SoilRange range = {cells.begin, cells.end, cells_.soil.data(), s, scratch.demand.data()};
    const Soil& soil = soils_[at(s)];
    if (soil.is_green_ampt) {
      kernels_.green_ampt(columns, range, soil.green_ampt, soil_steps_[at(s)]);
    } else {
      kernels_.horton(columns, range, soil.horton, soil_steps_[at(s)]);
    }
  }
  if (watch_) note_recovery(cells, scratch);
}

template <class Index>
void Engine::find_not_hyperbolic(const EdgeColumns<Index>& edges, const EdgeRange& range,
                                 const std::vector<int>& numbers, Scratch& scratch) const {
  if (!watches_hyperbolicity_) return;
  for (int e = range.begin; e < range.end; ++e) {
    if (scratch.not_hyperbolic && scratch.not_hyperbolic->edge < numbers[at(e)]) continue;
    const physics::Edge edge = {edges.nx[e], edges.ny[e], edges.length[e]};
    for (const int cell : {range.first_cell + edges.right[e], range.first_cell + edges.left[e]}) {
      const std::size_t c = at(cell);
      const physics::EdgeSide side = physics::to_edge_frame(
          {cells_.h[c], cells_.qx[c], cells_.qy[c], cells_.bed[c], cells_.bed[c] + cells_.h[c]},
          {reciprocal_[c], celerity_[c]}, edge, step_.zero_depth);
      const physics::CoupledSpeeds speeds =
          physics::coupled_speeds(side, cells_.dqs_dh[c], step_.porosity, step_.zero_depth);
      if (speeds.radicand < 0.0) {
        scratch.not_hyperbolic = {numbers[at(e)], cell, cells_.h[c], cells_.qx[c], cells_.qy[c]};
      }
    }
  }
}

std::optional<NotHyperbolic> Engine::take_not_hyperbolic() {
  std::optional<NotHyperbolic> first;
  for (const Scratch& scratch : scratch_) {
    if (scratch.not_hyperbolic && (!first || scratch.not_hyperbolic->edge < first->edge)) {
      first = scratch.not_hyperbolic;
    }
  }
  if (!first) return first;
  watches_hyperbolicity_ = false;
  const auto place = std::find(cell_number_.begin(), cell_number_.end(), first->cell);
  first->cell = static_cast<int>(place - cell_number_.begin());
  return first;
}

}  // namespace engine
