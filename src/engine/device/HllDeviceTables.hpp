// What the HLL schemes have beside the tables in the memory of a device. Machine is the device:
// Emulator, say.
#pragma once

#include <functional>
#include <type_traits>
#include <utility>
#include <vector>

#include "engine/Tables.hpp"
#include "engine/device/HllTableView.hpp"

namespace engine::device {

template <class Machine>
class HllDeviceTables {
 public:
  template <class Value>
  using Array = typename Machine::template Array<Value>;
  using Numbers = Array<double>;

  /// Copies what never changes, and states after a step that leaves all as it is.
  explicit HllDeviceTables(const Tables& tables) : numbers_(tables.hll->numbers()) {
    const HllTables& hll = *tables.hll;
    patch_views_.take(views_of(tables));
    around_.take(joined(hll, &HllPatch::around));
    geometry_.take(joined(hll, &HllPatch::geometry));
    weights_.take(joined(hll, &HllPatch::weights));
    for (std::size_t k = 0; k < 3; ++k) {
      neighbours_[k].take(joined(hll, [k](const HllPatch& p) { return p.neighbours[k]; }));
      slots_[k].take(joined(hll, [k](const HllPatch& p) { return p.slots[k]; }));
    }
    left_.take(joined(hll, [](const HllPatch& p) { return p.edges.left; }));
    right_.take(joined(hll, [](const HllPatch& p) { return p.edges.right; }));
    nx_.take(joined(hll, [](const HllPatch& p) { return p.edges.nx; }));
    ny_.take(joined(hll, [](const HllPatch& p) { return p.edges.ny; }));
    length_.take(joined(hll, [](const HllPatch& p) { return p.edges.length; }));
    boundary_states_.take(joined(hll, &HllPatch::boundary_states));
    reciprocal_length_.take(hll.reciprocal_length);
    h_.take(hll.h);
    qx_.take(hll.qx);
    qy_.take(hll.qy);
    hs_.take(hll.hs);
    bed_.take(hll.bed);
  }

  HllTableView view() {
    return {.patches = patch_views_.data(),
            .around = around_.data(),
            .geometry = geometry_.data(),
            .numbers = numbers_,
            .weights = weights_.data(),
            .neighbours = {neighbours_[0].data(), neighbours_[1].data(), neighbours_[2].data()},
            .edges = {left_.data(), right_.data(), nx_.data(), ny_.data(), length_.data()},
            .boundary_states = boundary_states_.data(),
            .after = {h_.data(), qx_.data(), qy_.data(), hs_.data(), bed_.data(),
                      reciprocal_length_.data()}};
  }
  /// Slots of the cells in the scratch of their patch, by their places.
  const kernels::Local* slots(std::size_t k) const { return slots_[k].data(); }

  /// Exchanges the columns of the state after a step with those before it.
  void swap_states(Numbers& h, Numbers& qx, Numbers& qy, Numbers& hs, Numbers& bed) {
    std::swap(h, h_);
    std::swap(qx, qx_);
    std::swap(qy, qy_);
    if (hs_.size() == 0) return;
    std::swap(hs, hs_);
    std::swap(bed, bed_);
  }

 private:
  /// A column of all patches, one behind the other.
  template <class Part>
  static auto joined(const HllTables& hll, const Part& part) {
    using Column = std::decay_t<decltype(std::invoke(part, hll.patches.front()))>;
    std::vector<typename Column::value_type> all;
    for (const HllPatch& patch : hll.patches) {
      const Column& of_patch = std::invoke(part, patch);
      all.insert(all.end(), of_patch.begin(), of_patch.end());
    }
    return all;
  }

  static std::vector<HllPatchView> views_of(const Tables& tables) {
    std::vector<HllPatchView> views;
    int first_around = 0, first_state = 0, first_edge = 0;
    for (std::size_t p = 0; p < tables.hll->patches.size(); ++p) {
      const HllPatch& hll = tables.hll->patches[p];
      const Patch& patch = tables.patches.patches[p];
      // A bed of sediments lets no water in.
      const bool has_soil =
          !tables.has_bed && !tables.soils_of_patch.empty() && !tables.soils_of_patch[p].empty();
      views.push_back({.first_cell = patch.cells.begin,
                       .cells = hll.cells,
                       .first_around = first_around,
                       .around = static_cast<int>(hll.around.size()),
                       .ring = hll.ring,
                       .with_states = hll.with_states,
                       .first_state = first_state,
                       .first_edge = first_edge,
                       .edges = hll.right_slots(),
                       .first_boundary = patch.boundaries.begin,
                       .boundaries = patch.boundaries.size(),
                       .has_soil = has_soil});
      first_around += views.back().around;
      first_state += hll.with_states;
      first_edge += hll.right_slots();
    }
    return views;
  }

  Array<HllPatchView> patch_views_;
  Array<int> around_;
  Numbers geometry_;
  int numbers_;
  Array<float> weights_;
  Array<kernels::Local> neighbours_[3], slots_[3], left_, right_, boundary_states_;
  Numbers nx_, ny_, length_;
  Numbers reciprocal_length_, h_, qx_, qy_, hs_, bed_;
};

}  // namespace engine::device
