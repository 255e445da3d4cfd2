// The kernel that finds the patches of a step, see engine::Activity. A thread to a patch.
#pragma once

#include "engine/device/PatchFindings.hpp"
#include "engine/device/StepClock.hpp"

namespace engine::device {

/// Columns over the patches.
struct ActivityView {
  const char *always_active, *has_rain;
  const char* is_border;  ///< has cells that are ghosts of others
  const int* neighbours;
  char* takes_part;               ///< in the last step, then in this one
  char* goes_to_rest;             ///< took part in the last step, and does not in this one
  const PatchFindings* findings;  ///< of the last step that the patch took part in
};

struct FindActive {
  static constexpr int phases = 1, threads = 64, blocks_at_once = 0;

  TableView tables;
  ActivityView activity;
  int patches, owned;  ///< of the cells, from `owned` on there are ghosts
  double zero_depth;
  const StepClock* clock;

  static int scratch_words() { return 0; }
  static std::size_t blocks_for(std::size_t patches) { return (patches + threads - 1) / threads; }
  QM_HD bool has_work(const FindActive& kernel, int) { return !kernel.clock->halted; }

  template <class Scratch>
  QM_HD void run(Phase<0>, const FindActive& kernel, const Thread& thread, Scratch) {
    const int p = thread.block * thread.count + thread.number;
    if (p >= kernel.patches) return;
    const bool took_part = kernel.activity.takes_part[p] != 0;
    const bool takes_part = is_awake(kernel, p) || takes_inflow(kernel, p);
    kernel.activity.takes_part[p] = takes_part ? 1 : 0;
    kernel.activity.goes_to_rest[p] = took_part && !takes_part ? 1 : 0;
  }

 private:
  /// Whether its own cells may change.
  QM_HD bool is_awake(const FindActive& kernel, int p) {
    const ActivityView& activity = kernel.activity;
    return activity.findings[p].changing_cells > 0 || activity.always_active[p] != 0 ||
           (kernel.clock->it_rains && activity.has_rain[p] != 0);
  }

  QM_HD bool takes_inflow(const FindActive& kernel, int p) {
    const PatchView& patch = kernel.tables.patches[p];
    // Which patches of other ranks take part is not known here: any water at their border counts.
    if (kernel.activity.is_border[p] != 0 && touches_water(kernel, patch, kernel.owned))
      return true;
    bool touches = false;
    for (int k = 0; k < patch.neighbours; ++k) {
      touches = touches || is_awake(kernel, kernel.activity.neighbours[patch.first_neighbour + k]);
    }
    return touches && touches_water(kernel, patch, 0);
  }

  /// Whether a cell across a cut edge of a patch is wet; of those from a place on.
  QM_HD bool touches_water(const FindActive& kernel, const PatchView& patch, int first_place) {
    const TableView& tables = kernel.tables;
    const int edges = tables.cut_edge_count;
    for (int k = 0; k < patch.outer_slots; ++k) {
      const int slot = tables.outer_slots[patch.first_outer_slot + k];
      if (slot >= 2 * edges) continue;  // a boundary
      const int cell =
          slot < edges ? tables.cut_edges.right[slot] : tables.cut_edges.left[slot - edges];
      const bool counts = cell >= first_place;
      if (counts && physics::is_wet(tables.cells.h[cell], kernel.zero_depth)) return true;
    }
    return false;
  }
};

}  // namespace engine::device
