// The kernel of the step of patches that the tables of a run ask for, and the scratch of its
// blocks.
#pragma once

#include <algorithm>

#include "engine/Tables.hpp"
#include "engine/device/AdvanceHll1.hpp"
#include "engine/device/AdvanceHll2.hpp"
#include "engine/device/AdvancePatches.hpp"

namespace engine::device {

/// What the largest patch takes of its scratch, without what the threads find in it.
inline PatchScratch room_of(const Tables& tables) {
  PatchScratch room = {};
  for (const Patch& patch : tables.patches.patches) {
    room.slots = std::max(room.slots, patch.empty_slot() + 1);
    room.cells = std::max(room.cells, patch.cells.size());
  }
  if (!tables.soils.empty()) room.demands = room.cells;
  return room;
}
inline HllScratch room_of(const HllTables& hll, bool has_demands) {
  HllScratch room = {};
  int cells = 0;
  for (const HllPatch& patch : hll.patches) {
    cells = std::max(cells, patch.cells);
    room.waters = std::max(room.waters, patch.ring + static_cast<int>(patch.around.size()));
    room.states = std::max(room.states, patch.with_states);
    room.slots = std::max(room.slots, patch.empty_slot() + 1);
  }
  if (has_demands) room.demands = cells;
  return room;
}

class PatchKernels {
 public:
  explicit PatchKernels(const Tables& tables)
      : has_bed_(tables.has_bed),
        is_hll_(tables.hll.has_value()),
        is_second_order_(is_hll_ && tables.hll->second_order),
        room_(room_of(tables)) {
    if (is_hll_) room_of_hll_ = room_of(*tables.hll, !tables.soils.empty());
  }

  /// What a block takes, in 8 bytes each, where its threads look for this.
  int scratch_words(bool for_notes, bool watches_hyperbolicity) const {
    PatchStep step = {};
    step.looks_for = {threads_of_patch, for_notes, watches_hyperbolicity};
    int words = 0;
    with_kernel(step, {}, [&](const auto& kernel) { words = kernel.scratch_words(); });
    return words;
  }

  /// `hll` is of one of these schemes.
  template <class Machine>
  void launch(const PatchStep& step, const HllTableView& hll, std::size_t patches,
              Machine& machine) const {
    with_kernel(step, hll, [&](const auto& kernel) { machine.launch(kernel, patches); });
  }

 private:
  template <class Visit>
  void with_kernel(const PatchStep& step, const HllTableView& hll, const Visit& visit) const {
    if (!is_hll_) {
      has_bed_ ? visit(AdvancePatches<true>{step, room_})
               : visit(AdvancePatches<false>{step, room_});
      return;
    }
    const HllStep of_hll = {step, hll, room_of_hll_};
    if (is_second_order_) {
      visit(AdvanceHll2{of_hll});
    } else {
      has_bed_ ? visit(AdvanceHll1<true>{of_hll}) : visit(AdvanceHll1<false>{of_hll});
    }
  }

  bool has_bed_, is_hll_, is_second_order_;
  PatchScratch room_;
  HllScratch room_of_hll_ = {};
};

}  // namespace engine::device
