// The kernel of the first-order HLL scheme, a block to a patch: what the host does patch by patch,
// with states of cells and fluxes in the scratch of the block; with the bed where it moves.
#pragma once

#include "engine/device/HllPatchStep.hpp"

namespace engine::device {

template <bool has_bed>
struct AdvanceHll1 {
  static constexpr int phases = 5, threads = threads_of_patch, blocks_at_once = has_bed ? 2 : 0;

  HllStep step;

  static int words_of(const HllScratch& room) {
    constexpr int per_state = has_bed ? 7 + 4 : 7, per_slot = has_bed ? 4 : 3;
    return per_state * room.states + per_slot * room.slots + room.demands;
  }
  int scratch_words() const {
    return FindingsInScratch::words_of(step.looks_for) + words_of(step.room);
  }
  QM_HD bool has_work(const AdvanceHll1& kernel, int patch) {
    return is_computed(kernel.step, patch);
  }

  /// 0: the states of the cells of the patch and of the ring around it.
  template <class Scratch>
  QM_HD void run(Phase<0>, const AdvanceHll1& kernel, const Thread& thread, Scratch scratch) {
    const HllStep& step = kernel.step;
    const HllPatchView& patch = hll_patch_of(step, thread);
    const Words<Scratch> words = parts_of(step, scratch);
    for (int k = thread.number; k < patch.cells; k += thread.count) {
      begin_cell(step, patch.first_cell + k, patch.has_soil, words.demand, k);
    }
    const kernels::StepValues values = present_values(*step.clock, step.values);
    for (int k = thread.number; k < patch.with_states; k += thread.count) {
      if (!HllPatchView::is_gap(patch, k)) store_state(step, values, patch, k, words);
    }
  }

  /// 1: all slots of the patch.
  template <class Scratch>
  QM_HD void run(Phase<1>, const AdvanceHll1& kernel, const Thread& thread, Scratch scratch) {
    const HllStep& step = kernel.step;
    const HllPatchView& patch = hll_patch_of(step, thread);
    const Words<Scratch> words = parts_of(step, scratch);
    hll_water_fluxes(step, patch, thread, words.states, words.slots);
    if constexpr (has_bed) bed_fluxes(step, patch, thread, words);
    for (int b = thread.number; b < patch.boundaries; b += thread.count) {
      const int outer = flux_of_hll_boundary(step, patch, b, words.states, words.slots);
      if constexpr (has_bed) {
        const int boundary = patch.first_boundary + b, slot = 2 * patch.edges + b;
        kernels::hll_bed_flux_of_boundary(words.states, step.hll.boundary_states[boundary],
                                          words.beds, step.tables.boundaries[boundary], step.values,
                                          words.slots, slot);
        step.tables.outer.bed[outer] = words.slots.bed[slot];
      }
    }
  }

  /// 2: the cells.
  template <class Scratch>
  QM_HD void run(Phase<2>, const AdvanceHll1& kernel, const Thread& thread, Scratch scratch) {
    const HllStep& step = kernel.step;
    const Words<Scratch> words = parts_of(step, scratch);
    // There is no source in first order, and no drag either: its column is zero.
    const kernels::HllWaterColumnsWith<Scratch>& waters = words.states.waters;
    const kernels::HllBeforeColumnsWith<Scratch, Scratch> before = {waters.u, waters.v, waters.drag,
                                                                    waters.drag};
    const PatchFindings found =
        advance_hll_cells<has_bed>(step, thread, before, words.slots, words.demand);
    FindingsInScratch::store_cells(step.looks_for, scratch, thread.number, found);
  }

  /// 3 and 4: what the threads of the block have found.
  template <class Scratch>
  QM_HD void run(Phase<3>, const AdvanceHll1& kernel, const Thread& thread, Scratch scratch) {
    unite_findings(kernel.step, thread, scratch);
  }
  template <class Scratch>
  QM_HD void run(Phase<4>, const AdvanceHll1& kernel, const Thread& thread, Scratch scratch) {
    tell_findings(kernel.step, thread, scratch);
  }

 private:
  /// The parts of the scratch of a block.
  template <class Scratch>
  struct Words {
    kernels::HllCellStatesWith<Scratch> states;
    kernels::HllBedColumnsWith<Scratch> beds;  ///< nothing where no bed moves
    kernels::SlotColumnsWith<Scratch> slots;
    Scratch demand;
  };

  template <class Scratch>
  QM_HD Words<Scratch> parts_of(const HllStep& step, Scratch scratch) {
    const HllScratch& room = step.room;
    const int n = room.states;
    const Scratch water = behind_findings(step, scratch);
    const Scratch giving = water + 5 * n, bed = giving + 2 * n;
    const Scratch slots = has_bed ? bed + 4 * n : bed;
    const Scratch demand = slots + (has_bed ? 4 : 3) * room.slots;
    return {{{water, water + n, water + 2 * n, water + 3 * n, water + 4 * n}, giving, giving + n},
            {bed, bed + n, bed + 2 * n, bed + 3 * n},
            hll_slots<has_bed>(step, slots),
            demand};
  }

  template <class Scratch>
  QM_HD void store_state(const HllStep& step, const kernels::StepValues& values,
                         const HllPatchView& patch, int k, const Words<Scratch>& words) {
    const kernels::CellColumns& cells = step.tables.cells;
    const int i = place_of(step.hll, patch, k);
    const double* const geometry = geometry_of(step.hll, patch, k);
    kernels::store_hll_cell_state(cells, i, geometry, k, words.states, values);
    if constexpr (has_bed) {
      if (cells.manning != nullptr) {
        kernels::store_hll_bed<true>(cells, i, words.states.waters, geometry, k, words.beds,
                                     values);
      } else {
        kernels::store_hll_bed<false>(cells, i, words.states.waters, geometry, k, words.beds,
                                      values);
      }
    }
  }

  /// Of the edges whose water the same thread has just computed.
  template <class Scratch>
  QM_HD void bed_fluxes(const HllStep& step, const HllPatchView& patch, const Thread& thread,
                        const Words<Scratch>& words) {
    const auto& edges = step.hll.edges;
    for (int k = thread.number; k < patch.edges; k += thread.count) {
      const int e = patch.first_edge + k;
      const double discharge =
          kernels::hll_bed_discharge(words.states, words.beds, edges.left[e], edges.right[e],
                                     edge_of(edges, e), words.slots.mass[k]);
      words.slots.bed[k] = -discharge;
      words.slots.bed[patch.edges + k] = discharge;
    }
    if (thread.number == 0) words.slots.bed[2 * patch.edges + patch.boundaries] = 0.0;
  }
};

}  // namespace engine::device
