#include "engine/host/HostBackend.hpp"

#include <algorithm>
#include <cmath>

#include "engine/host/note_maxima.hpp"
#include "kernels/cell.hpp"

namespace engine {

namespace {

/// End of the run of consecutive patches that starts at entry k of a list: their cut edges and
/// boundaries lie one behind the other.
int end_of_run(const std::vector<int>& patches, int k, int end) {
  const int first = patches[at(k)] - k;
  while (k < end && patches[at(k)] - k == first) ++k;
  return k;
}

}  // namespace

HostBackend::HostBackend(Tables& tables, ThreadTeam& team, const Loops& loops)
    : tables_(tables),
      team_(team),
      loops_(loops),
      model_(tables.has_bed ? loops_.water_and_bed : loops_.water),
      watches_hyperbolicity_(tables.has_bed),
      scratch_(at(team.size())),
      untaken_(team.size()) {
  std::size_t slots = 0, cells = 0;
  for (const Patch& patch : tables.patches.patches) {
    slots = std::max(slots, at(patch.empty_slot()) + 1);
    cells = std::max(cells, at(patch.cells.size()));
  }
  for (Scratch& scratch : scratch_) {
    scratch.slots.assign(slots, tables.has_bed);
    scratch.reciprocal.assign(cells, 0.0);
    scratch.celerity.assign(cells, 0.0);
    scratch.demand.resize(tables, cells);
  }
}

void HostBackend::outer_fluxes(const std::vector<int>& patches, const kernels::StepValues& step) {
  team_.run([&](int member) {
    Scratch& scratch = scratch_[at(member)];
    scratch.not_hyperbolic.reset();
    const Range share = share_of(member, team_.size(), patches.size());
    for (int k = share.begin; k < share.end;) {
      const int end = end_of_run(patches, k, share.end);
      outer_fluxes(patches[at(k)], patches[at(end - 1)], step, scratch);
      k = end;
    }
  });
}

void HostBackend::outer_fluxes(int first_patch, int last_patch, const kernels::StepValues& step,
                               Scratch& scratch) {
  const Patch& first = tables_.patches.patches[at(first_patch)];
  const Patch& last = tables_.patches.patches[at(last_patch)];
  const kernels::CellColumns cells = tables_.columns();
  const kernels::SlotColumns slots = tables_.outer.columns();
  const Range cut = {first.cut_edges.begin, last.cut_edges.end};
  const EdgeRange range = {cut.begin, cut.end, 0, slots.from(cut.begin),
                           slots.from(tables_.cut_edges() + cut.begin)};
  const kernels::EdgeColumns<int> edges = tables_.patches.cut_edges.columns();
  if (!model_.fluxes(cells, edges, range, step)) {
    find_not_hyperbolic(edges, range, tables_.patches.cut_edge_number, step, scratch);
  }
  for (int b = first.boundaries.begin; b < last.boundaries.end; ++b) {
    kernels::flux_of_boundary(cells, tables_.boundaries[at(b)], step, slots,
                              tables_.first_boundary_slot() + b);
  }
}

double HostBackend::advance(const std::vector<int>& patches, const kernels::StepValues& values,
                            const std::vector<physics::SoilStep>& soil_steps, Activity& activity,
                            StepNotes* notes) {
  if (patches.empty()) return physics::unbounded_step;  // no thread need wake up for nothing
  const Step step = {values, soil_steps, activity, notes};
  untaken_.deal(patches.size());
  team_.run([&](int member) {
    Scratch& scratch = scratch_[at(member)];
    scratch.smallest_step = physics::unbounded_step;
    for (int k = untaken_.take(member); k >= 0; k = untaken_.take(member)) {
      advance_patch(patches[at(k)], step, scratch);
    }
  });
  double smallest = physics::unbounded_step;
  for (const Scratch& scratch : scratch_) {
    smallest = physics::smaller(smallest, scratch.smallest_step);
  }
  return smallest;
}

void HostBackend::note_maxima(const std::vector<int>& patches) {
  note_maxima_of_patches(patches, tables_, team_, loops_);
}

void HostBackend::advance_patch(int number, const Step& step, Scratch& scratch) {
  const Patch& patch = tables_.patches.patches[at(number)];
  note_maxima_of_patch(number, tables_, loops_);
  const kernels::CellColumns cells = columns_with_terms(patch, step.values, scratch);
  fluxes_within(patch, cells, step.values, scratch);
  take_outer_slots(patch, scratch);

  const double* const demand =
      scratch.demand.find(number, tables_, loops_, step.soil_steps, step.notes);
  physics::FlowExtremes* const extremes =
      step.notes != nullptr ? &step.notes->extremes[at(number)] : nullptr;
  if (extremes != nullptr) *extremes = {};
  if (step.notes != nullptr && tables_.has_bed) note_bare_rock(patch, step, scratch);
  const CellRange range = {patch.cells.begin,
                           patch.cells.end,
                           tables_.shortest.data() + patch.cells.begin / cells_of_shortest,
                           scratch.slots.columns(),
                           tables_.has_bed ? nullptr : demand,  // sediment beds let no water in
                           extremes,
                           hints_of_patch(number, tables_)};
  const double so_far = scratch.smallest_step;
  // Who takes notes wants to see a step that is just as small as the smallest so far.
  const double below = step.notes != nullptr ? std::nextafter(so_far, HUGE_VAL) : so_far;
  const Advance after = model_.advance(cells, range, step.values, below);
  scratch.smallest_step = physics::smaller(so_far, after.stable_step);
  if (step.notes != nullptr) step.notes->smallest_steps[at(number)] = after.stable_step;
  step.activity.set_can_change(number, !after.all_rest);
}

kernels::CellColumns HostBackend::columns_with_terms(const Patch& patch,
                                                     const kernels::StepValues& step,
                                                     Scratch& scratch) {
  kernels::CellColumns cells = tables_.columns();
  cells.reciprocal = scratch.reciprocal.data() - patch.cells.begin;
  cells.celerity = scratch.celerity.data() - patch.cells.begin;
  loops_.terms(cells, patch.cells.begin, patch.cells.end, step.zero_depth);
  return cells;
}

void HostBackend::fluxes_within(const Patch& patch, const kernels::CellColumns& cells,
                                const kernels::StepValues& step, Scratch& scratch) {
  const kernels::SlotColumns slots = scratch.slots.columns();
  const kernels::EdgeColumns<kernels::Local> edges = tables_.patches.edges.columns();
  const EdgeRange range = {patch.edges.begin, patch.edges.end, patch.cells.begin, slots,
                           slots.from(patch.right_slots())};
  if (!model_.patch_fluxes(cells, edges, range, step)) {
    find_not_hyperbolic(edges, range, tables_.patches.edge_number, step, scratch);
  }
}

void HostBackend::take_outer_slots(const Patch& patch, Scratch& scratch) const {
  const Slots& outer = tables_.outer;
  const kernels::SlotColumns taken = scratch.slots.columns().from(patch.outer_slots_begin());
  const int count = patch.outer_slots.size();
  for (int k = 0; k < count; ++k) {
    const std::size_t slot = at(tables_.patches.outer_slots[at(patch.outer_slots.begin + k)]);
    taken.mass[k] = outer.mass[slot];
    taken.momentum_x[k] = outer.momentum_x[slot];
    taken.momentum_y[k] = outer.momentum_y[slot];
    if (tables_.has_bed) taken.bed[k] = outer.bed[slot];
  }
  kernels::fill_slot(taken, count, {0.0, 0.0, 0.0});  // the slot that never carries anything
  if (tables_.has_bed) taken.bed[count] = 0.0;
}

void HostBackend::note_bare_rock(const Patch& patch, const Step& step, Scratch& scratch) {
  const kernels::CellColumns cells = tables_.columns();
  const kernels::SlotColumns slots = scratch.slots.columns();
  for (int i = patch.cells.begin; i < patch.cells.end; ++i) {
    const kernels::CellSlots of_cell = {cells.slots[0][i], cells.slots[1][i], cells.slots[2][i]};
    step.notes->lifted[at(i)] += kernels::lifted_sediment(cells, i, of_cell, slots, step.values);
  }
}

template <class Index>
void HostBackend::find_not_hyperbolic(const kernels::EdgeColumns<Index>& edges,
                                      const EdgeRange& range, const std::vector<int>& numbers,
                                      const kernels::StepValues& step, Scratch& scratch) const {
  if (!watches_hyperbolicity_) return;
  const kernels::CellColumns cells = tables_.columns();
  for (int e = range.begin; e < range.end; ++e) {
    if (scratch.not_hyperbolic && scratch.not_hyperbolic->edge < numbers[at(e)]) continue;
    const physics::Edge edge = {edges.nx[e], edges.ny[e], edges.length[e]};
    for (const int i : {range.first_cell + edges.right[e], range.first_cell + edges.left[e]}) {
      if (kernels::is_hyperbolic(cells, i, edge, step)) continue;
      scratch.not_hyperbolic = {numbers[at(e)], i, cells.h[i], cells.qx[i], cells.qy[i]};
    }
  }
}

std::optional<NotHyperbolic> HostBackend::not_hyperbolic() const {
  std::optional<NotHyperbolic> first;
  for (const Scratch& scratch : scratch_) {
    if (scratch.not_hyperbolic && (!first || scratch.not_hyperbolic->edge < first->edge)) {
      first = scratch.not_hyperbolic;
    }
  }
  return first;
}

}  // namespace engine
