// The kernel of the step of patches, a block to a patch: what the host does patch by patch, with
// fluxes and terms of the depth in the scratch of the block.
#pragma once

#include "engine/device/PatchStep.hpp"
#include "kernels/cell.hpp"

namespace engine::device {

/// What the scratch of a block has room for, beside what its threads find.
struct PatchScratch {
  int slots, cells;  ///< of a patch
  int demands;       ///< of its soils
};

template <bool has_bed>
struct AdvancePatches {
  // With a bound on the registers the compiler spills some of them.
  static constexpr int phases = 5, threads = threads_of_patch, blocks_at_once = 0;

  PatchStep step;
  PatchScratch room;

  static int words_of(const PatchScratch& room) {
    constexpr int columns = has_bed ? 4 : 3;
    return columns * room.slots + 2 * room.cells + room.demands;
  }
  int scratch_words() const { return FindingsInScratch::words_of(step.looks_for) + words_of(room); }
  QM_HD bool has_work(const AdvancePatches& kernel, int patch) {
    return is_computed(kernel.step, patch);
  }

  /// 0: what follows from the states before the step.
  template <class Scratch>
  QM_HD void run(Phase<0>, const AdvancePatches& kernel, const Thread& thread, Scratch scratch) {
    const PatchView& patch = patch_of(kernel, thread);
    const Words<Scratch> words = parts_of(kernel, scratch);
    const auto cells = cells_of(kernel, patch, words);
    for (int k = thread.number; k < patch.cells; k += thread.count) {
      const int i = patch.first_cell + k;
      begin_cell(kernel.step, i, patch.has_soil, words.demand, k);
      kernels::store_terms(cells, i, kernel.step.values.zero_depth);
    }
  }

  /// 1: all slots of the patch.
  template <class Scratch>
  QM_HD void run(Phase<1>, const AdvancePatches& kernel, const Thread& thread, Scratch scratch) {
    const PatchView& patch = patch_of(kernel, thread);
    const Words<Scratch> words = parts_of(kernel, scratch);
    const EdgeFound first = kernel.step.tables.cells.eta != nullptr
                                ? over_edges<true>(kernel, patch, words, thread)
                                : over_edges<false>(kernel, patch, words, thread);
    FindingsInScratch::store_edge(kernel.step.looks_for, scratch, thread.number, first);
    take_outer_slots(kernel, patch, words, thread);
  }

  /// 2: the cells.
  template <class Scratch>
  QM_HD void run(Phase<2>, const AdvancePatches& kernel, const Thread& thread, Scratch scratch) {
    const PatchView& patch = patch_of(kernel, thread);
    const Words<Scratch> words = parts_of(kernel, scratch);
    PatchFindings own;
    for (int k = thread.number; k < patch.cells; k += thread.count) {
      own = united(own, advance_cell(kernel, patch, words, patch.first_cell + k));
    }
    FindingsInScratch::store_cells(kernel.step.looks_for, scratch, thread.number, own);
  }

  /// 3 and 4: what the threads of the block have found.
  template <class Scratch>
  QM_HD void run(Phase<3>, const AdvancePatches& kernel, const Thread& thread, Scratch scratch) {
    unite_findings(kernel.step, thread, scratch);
  }
  template <class Scratch>
  QM_HD void run(Phase<4>, const AdvancePatches& kernel, const Thread& thread, Scratch scratch) {
    tell_findings(kernel.step, thread, scratch);
  }

 private:
  /// The parts of the scratch of a block.
  template <class Scratch>
  struct Words {
    kernels::SlotColumnsWith<Scratch> slots;
    Scratch reciprocal, celerity, demand;
  };

  template <class Scratch>
  QM_HD Words<Scratch> parts_of(const AdvancePatches& kernel, Scratch scratch) {
    const PatchScratch& room = kernel.room;
    const Scratch slots = behind_findings(kernel.step, scratch);
    const Scratch terms = slots + (has_bed ? 4 : 3) * room.slots;
    return {{slots, slots + room.slots, slots + 2 * room.slots, bed_slots(room, slots)},
            terms,
            terms + room.cells,
            terms + 2 * room.cells};
  }
  template <class Scratch>
  QM_HD Scratch bed_slots(const PatchScratch& room, Scratch slots) {
    if constexpr (has_bed) return slots + 3 * room.slots;
    return {};
  }

  QM_HD const PatchView& patch_of(const AdvancePatches& kernel, const Thread& thread) {
    return kernel.step.tables.patches[thread.block];
  }

  /// All columns, with the terms of the depth of a patch.
  template <class Scratch>
  QM_HD auto cells_of(const AdvancePatches& kernel, const PatchView& patch,
                      const Words<Scratch>& words) {
    return kernels::with_terms(kernel.step.tables.cells, words.reciprocal - patch.first_cell,
                               words.celerity - patch.first_cell);
  }

  template <bool eta_given, class Scratch>
  QM_HD EdgeFound over_edges(const AdvancePatches& kernel, const PatchView& patch,
                             const Words<Scratch>& words, const Thread& thread) {
    using Given = kernels::Given<eta_given, true>;
    const TableView& tables = kernel.step.tables;
    const auto cells = cells_of(kernel, patch, words);
    const auto right = slots_from<has_bed>(words.slots, patch.right_slots);
    EdgeFound first;
    for (int k = thread.number; k < patch.edges; k += thread.count) {
      const int e = patch.first_edge + k;
      const physics::Edge edge = edge_of(tables.edges, e);
      const int l = patch.first_cell + tables.edges.left[e];
      const int r = patch.first_cell + tables.edges.right[e];
      if constexpr (has_bed) {
        const kernels::Radicands radicands = kernels::flux_of_water_and_bed<Given>(
            cells, l, r, edge, kernel.step.values, words.slots, right, k);
        if (kernel.step.looks_for.with_not_hyperbolic && may_not_be_hyperbolic(radicands)) {
          first =
              first_of(first, tables.cells, l, r, edge, tables.edge_number[e], kernel.step.values);
        }
      } else {
        kernels::flux_of_water<Given>(cells, l, r, edge, kernel.step.values, words.slots, right, k);
      }
    }
    return first;
  }

  /// What passes the edges around the patch; and the slot that never carries anything.
  template <class Scratch>
  QM_HD void take_outer_slots(const AdvancePatches& kernel, const PatchView& patch,
                              const Words<Scratch>& words, const Thread& thread) {
    const kernels::SlotColumns& outer = kernel.step.tables.outer;
    const auto taken = slots_from<has_bed>(words.slots, 2 * patch.right_slots);
    for (int k = thread.number; k < patch.outer_slots; k += thread.count) {
      const int slot = kernel.step.tables.outer_slots[patch.first_outer_slot + k];
      taken.mass[k] = outer.mass[slot];
      taken.momentum_x[k] = outer.momentum_x[slot];
      taken.momentum_y[k] = outer.momentum_y[slot];
      if constexpr (has_bed) taken.bed[k] = outer.bed[slot];
    }
    if (thread.number > 0) return;
    kernels::fill_slot(taken, patch.outer_slots, {0.0, 0.0, 0.0});
    if constexpr (has_bed) taken.bed[patch.outer_slots] = 0.0;
  }

  template <class Scratch>
  QM_HD PatchFindings advance_cell(const AdvancePatches& kernel, const PatchView& patch,
                                   const Words<Scratch>& words, int i) {
    const kernels::CellColumns& cells = kernel.step.tables.cells;
    const kernels::StepValues step = present_values(*kernel.step.clock, kernel.step.values);
    const kernels::CellSlots slots = {cells.slots[0][i], cells.slots[1][i], cells.slots[2][i]};
    if constexpr (has_bed) {
      if (kernel.step.notes.are_taken) {
        kernel.step.notes.lifted[i] += kernels::lifted_sediment(cells, i, slots, words.slots, step);
      }
    }
    const kernels::CellAfter after = after_step(kernel, step, patch, words, i, slots);
    if (after.is_deeper) cells.max_h[i] = after.max_h;
    PatchFindings findings;
    if (after.wave_speed > 0.0) findings.smallest_step = cells.char_length[i] / after.wave_speed;
    if (after.is_dry) {
      findings.smallest_step = physics::smaller(findings.smallest_step, step.dry_step);
    }
    findings.changing_cells = after.may_change ? 1 : 0;
    if (kernel.step.notes.are_taken) {
      findings.extremes = physics::extremes_of_state(
          cells.h[i], cells.qx[i], cells.qy[i], physics::depth_terms(cells.h[i], step.zero_depth));
    }
    return findings;
  }

  template <class Scratch>
  QM_HD kernels::CellAfter after_step(const AdvancePatches& kernel, const kernels::StepValues& step,
                                      const PatchView& patch, const Words<Scratch>& words, int i,
                                      const kernels::CellSlots& slots) {
    const bool friction = kernel.step.tables.cells.manning != nullptr;
    if (step.rain_depths != nullptr) {
      return friction ? after_step<true, true>(kernel, step, patch, words, i, slots)
                      : after_step<false, true>(kernel, step, patch, words, i, slots);
    }
    return friction ? after_step<true, false>(kernel, step, patch, words, i, slots)
                    : after_step<false, false>(kernel, step, patch, words, i, slots);
  }

  template <bool friction, bool rain, class Scratch>
  QM_HD kernels::CellAfter after_step(const AdvancePatches& kernel, const kernels::StepValues& step,
                                      const PatchView& patch, const Words<Scratch>& words, int i,
                                      const kernels::CellSlots& slots) {
    const auto cells = cells_of(kernel, patch, words);
    if constexpr (has_bed) {  // which lets no water in
      return kernels::advance_water_and_bed<friction, rain>(cells, i, slots, words.slots, step);
    } else if (patch.has_soil) {
      return kernels::advance_water<friction, rain, true>(cells, i, slots, words.slots,
                                                          words.demand[i - patch.first_cell], step);
    } else {
      return kernels::advance_water<friction, rain, false>(cells, i, slots, words.slots, 0.0, step);
    }
  }
};

}  // namespace engine::device
