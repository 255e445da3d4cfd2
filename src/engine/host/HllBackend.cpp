#include "engine/host/HllBackend.hpp"

#include <algorithm>

#include "engine/host/note_maxima.hpp"
#include "physics/stable_step.hpp"

namespace engine {

HllBackend::HllBackend(Tables& tables, ThreadTeam& team, const Loops& loops)
    : tables_(tables),
      team_(team),
      loops_(loops),
      scratch_(at(team.size())),
      untaken_(team.size()) {
  std::size_t cells = 0, with_states = 0, all_cells = 0, slots = 0;
  for (const HllPatch& patch : tables.hll->patches) {
    cells = std::max(cells, at(patch.cells));
    with_states = std::max(with_states, at(patch.with_states));
    all_cells = std::max(all_cells, at(patch.ring) + patch.around.size());
    slots = std::max(slots, at(patch.empty_slot()) + 1);
  }
  for (Scratch& scratch : scratch_) {
    scratch.water.assign(all_cells);
    if (tables.hll->second_order) {
      scratch.edge.assign(3 * with_states);
    } else {
      scratch.giving.assign(with_states);
    }
    scratch.source.assign(with_states);  // stays in first order
    if (tables.has_bed) scratch.bed.assign(with_states);
    scratch.slots.assign(slots, tables.has_bed);
    scratch.demand.resize(tables, cells);
  }
}

kernels::HllWaterColumns HllBackend::Scratch::waters() {
  return {water[0], water[1], water[2], water[3], water[4]};
}

kernels::HllEdgeColumns HllBackend::Scratch::edges(int stride) {
  return {edge[0], edge[1], edge[2], edge[3], edge[4], source[0], source[1], stride};
}

kernels::HllCellStates HllBackend::Scratch::states() { return {waters(), giving[0], giving[1]}; }

kernels::HllBeforeColumns HllBackend::Scratch::before() const {
  return {water[1], water[2], source[0], source[1]};
}

kernels::HllBedColumns HllBackend::Scratch::beds() { return {bed[0], bed[1], bed[2], bed[3]}; }

double HllBackend::advance(const std::vector<int>& patches, const kernels::StepValues& values,
                           const std::vector<physics::SoilStep>& soil_steps, Activity& activity,
                           StepNotes* notes) {
  const Step step = {values, soil_steps, activity, notes};
  untaken_.deal(patches.size());
  team_.run([&](int member) {
    Scratch& scratch = scratch_[at(member)];
    scratch.crossing_rate = 0.0;
    for (int k = untaken_.take(member); k >= 0; k = untaken_.take(member)) {
      // Most likely the next one; another is right as well.
      const bool is_last = at(k) + 1 == patches.size();
      advance_patch(patches[at(k)], step, is_last ? HllAhead{} : ahead(patches[at(k) + 1]),
                    scratch);
    }
  });
  double rate = 0.0;
  for (const Scratch& scratch : scratch_) rate = physics::larger(rate, scratch.crossing_rate);
  return physics::step_of_crossing_rate(rate);
}

void HllBackend::note_maxima(const std::vector<int>& patches) {
  note_maxima_of_patches(patches, tables_, team_, loops_);
}

HllAhead HllBackend::ahead(int number) const {
  const Range own = tables_.patches.patches[at(number)].cells;
  const kernels::CellColumns cells = tables_.columns();
  return {{cells.h + own.begin, cells.qx + own.begin, cells.qy + own.begin, cells.bed + own.begin},
          tables_.hll->patches[at(number)].geometry.data(),
          tables_.hll->numbers(),
          own.size()};
}

void HllBackend::advance_patch(int number, const Step& step, const HllAhead& next,
                               Scratch& scratch) {
  note_maxima_of_patch(number, tables_, loops_);
  if (tables_.hll->second_order) {
    second_order_fluxes(number, step.values, next, scratch);
  } else {
    first_order_fluxes(number, step.values, next, scratch);
  }
  const HllPatch& patch = tables_.hll->patches[at(number)];
  const Range own = tables_.patches.patches[at(number)].cells;
  const kernels::CellColumns cells = tables_.columns();
  physics::FlowExtremes* const extremes =
      step.notes != nullptr ? &step.notes->extremes[at(number)] : nullptr;
  // A bed of sediments lets no water in.
  const double* const demand =
      tables_.has_bed ? nullptr
                      : scratch.demand.find(number, tables_, loops_, step.soil_steps, step.notes);
  const HllCellRange own_cells = {
      own.begin,
      own.size(),
      scratch.before(),
      {patch.slots[0].data(), patch.slots[1].data(), patch.slots[2].data()},
      scratch.slots.columns(),
      demand,
      tables_.hll->after(),
      extremes,
      step.notes != nullptr ? &step.notes->taken_discharge[at(own.begin)] : nullptr,
      hints_of_patch(number, tables_)};
  HllAdvance after = loops_.hll.advance(cells, own_cells, step.values);
  if (tables_.has_bed) {
    after.crossing_rate =
        physics::larger(after.crossing_rate, loops_.hll.advance_bed(cells, own_cells, step.values));
  }
  scratch.crossing_rate = physics::larger(scratch.crossing_rate, after.crossing_rate);
  if (step.notes != nullptr) {
    step.notes->smallest_steps[at(number)] = physics::step_of_crossing_rate(after.crossing_rate);
  }
  step.activity.set_can_change(number, !after.all_rest);
}

HllRange HllBackend::range_of(int number) const {
  const HllPatch& patch = tables_.hll->patches[at(number)];
  const Range own = tables_.patches.patches[at(number)].cells;
  return {own.begin, own.size(), patch.around.data(), static_cast<int>(patch.around.size()),
          patch.ring};
}

void HllBackend::second_order_fluxes(int number, const kernels::StepValues& step,
                                     const HllAhead& next, Scratch& scratch) {
  const HllPatch& patch = tables_.hll->patches[at(number)];
  const kernels::HllEdgeColumns edges = scratch.edges(patch.with_states);
  const kernels::SlotColumns slots = scratch.slots.columns();
  loops_.hll.waters(tables_.columns(), range_of(number), scratch.waters(), step.zero_depth);
  loops_.hll.edges(scratch.waters(), patch.columns(), patch.with_states, edges, step);
  loops_.hll.fluxes_of_edges(patch.edges.columns(), patch.right_slots(), edges, slots,
                             slots.from(patch.right_slots()), step.zero_depth, next);
  boundary_fluxes(number, edges, step, scratch);
}

void HllBackend::first_order_fluxes(int number, const kernels::StepValues& step,
                                    const HllAhead& next, Scratch& scratch) {
  const HllPatch& patch = tables_.hll->patches[at(number)];
  const kernels::HllCellStates states = scratch.states();
  const kernels::SlotColumns slots = scratch.slots.columns(),
                             right = slots.from(patch.right_slots());
  const HllRange range = range_of(number);
  loops_.hll.states(tables_.columns(), range, patch.columns(), states, step);
  loops_.hll.fluxes_of_cells(patch.edges.columns(), patch.right_slots(), states, slots, right,
                             step.zero_depth, next);
  boundary_fluxes(number, states, step, scratch);
  if (!tables_.has_bed) return;
  loops_.hll.beds(tables_.columns(), range, scratch.waters(), patch.columns(), patch.with_states,
                  scratch.beds(), step);
  loops_.hll.bed_fluxes(patch.edges.columns(), patch.right_slots(), states, scratch.beds(), slots,
                        right);
  boundary_bed_fluxes(number, step, scratch);
}

/// Calls visit(state, boundary, slot, its place among the outer slots) for those of a patch.
template <class Visit>
void HllBackend::for_each_boundary(int number, const Visit& visit) const {
  const HllPatch& patch = tables_.hll->patches[at(number)];
  const int first = tables_.patches.patches[at(number)].boundaries.begin;
  for (int b = 0; b < static_cast<int>(patch.boundary_states.size()); ++b) {
    visit(patch.boundary_states[at(b)], tables_.boundaries[at(first + b)],
          patch.first_boundary_slot() + b, at(tables_.first_boundary_slot() + first + b));
  }
}

template <class States>
void HllBackend::boundary_fluxes(int number, const States& states, const kernels::StepValues& step,
                                 Scratch& scratch) {
  const kernels::SlotColumns slots = scratch.slots.columns();
  for_each_boundary(number, [&](int state, const auto& boundary, int slot, std::size_t outer) {
    kernels::hll_flux_of_boundary(states, state, boundary, step, slots, slot);
    tables_.outer.mass[outer] = slots.mass[slot];
  });
  kernels::fill_slot(slots, tables_.hll->patches[at(number)].empty_slot(), {0.0, 0.0, 0.0});
}

void HllBackend::boundary_bed_fluxes(int number, const kernels::StepValues& step,
                                     Scratch& scratch) {
  const kernels::SlotColumns slots = scratch.slots.columns();
  const kernels::HllCellStates states = scratch.states();
  const kernels::HllBedColumns beds = scratch.beds();
  for_each_boundary(number, [&](int cell, const auto& boundary, int slot, std::size_t outer) {
    kernels::hll_bed_flux_of_boundary(states, cell, beds, boundary, step, slots, slot);
    tables_.outer.bed[outer] = slots.bed[slot];
  });
  slots.bed[tables_.hll->patches[at(number)].empty_slot()] = 0.0;
}

void HllBackend::finish_step(const Activity& activity) {
  HllTables& hll = *tables_.hll;
  for (const int p : activity.gone_to_rest()) {
    hll.keep(tables_.cells, tables_.patches.patches[at(p)].cells);
  }
  hll.take_state_after(tables_.cells);
}

}  // namespace engine
