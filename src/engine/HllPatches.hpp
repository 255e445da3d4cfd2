// What the schemes of the HLL family compute with on each patch: its cells and those around it, by
// numbers of their own.
#pragma once

#include <vector>

#include "case/Case.hpp"
#include "case/triangle_sides.hpp"
#include "engine/Patches.hpp"
#include "engine/ThreadTeam.hpp"
#include "kernels/hll.hpp"

namespace engine {

struct Tables;

/// Of the geometry of a cell, see kernels::HllCellColumns.
constexpr int numbers_of_cells(bool second_order) {
  using kernels::HllCellColumns;
  return second_order ? HllCellColumns::numbers : HllCellColumns::numbers_in_first_order;
}

/// The cells of a patch come first, then the ring of cells across its border, whose states it
/// computes anew, then in second order the ring around these, of which it takes the water. The
/// first two begin at multiples of a block, whose last entries repeat a cell.
struct HllPatch {
  int cells;                     ///< its own
  int ring;                      ///< where the first ring begins
  int with_states;               ///< cells of which it computes states, with the gaps
  std::vector<int> around;       ///< places of the cells from `ring` on
  Column geometry;               ///< see kernels::HllCellColumns
  AlignedVector<float> weights;  ///< the same; empty in first order
  AlignedVector<kernels::Local> neighbours[3];  ///< of the cells that have states; the same
  /// Edges with two cells, of which at least one is its own; left and right are states: edge states
  /// in second order, cells in first order.
  EdgeTable<kernels::Local> edges;
  AlignedVector<kernels::Local> slots[3];       ///< of its own cells
  std::vector<kernels::Local> boundary_states;  ///< of its boundaries, in their order

  kernels::HllCellColumns columns() const {
    return {geometry.data(),
            weights.data(),
            {neighbours[0].data(), neighbours[1].data(), neighbours[2].data()}};
  }
  int right_slots() const { return static_cast<int>(edges.left.size()); }
  int first_boundary_slot() const { return 2 * right_slots(); }
  int empty_slot() const {
    return first_boundary_slot() + static_cast<int>(boundary_states.size());
  }
};

/// Of the patches of the tables, whose cells are given by their places. Every thread also fills the
/// reciprocal lengths of its cells (see cases::HllCellOfCase), a column of the right size. Throws
/// std::length_error where a patch has more edges than kernels::Local can number.
std::vector<HllPatch> make_hll_patches(const cases::Case& contents,
                                       const std::vector<cases::TriangleSides>& sides,
                                       const Tables& tables, const std::vector<int>& order,
                                       ThreadTeam& team, Column& reciprocal_length);

}  // namespace engine
