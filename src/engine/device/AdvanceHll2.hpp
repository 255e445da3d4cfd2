// The kernel of the second-order HLL scheme, a block to a patch: what the host does patch by patch,
// with waters, edge states and fluxes in the scratch of the block.
#pragma once

#include "engine/device/HllPatchStep.hpp"

namespace engine::device {

struct AdvanceHll2 {
  static constexpr int phases = 6, threads = threads_of_patch, blocks_at_once = 0;

  HllStep step;

  static int words_of(const HllScratch& room) {
    return 5 * room.waters + (5 * 3 + 2) * room.states + 3 * room.slots + room.demands;
  }
  int scratch_words() const {
    return FindingsInScratch::words_of(step.looks_for) + words_of(step.room);
  }
  QM_HD bool has_work(const AdvanceHll2& kernel, int patch) {
    return is_computed(kernel.step, patch);
  }

  /// 0: the water of all cells that others see.
  template <class Scratch>
  QM_HD void run(Phase<0>, const AdvanceHll2& kernel, const Thread& thread, Scratch scratch) {
    const HllStep& step = kernel.step;
    const HllPatchView& patch = hll_patch_of(step, thread);
    const Words<Scratch> words = parts_of(step, patch, scratch);
    for (int k = thread.number; k < patch.cells; k += thread.count) {
      begin_cell(step, patch.first_cell + k, patch.has_soil, words.demand, k);
    }
    const kernels::CellColumns& cells = step.tables.cells;
    const double zero_depth = step.values.zero_depth;
    for (int k = thread.number; k < HllPatchView::entries(patch); k += thread.count) {
      if (HllPatchView::is_gap(patch, k)) continue;
      const int i = place_of(step.hll, patch, k);
      if (cells.manning != nullptr) {
        kernels::store_hll_water<true>(cells, i, words.waters, k, zero_depth);
      } else {
        kernels::store_hll_water<false>(cells, i, words.waters, k, zero_depth);
      }
    }
  }

  /// 1: the states on the edges of the patch and of the ring around it.
  template <class Scratch>
  QM_HD void run(Phase<1>, const AdvanceHll2& kernel, const Thread& thread, Scratch scratch) {
    const HllStep& step = kernel.step;
    const HllPatchView& patch = hll_patch_of(step, thread);
    const Words<Scratch> words = parts_of(step, patch, scratch);
    const auto& neighbours = step.hll.neighbours;
    const kernels::StepValues values = present_values(*step.clock, step.values);
    for (int k = thread.number; k < patch.with_states; k += thread.count) {
      if (HllPatchView::is_gap(patch, k)) continue;
      const int n = patch.first_state + k;
      const double* const geometry = geometry_of(step.hll, patch, k);
      const physics::HllSlopes slopes =
          kernels::hll_slopes(words.waters, geometry, weights_of(step.hll, patch, k),
                              neighbours[0][n], neighbours[1][n], neighbours[2][n], k, values);
      kernels::store_hll_edges(words.waters, geometry, slopes, k, words.edges, values);
    }
  }

  /// 2: all slots of the patch.
  template <class Scratch>
  QM_HD void run(Phase<2>, const AdvanceHll2& kernel, const Thread& thread, Scratch scratch) {
    const HllStep& step = kernel.step;
    const HllPatchView& patch = hll_patch_of(step, thread);
    const Words<Scratch> words = parts_of(step, patch, scratch);
    hll_water_fluxes(step, patch, thread, words.edges, words.slots);
    for (int b = thread.number; b < patch.boundaries; b += thread.count) {
      flux_of_hll_boundary(step, patch, b, words.edges, words.slots);
    }
  }

  /// 3: the cells.
  template <class Scratch>
  QM_HD void run(Phase<3>, const AdvanceHll2& kernel, const Thread& thread, Scratch scratch) {
    const HllStep& step = kernel.step;
    const Words<Scratch> words = parts_of(step, hll_patch_of(step, thread), scratch);
    const kernels::HllBeforeColumnsWith<Scratch, Scratch> before = {
        words.waters.u, words.waters.v, words.edges.source_x, words.edges.source_y};
    constexpr bool has_bed = false;
    const PatchFindings found =
        advance_hll_cells<has_bed>(step, thread, before, words.slots, words.demand);
    FindingsInScratch::store_cells(step.looks_for, scratch, thread.number, found);
  }

  /// 4 and 5: what the threads of the block have found.
  template <class Scratch>
  QM_HD void run(Phase<4>, const AdvanceHll2& kernel, const Thread& thread, Scratch scratch) {
    unite_findings(kernel.step, thread, scratch);
  }
  template <class Scratch>
  QM_HD void run(Phase<5>, const AdvanceHll2& kernel, const Thread& thread, Scratch scratch) {
    tell_findings(kernel.step, thread, scratch);
  }

 private:
  /// The parts of the scratch of a block.
  template <class Scratch>
  struct Words {
    kernels::HllWaterColumnsWith<Scratch> waters;
    kernels::HllEdgeColumnsWith<Scratch> edges;
    kernels::SlotColumnsWith<Scratch> slots;
    Scratch demand;
  };

  template <class Scratch>
  QM_HD Words<Scratch> parts_of(const HllStep& step, const HllPatchView& patch, Scratch scratch) {
    const HllScratch& room = step.room;
    const int w = room.waters, e = 3 * room.states;
    const Scratch water = behind_findings(step, scratch);
    const Scratch edge = water + 5 * w, source = edge + 5 * e;
    const Scratch slots = source + 2 * room.states, demand = slots + 3 * room.slots;
    return {{water, water + w, water + 2 * w, water + 3 * w, water + 4 * w},
            {edge, edge + e, edge + 2 * e, edge + 3 * e, edge + 4 * e, source, source + room.states,
             patch.with_states},
            hll_slots<false>(step, slots),
            demand};
  }
};

}  // namespace engine::device
