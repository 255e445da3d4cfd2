// The kernel that takes the states of patches as those after a step that leaves them alone. A block
// to a patch.
#pragma once

#include "engine/device/HllTableView.hpp"
#include "engine/device/StepClock.hpp"
#include "engine/device/launch.hpp"

namespace engine::device {

struct KeepStates {
  static constexpr int phases = 1, threads = 256, blocks_at_once = 0;

  TableView tables;
  kernels::HllAfterColumns after;
  const char* goes_to_rest;  ///< of the patches
  const StepClock* clock;

  static int scratch_words() { return 0; }
  QM_HD bool has_work(const KeepStates& kernel, int patch) {
    return !kernel.clock->halted && kernel.goes_to_rest[patch] != 0;
  }

  template <class Scratch>
  QM_HD void run(Phase<0>, const KeepStates& kernel, const Thread& thread, Scratch) {
    const PatchView& patch = kernel.tables.patches[thread.block];
    const kernels::CellColumns& cells = kernel.tables.cells;
    const kernels::HllAfterColumns& after = kernel.after;
    for (int k = thread.number; k < patch.cells; k += thread.count) {
      const int i = patch.first_cell + k;
      after.h[i] = cells.h[i];
      after.qx[i] = cells.qx[i];
      after.qy[i] = cells.qy[i];
      if (after.hs == nullptr) continue;
      after.hs[i] = cells.hs[i];
      after.bed[i] = cells.bed[i];
    }
  }
};

}  // namespace engine::device
