// The cells of a mesh cut into patches: runs of cells that stay in cache while their fluxes and
// their balance are computed, and that a step skips where nothing can change.
#pragma once

#include <vector>

#include "engine/ModelInput.hpp"
#include "kernels/columns.hpp"

namespace engine {

struct Range {
  int begin = 0, end = 0;
  int size() const { return end - begin; }
};

/// Share of a list that a member of a team of threads takes.
inline Range share_of(int member, int members, std::size_t count) {
  const auto cut = [&](int m) {
    return static_cast<int>(count * static_cast<std::size_t>(m) /
                            static_cast<std::size_t>(members));
  };
  return {cut(member), cut(member + 1)};
}

struct Patch {
  Range cells;
  Range edges;      ///< within the patch
  Range cut_edges;  ///< to patches that come later
  Range boundaries;
  Range outer_slots;  ///< entries of Patches::outer_slots
  Range neighbours;   ///< entries of Patches::neighbours

  /// Slots in the scratch of the patch: left sides of its edges, their right sides, the outer ones,
  /// and one that never carries anything.
  int right_slots() const { return (edges.size() + 7) / 8 * 8; }
  int outer_slots_begin() const { return 2 * right_slots(); }
  int empty_slot() const { return outer_slots_begin() + outer_slots.size(); }
};

/// Edges between cells of one patch; the numbers of the cells count from the first of the patch.
struct PatchEdges {
  AlignedVector<kernels::Local> left, right;
  Column nx, ny, length;
};

struct Patches {
  std::vector<Patch> patches;
  std::vector<int> neighbours;  ///< patches across a cut edge
  /// Where the slots that a patch takes from outside stand among those of the cut edges and
  /// boundaries: left sides of the cut edges, their right sides, boundaries.
  std::vector<int> outer_slots;
  PatchEdges edges;
  EdgeTable cut_edges;
  std::vector<int> edge_number, cut_edge_number;  ///< of the edges in the input
  std::vector<int> boundary_number;               ///< of the boundaries
  AlignedVector<kernels::Local> slots[3];         ///< of the cells, in the scratch of their patch
};

/// Cuts the cells, whose order is final, into patches of a number of cells, which is a multiple of
/// 64. `edges` and `slots` name cells in that order, and edges in theirs. Throws std::length_error
/// where a few cells have more edges than Local can number.
Patches make_patches(const EdgeTable& edges, const AlignedVector<int> (&slots)[3],
                     int cells_per_patch);

}  // namespace engine
