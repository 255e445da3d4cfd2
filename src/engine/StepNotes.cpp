#include "engine/StepNotes.hpp"

#include <algorithm>

#include "physics/stable_step.hpp"

namespace engine {

namespace {

physics::FlowExtremes extremes_at(const Tables& tables, std::size_t place) {
  const CellTable& c = tables.cells;
  return physics::extremes_of_state(c.h[place], c.qx[place], c.qy[place],
                                    physics::depth_terms(c.h[place], tables.zero_depth));
}

/// Whether the wave of a cell sets a stable step (s).
bool sets_step(const Tables& tables, std::size_t place, double step) {
  return physics::is_wet(tables.cells.h[place], tables.zero_depth) &&
         tables.stable_step_at(place) == step;
}

/// Numbers in the whole case of the owned cells, by their places.
std::vector<int> numbers_at_places(const Tables& tables) {
  std::vector<int> numbers(at(tables.owned));
  for (int cell = 0; cell < tables.owned; ++cell) {
    numbers[at(tables.place[at(cell)])] = tables.number_of(cell);
  }
  return numbers;
}

}  // namespace

StepNotes::StepNotes(const Tables& tables)
    : extremes(tables.patches.patches.size()),
      smallest_steps(extremes.size(), physics::unbounded_step),
      cell_at_place_(numbers_at_places(tables)) {
  if (tables.has_bed) lifted.assign(tables.cells.h.size(), 0.0);
  if (tables.hll) taken_discharge.assign(tables.cells.h.size(), 0.0);
  if (!tables.soils.empty()) recovered.assign(tables.cells.h.size(), 0.0);
}

NotedStep StepNotes::of_present(const Tables& tables, double stable_step,
                                int place_of_bound) const {
  physics::StepNotes notes;
  int first_to_set_step = -1;
  for (int k = 0; k < tables.owned; ++k) {
    const int cell = tables.number_of(k);
    const std::size_t place = at(tables.place[at(k)]);
    const physics::FlowExtremes of_cell = extremes_at(tables, place);
    physics::note(notes.speed_squared, of_cell.speed_squared, cell);
    physics::note(notes.speed_squared_per_depth, of_cell.speed_squared_per_depth, cell);
    notes.not_finite += of_cell.not_finite;
    notes.films += of_cell.films;
    if (first_to_set_step < 0 && sets_step(tables, place, stable_step)) first_to_set_step = cell;
  }
  constexpr int none_before = -1;
  notes.limiting_cell = physics::limiting_cell(
      stable_step, tables.dry_step, none_before, [](int) { return false; },
      [&] { return first_to_set_step; });
  if (place_of_bound >= 0) notes.limiting_cell = cell_at_place_[at(place_of_bound)];
  return {.minimum = {.step = stable_step}, .notes = notes};
}

UnseenDepths StepNotes::unseen_depths(int place) const {
  const auto value = [&](const Column& column) { return column.empty() ? 0.0 : column[at(place)]; };
  return {value(recovered), value(lifted), value(taken_discharge)};
}

NotedStep StepNotes::of_step(const Tables& tables, const std::vector<int>& patches,
                             const StepMinimum& minimum, int place_of_bound,
                             const BringHome& bring_home) const {
  NotedStep own = {minimum, notes_, notes_.limiting_cell, {}};
  physics::StepNotes& notes = own.notes;
  notes.limiting_cell = place_of_bound >= 0
                            ? cell_at_place_[at(place_of_bound)]
                            : limiting_cell(tables, patches, minimum.step, bring_home);
  note_record(tables, patches, notes.speed_squared, &physics::FlowExtremes::speed_squared,
              bring_home);
  note_record(tables, patches, notes.speed_squared_per_depth,
              &physics::FlowExtremes::speed_squared_per_depth, bring_home);
  notes.not_finite = notes.films = 0;
  for (const physics::FlowExtremes& patch : extremes) {
    notes.not_finite += patch.not_finite;
    notes.films += patch.films;
  }
  const std::array<bool, 3> is_new = {
      true, notes.speed_squared.value > notes_.speed_squared.value,
      notes.speed_squared_per_depth.value > notes_.speed_squared_per_depth.value};
  for (std::size_t k = 0; k < is_new.size(); ++k) {
    if (is_new[k]) own.states[k] = state_of(tables, own.cells()[k], bring_home);
  }
  return own;
}

NotedState StepNotes::state_of(const Tables& tables, int cell, const BringHome& bring_home) const {
  const int own = cell < 0 ? -1 : tables.cell_of(cell);
  if (own < 0) return {};
  const int place = tables.place[at(own)];
  bring_home({place, place + 1});
  NotedState noted = {cell, tables.cells.state_at(at(place))};
  noted.state.water_level = noted.state.bed_level + noted.state.h;  // no surface is given any more
  return noted;
}

void StepNotes::take(const NotedStep& of_all) {
  notes_ = of_all.notes;
  told_ = of_all.states;
}

const CellState* StepNotes::told_state(int cell) const {
  for (const NotedState& told : told_) {
    if (cell >= 0 && told.cell == cell) return &told.state;
  }
  return nullptr;
}

int StepNotes::limiting_cell(const Tables& tables, const std::vector<int>& patches, double smallest,
                             const BringHome& bring_home) const {
  const auto sets_it = [&](std::size_t place) { return sets_step(tables, place, smallest); };
  return physics::limiting_cell(
      smallest, tables.dry_step, notes_.limiting_cell,
      [&](int number) {
        const int cell = tables.cell_of(number);
        if (cell < 0) return false;
        const int place = tables.place[at(cell)];
        bring_home({place, place + 1});
        return sets_it(at(place));
      },
      [&] {
        return first_cell(
            tables, patches, [&](int patch) { return smallest_steps[at(patch)] == smallest; },
            sets_it, bring_home);
      });
}

void StepNotes::note_record(const Tables& tables, const std::vector<int>& patches,
                            physics::FlowRecord& record, double physics::FlowExtremes::*value,
                            const BringHome& bring_home) const {
  double largest = record.value;
  for (const int p : patches) largest = std::max(largest, extremes[at(p)].*value);
  if (!(largest > record.value)) return;
  const auto has_it = [&](std::size_t place) {
    return extremes_at(tables, place).*value == largest;
  };
  record = {largest, first_cell(
                         tables, patches, [&](int p) { return extremes[at(p)].*value == largest; },
                         has_it, bring_home)};
}

int StepNotes::limiting_place(const Tables& tables) const {
  const int cell = notes_.limiting_cell < 0 ? -1 : tables.cell_of(notes_.limiting_cell);
  return cell < 0 ? -1 : tables.place[at(cell)];
}

template <class Qualifies, class IsMeant>
int StepNotes::first_cell(const Tables& tables, const std::vector<int>& patches,
                          const Qualifies& qualifies, const IsMeant& is_meant,
                          const BringHome& bring_home) const {
  int first = -1;
  for (const int p : patches) {
    if (!qualifies(p)) continue;
    const Range cells = tables.patches.patches[at(p)].cells;
    bring_home(cells);
    for (int i = cells.begin; i < cells.end; ++i) {
      const int cell = cell_at_place_[at(i)];
      if ((first < 0 || cell < first) && is_meant(at(i))) first = cell;
    }
  }
  return first;
}

}  // namespace engine
