#include "engine/StepNotes.hpp"

#include <algorithm>

#include "engine/numbering.hpp"
#include "physics/stable_step.hpp"

namespace engine {

StepNotes::StepNotes(const Tables& tables, const physics::StepNotes& before)
    : extremes(tables.patches.patches.size()),
      smallest_steps(extremes.size(), physics::unbounded_step),
      notes_(before),
      cell_at_place_(inverse(tables.cell_number)) {
  if (tables.has_bed) lifted.assign(tables.cells.h.size(), 0.0);
  if (!tables.soils.empty()) recovered.assign(tables.cells.h.size(), 0.0);
}

UnseenDepths StepNotes::unseen_depths(int place) const {
  const auto value = [&](const Column& column) { return column.empty() ? 0.0 : column[at(place)]; };
  return {value(recovered), value(lifted)};
}

void StepNotes::sum_up(const Tables& tables, const std::vector<int>& patches,
                       double smallest_step) {
  notes_.limiting_cell = limiting_cell(tables, patches, smallest_step);
  note_record(tables, patches, notes_.speed_squared, &physics::FlowExtremes::speed_squared);
  note_record(tables, patches, notes_.speed_squared_per_depth,
              &physics::FlowExtremes::speed_squared_per_depth);
  notes_.not_finite = 0;
  for (const physics::FlowExtremes& patch : extremes) notes_.not_finite += patch.not_finite;
}

int StepNotes::limiting_cell(const Tables& tables, const std::vector<int>& patches,
                             double smallest) const {
  const auto sets_step = [&](std::size_t place) {
    return physics::is_wet(tables.cells.h[place], tables.zero_depth) &&
           tables.cells.char_length[place] /
                   physics::wave_speed({tables.reciprocal[place], tables.celerity[place]},
                                       tables.cells.qx[place], tables.cells.qy[place]) ==
               smallest;
  };
  return physics::limiting_cell(
      smallest, tables.dry_step, notes_.limiting_cell,
      [&](int cell) { return sets_step(at(tables.cell_number[at(cell)])); },
      [&] {
        return first_cell(
            tables, patches, [&](int patch) { return smallest_steps[at(patch)] == smallest; },
            sets_step);
      });
}

void StepNotes::note_record(const Tables& tables, const std::vector<int>& patches,
                            physics::FlowRecord& record,
                            double physics::FlowExtremes::*value) const {
  double largest = record.value;
  for (const int p : patches) largest = std::max(largest, extremes[at(p)].*value);
  if (!(largest > record.value)) return;
  const auto has_it = [&](std::size_t place) {
    const physics::FlowExtremes of_cell = physics::extremes_of_state(
        tables.cells.h[place], tables.cells.qx[place], tables.cells.qy[place],
        {tables.reciprocal[place], tables.celerity[place]});
    return of_cell.*value == largest;
  };
  record = {largest,
            first_cell(
                tables, patches, [&](int p) { return extremes[at(p)].*value == largest; }, has_it)};
}

template <class Qualifies, class IsMeant>
int StepNotes::first_cell(const Tables& tables, const std::vector<int>& patches,
                          const Qualifies& qualifies, const IsMeant& is_meant) const {
  int first = -1;
  for (const int p : patches) {
    if (!qualifies(p)) continue;
    const Range cells = tables.patches.patches[at(p)].cells;
    for (int i = cells.begin; i < cells.end; ++i) {
      const int cell = cell_at_place_[at(i)];
      if ((first < 0 || cell < first) && is_meant(at(i))) first = cell;
    }
  }
  return first;
}

}  // namespace engine
