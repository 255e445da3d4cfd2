// The kernel of the second-order HLL scheme, a block to a patch: what the host does patch by patch,
// with waters, edge states and fluxes in the scratch of the block.
#pragma once

#include "engine/device/HllPatchStep.hpp"

namespace engine::device {

struct AdvanceHll2 {
  static constexpr int phases = 6, threads = 256, blocks_at_once = 0;

  HllStep step;

  static int words_of(const HllScratch& room) {
    return 5 * room.waters + (5 * 3 + 2) * room.states + 3 * room.slots + room.demands +
           room.findings.words();
  }
  int scratch_words() const { return words_of(step.room); }
  QM_HD bool has_work(const AdvanceHll2& kernel, int patch) {
    return device::has_work(kernel.step, patch);
  }

  /// 0: the water of all cells that others see.
  template <class Scratch>
  QM_HD void run(Phase<0>, const AdvanceHll2& kernel, const Thread& thread, Scratch scratch) {
    const HllStep& step = kernel.step;
    const HllPatchView& patch = hll_patch_of(step, thread);
    const Words<Scratch> words = parts_of(step, patch, scratch);
    for (int k = thread.number; k < patch.cells; k += thread.count) {
      begin_hll_cell(step, patch, k, words.demand);
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
    FindingsInScratch::store_cells(step.room.findings, words.findings, thread.number, found);
  }

  /// 4 and 5: what the threads of the block have found.
  template <class Scratch>
  QM_HD void run(Phase<4>, const AdvanceHll2& kernel, const Thread& thread, Scratch scratch) {
    const HllStep& step = kernel.step;
    FindingsInScratch::unite_group(
        step.room.findings, parts_of(step, hll_patch_of(step, thread), scratch).findings, thread);
  }
  template <class Scratch>
  QM_HD void run(Phase<5>, const AdvanceHll2& kernel, const Thread& thread, Scratch scratch) {
    if (thread.number > 0) return;
    const HllStep& step = kernel.step;
    step.findings[thread.block] = FindingsInScratch::of_groups(
        step.room.findings, parts_of(step, hll_patch_of(step, thread), scratch).findings);
  }

 private:
  /// The parts of the scratch of a block.
  template <class Scratch>
  struct Words {
    kernels::HllWaterColumnsWith<Scratch> waters;
    kernels::HllEdgeColumnsWith<Scratch> edges;
    kernels::SlotColumnsWith<Scratch> slots;
    Scratch demand, findings;
  };

  template <class Scratch>
  QM_HD Words<Scratch> parts_of(const HllStep& step, const HllPatchView& patch, Scratch scratch) {
    const HllScratch& room = step.room;
    const int w = room.waters, e = 3 * room.states;
    const Scratch edge = scratch + 5 * w, source = edge + 5 * e;
    const Scratch slots = source + 2 * room.states, demand = slots + 3 * room.slots;
    return {{scratch, scratch + w, scratch + 2 * w, scratch + 3 * w, scratch + 4 * w},
            {edge, edge + e, edge + 2 * e, edge + 3 * e, edge + 4 * e, source, source + room.states,
             patch.with_states},
            hll_slots<false>(step, slots),
            demand,
            demand + room.demands};
  }
};

}  // namespace engine::device
