// The kernel that notes the present states of patches in what is kept of their largest flow. A
// block to a patch.
#pragma once

#include "engine/device/StepClock.hpp"
#include "engine/device/launch.hpp"

namespace engine::device {

struct NoteMaxima {
  static constexpr int phases = 1, threads = 256, blocks_at_once = 0;

  TableView tables;
  const char* wanted;  ///< of the patches
  const StepClock* clock;
  kernels::MaximaValues values;  ///< see at_time

  static int scratch_words() { return 0; }
  QM_HD bool has_work(const NoteMaxima& kernel, int patch) {
    return !kernel.clock->halted && kernel.wanted[patch] != 0;
  }

  template <class Scratch>
  QM_HD void run(Phase<0>, const NoteMaxima& kernel, const Thread& thread, Scratch) {
    const PatchView& patch = kernel.tables.patches[thread.block];
    for (int k = thread.number; k < patch.cells; k += thread.count) {
      kernels::note_state(kernel.tables.cells, kernel.tables.maxima, patch.first_cell + k,
                          at_time(kernel.values, kernel.clock->run.t));
    }
  }
};

}  // namespace engine::device
