// What a step notes of the flow, patch by patch while its cells are in cache, for a report.
#include <algorithm>
#include <utility>

#include "engine/Engine.hpp"
#include "physics/cell_update_exner.hpp"
#include "physics/stable_step.hpp"

namespace engine {

void Engine::watch(const physics::StepNotes& before) {
  watch_ = std::make_unique<Watch>();
  watch_->notes = before;
  watch_->extremes.resize(patches_.patches.size());
  watch_->smallest_steps.assign(patches_.patches.size(), physics::unbounded_step);
  if (has_bed_) watch_->lifted.assign(cells_.h.size(), 0.0);
  if (soils_.empty()) return;
  watch_->recovered.assign(cells_.h.size(), 0.0);
  for (Scratch& scratch : scratch_) scratch.infiltrated_before.resize(scratch.demand.size());
}

UnseenDepths Engine::unseen_depths(int model_cell) const {
  const std::size_t k = at(cell_number_[at(model_cell)]);
  const auto value = [&](const Column& column) { return column.empty() ? 0.0 : column[k]; };
  return {value(watch_->recovered), value(watch_->lifted)};
}

void Engine::note_recovery(const Range& cells, const Scratch& scratch) {
  for (int i = cells.begin; i < cells.end; ++i) {
    watch_->recovered[at(i)] +=
        scratch.infiltrated_before[at(i - cells.begin)] - cells_.infiltrated[at(i)];
  }
}

void Engine::note_bare_rock(const Range& cells, const SlotColumns& slots) {
  const auto inflow = [&](int k, int i) { return slots.bed[patches_.slots[k][at(i)]]; };
  for (int i = cells.begin; i < cells.end; ++i) {
    const double Fhs = ((0.0 + inflow(0, i)) + inflow(1, i)) + inflow(2, i);
    const double hs =
        physics::balanced_sediment(cells_.hs[at(i)], Fhs, step_.dt * cells_.area[at(i)]);
    if (hs < 0.0) watch_->lifted[at(i)] -= hs;
  }
}

void Engine::note_step(double smallest) {
  physics::StepNotes& notes = watch_->notes;
  notes.limiting_cell = limiting_cell(smallest);
  note_record(notes.speed_squared, &physics::FlowExtremes::speed_squared);
  note_record(notes.speed_squared_per_depth, &physics::FlowExtremes::speed_squared_per_depth);
  notes.not_finite = 0;
  for (const physics::FlowExtremes& patch : watch_->extremes) notes.not_finite += patch.not_finite;
}

int Engine::limiting_cell(double smallest) const {
  if (smallest == dry_step_ || smallest == physics::unbounded_step) return -1;
  const auto sets_step = [&](std::size_t place) {
    return physics::is_wet(cells_.h[place], step_.zero_depth) &&
           cells_.char_length[place] / physics::wave_speed({reciprocal_[place], celerity_[place]},
                                                           cells_.qx[place], cells_.qy[place]) ==
               smallest;
  };
  const int before = watch_->notes.limiting_cell;
  if (before >= 0 && sets_step(at(cell_number_[at(before)]))) return before;
  return first_cell([&](int patch) { return watch_->smallest_steps[at(patch)] == smallest; },
                    sets_step);
}

void Engine::note_record(physics::FlowRecord& record, double physics::FlowExtremes::*value) {
  double largest = record.value;
  for (const int p : active_) largest = std::max(largest, watch_->extremes[at(p)].*value);
  if (!(largest > record.value)) return;
  const auto has_it = [&](std::size_t place) {
    const physics::FlowExtremes of_cell =
        physics::extremes_of_state(cells_.h[place], cells_.qx[place], cells_.qy[place],
                                   {reciprocal_[place], celerity_[place]});
    return of_cell.*value == largest;
  };
  record = {largest,
            first_cell([&](int p) { return watch_->extremes[at(p)].*value == largest; }, has_it)};
}

template <class Qualifies, class IsMeant>
int Engine::first_cell(const Qualifies& qualifies, const IsMeant& is_meant) const {
  int first = -1;
  for (const int p : active_) {
    if (!qualifies(p)) continue;
    const Range cells = patches_.patches[at(p)].cells;
    for (int i = cells.begin; i < cells.end; ++i) {
      if ((first < 0 || cell_at(i) < first) && is_meant(at(i))) first = cell_at(i);
    }
  }
  return first;
}

}  // namespace engine
