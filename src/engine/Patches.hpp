// The cells of a mesh cut into patches: runs of cells that stay in cache while their fluxes and
// their balance are computed, and that a step skips where nothing can change.
#pragma once

#include <cstdint>
#include <vector>

#include "case/Mesh.hpp"
#include "engine/Range.hpp"
#include "engine/ThreadTeam.hpp"
#include "engine/aligned_vector.hpp"
#include "kernels/columns.hpp"

namespace engine {

using Column = AlignedVector<double>;

struct Patch {
  Range cells;
  Range edges;      ///< within the patch
  Range cut_edges;  ///< to patches that come later, and to ghosts
  Range boundaries;
  Range outer_slots;       ///< entries of Patches::outer_slots
  Range neighbours;        ///< entries of Patches::neighbours
  bool is_border = false;  ///< has cells that are ghosts of others

  /// Slots in the scratch of the patch: left sides of its edges, their right sides, the outer ones,
  /// and one that never carries anything.
  int right_slots() const { return (edges.size() + 7) / 8 * 8; }
  int outer_slots_begin() const { return 2 * right_slots(); }
  int empty_slot() const { return outer_slots_begin() + outer_slots.size(); }
};

/// Edges with a cell on either side.
template <class Index>
struct EdgeTable {
  AlignedVector<Index> left, right;
  Column nx, ny, length;

  void resize(std::size_t count) {
    left.resize(count);
    right.resize(count);
    for (Column* column : {&nx, &ny, &length}) column->resize(count);
  }
  void set(std::size_t i, Index left_cell, Index right_cell, const physics::Edge& edge) {
    left[i] = left_cell;
    right[i] = right_cell;
    nx[i] = edge.nx;
    ny[i] = edge.ny;
    length[i] = edge.length;
  }
  kernels::EdgeColumns<Index> columns() const {
    return {left.data(), right.data(), nx.data(), ny.data(), length.data()};
  }
  std::size_t bytes() const { return bytes_of(left, right, nx, ny, length); }
};

struct Patches {
  std::vector<Patch> patches;
  std::vector<int> neighbours;  ///< patches across a cut edge
  /// Where the slots that a patch takes from outside stand among those of the cut edges and
  /// boundaries: left sides of the cut edges, their right sides, boundaries.
  std::vector<int> outer_slots;
  EdgeTable<kernels::Local> edges;  ///< within patches; the cells count from the first of the patch
  EdgeTable<int> cut_edges;         ///< the cells are places in the tables
  /// Numbers of these edges in the mesh of the whole case; -1: none, behind the last of a patch.
  std::vector<cases::Number> edge_number, cut_edge_number;
  std::vector<cases::Number> boundary_edge;  ///< those with a boundary condition, here
  AlignedVector<kernels::Local> slots[3];    ///< of the cells, in the scratch of their patch
};

/// The most cells of a patch that are ever useful: its edges, states and slots stay in a core's
/// second cache, and kernels::Local numbers them.
inline constexpr int most_cells_per_patch = 4096;

/// How many cells of a number of them a patch takes: as many patches for every thread; a multiple
/// of a cache line of doubles, so that no two threads write to one.
int cells_per_patch_for(std::int64_t cells, int threads);

/// Cuts cells of a mesh into patches of a number of cells, which is a multiple of
/// cells_of_shortest; of fewer where their edges cannot be numbered. `place` is where each cell of
/// the mesh stands: below `owned` those that the patches hold, then their ghosts. Throws
/// std::length_error where a few cells have more edges than kernels::Local can number.
Patches make_patches(const cases::Mesh& mesh, const std::vector<int>& place, int owned,
                     int cells_per_patch, ThreadTeam& team);

}  // namespace engine
