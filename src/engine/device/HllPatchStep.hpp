// What the kernels of both HLL schemes do in the step of a patch: fluxes over its boundaries, and
// its cells.
#pragma once

#include "engine/device/HllTableView.hpp"
#include "engine/device/PatchStep.hpp"

namespace engine::device {

/// What the scratch of a block has room for, beside what its threads find.
struct HllScratch {
  int waters, states, slots;  ///< of a patch
  int demands;                ///< of its soils
};

/// What a kernel is told.
struct HllStep : PatchStep {
  HllTableView hll;
  HllScratch room;
};

QM_HD inline const HllPatchView& hll_patch_of(const HllStep& step, const Thread& thread) {
  return step.hll.patches[thread.block];
}

/// Slots of a patch in scratch, from a word on.
template <bool has_bed, class Scratch>
QM_HD inline kernels::SlotColumnsWith<Scratch> hll_slots(const HllStep& step, Scratch words) {
  const int n = step.room.slots;
  if constexpr (has_bed) {
    return {words, words + n, words + 2 * n, words + 3 * n};
  } else {
    return {words, words + n, words + 2 * n, {}};
  }
}

/// The share of a thread of the fluxes between two cells; and the slot that never carries anything.
template <class States, class Slots>
QM_HD inline void hll_water_fluxes(const HllStep& step, const HllPatchView& patch,
                                   const Thread& thread, const States& states, const Slots& slots) {
  const auto& edges = step.hll.edges;
  for (int k = thread.number; k < patch.edges; k += thread.count) {
    const int e = patch.first_edge + k;
    const physics::Edge edge = edge_of(edges, e);
    const physics::SlotPair pair =
        physics::hll_edge_flux(kernels::hll_state(states, edges.left[e], edge),
                               kernels::hll_state(states, edges.right[e], physics::reversed(edge)),
                               edge, step.values.zero_depth);
    kernels::fill_slot(slots, k, pair.left);
    kernels::fill_slot(slots, patch.edges + k, pair.right);
  }
  if (thread.number == 0) {
    kernels::fill_slot(slots, 2 * patch.edges + patch.boundaries, {0.0, 0.0, 0.0});
  }
}

/// What passes boundary b of the patch, and where it is kept for others.
template <class States, class Slots>
QM_HD inline int flux_of_hll_boundary(const HllStep& step, const HllPatchView& patch, int b,
                                      const States& states, const Slots& slots) {
  const int boundary = patch.first_boundary + b;
  const int slot = 2 * patch.edges + b;
  kernels::hll_flux_of_boundary(states, step.hll.boundary_states[boundary],
                                step.tables.boundaries[boundary], step.values, slots, slot);
  const int outer = 2 * step.tables.cut_edge_count + boundary;
  step.tables.outer.mass[outer] = slots.mass[slot];
  return outer;
}

template <bool friction, bool rain, bool soil, bool has_bed, class Before, class Slots>
QM_HD inline kernels::HllCellAfter advance_hll_cell(const HllStep& step,
                                                    const kernels::StepValues& values, int i, int k,
                                                    const Before& before, const Slots& slots,
                                                    double demand) {
  const kernels::CellColumns& cells = step.tables.cells;
  const int s0 = cells.slots[0][i], s1 = cells.slots[1][i], s2 = cells.slots[2][i];
  kernels::HllCellAfter after = kernels::advance_hll<friction, rain, soil>(
      cells, i, k, before, s0, s1, s2, slots, demand, step.hll.after, values);
  if constexpr (has_bed) {
    after.crossing_rate = physics::larger(
        after.crossing_rate,
        kernels::advance_hll_bed<friction>(cells, i, s0, s1, s2, slots, step.hll.after, values));
  }
  return after;
}

template <bool friction, bool rain, bool has_bed, class Before, class Slots, class Scratch>
QM_HD inline kernels::HllCellAfter advance_hll_cell(const HllStep& step,
                                                    const kernels::StepValues& values,
                                                    const HllPatchView& patch, int k,
                                                    const Before& before, const Slots& slots,
                                                    Scratch demand) {
  const int i = patch.first_cell + k;
  if constexpr (!has_bed) {
    if (patch.has_soil) {
      return advance_hll_cell<friction, rain, true, has_bed>(step, values, i, k, before, slots,
                                                             demand[k]);
    }
  }
  return advance_hll_cell<friction, rain, false, has_bed>(step, values, i, k, before, slots, 0.0);
}

template <bool has_bed, class Before, class Slots, class Scratch>
QM_HD inline kernels::HllCellAfter advance_hll_cell(const HllStep& step,
                                                    const kernels::StepValues& values,
                                                    const HllPatchView& patch, int k,
                                                    const Before& before, const Slots& slots,
                                                    Scratch demand) {
  const bool friction = step.tables.cells.manning != nullptr;
  if (values.rain_depths != nullptr) {
    return friction ? advance_hll_cell<true, true, has_bed>(step, values, patch, k, before, slots,
                                                            demand)
                    : advance_hll_cell<false, true, has_bed>(step, values, patch, k, before, slots,
                                                             demand);
  }
  return friction
             ? advance_hll_cell<true, false, has_bed>(step, values, patch, k, before, slots, demand)
             : advance_hll_cell<false, false, has_bed>(step, values, patch, k, before, slots,
                                                       demand);
}

/// The share of a thread of the cells of a patch; what it found in them.
template <bool has_bed, class Before, class Slots, class Scratch>
QM_HD inline PatchFindings advance_hll_cells(const HllStep& step, const Thread& thread,
                                             const Before& before, const Slots& slots,
                                             Scratch demand) {
  const HllPatchView& patch = hll_patch_of(step, thread);
  const kernels::StepValues values = present_values(*step.clock, step.values);
  PatchFindings found;
  double rate = 0.0;
  for (int k = thread.number; k < patch.cells; k += thread.count) {
    const int i = patch.first_cell + k;
    const kernels::HllCellAfter after =
        advance_hll_cell<has_bed>(step, values, patch, k, before, slots, demand);
    if (after.is_deeper) step.tables.cells.max_h[i] = after.max_h;
    rate = physics::larger(rate, after.crossing_rate);
    found.changing_cells += after.may_change ? 1 : 0;
    if (!step.notes.are_taken) continue;
    step.notes.taken_discharge[i] += after.taken_discharge;
    const kernels::HllAfterColumns& to = step.hll.after;
    found.extremes = physics::united(
        found.extremes,
        physics::extremes_of_state(to.h[i], to.qx[i], to.qy[i],
                                   physics::depth_terms(to.h[i], step.values.zero_depth)));
  }
  found.smallest_step = physics::step_of_crossing_rate(rate);
  return found;
}

}  // namespace engine::device
