#include "engine/Patches.hpp"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>

#include "engine/runs.hpp"
#include "engine/sorted_edges.hpp"

namespace engine {

namespace {

using cases::Number;
using kernels::Local;

/// Builds the parts of Patches one after the other.
class Builder {
 public:
  Builder(const cases::Mesh& mesh, const std::vector<int>& place, int owned, int cells_per_patch,
          ThreadTeam& team)
      : mesh_(mesh),
        place_(place),
        owned_(owned),
        cells_per_patch_(cells_per_patch),
        team_(team),
        slot_of_(2 * static_cast<std::size_t>(mesh.n_edges())) {}

  Patches build() {
    cut_cells();
    const SortedEdges edges = sort_edges(mesh_, place_, owned_, cells_per_patch_, team_);
    place_edges_within(edges.within);
    place_cut_edges(edges.cut);
    place_boundaries(edges.boundaries);
    place_outer_slots();
    place_slots();
    return std::move(result_);
  }

 private:
  int count() const { return static_cast<int>(result_.patches.size()); }
  int place_of(Number cell) const { return place_[at(cell)]; }
  /// -1: a ghost.
  int patch_of(Number cell) const {
    return place_of(cell) < owned_ ? place_of(cell) / cells_per_patch_ : -1;
  }
  int left_place(Number edge) const { return place_of(mesh_.left[at(edge)]); }
  int right_place(Number edge) const { return place_of(mesh_.right[at(edge)]); }
  int& slot_of(Number edge, int side) {
    return slot_of_[2 * static_cast<std::size_t>(edge) + static_cast<std::size_t>(side)];
  }

  void cut_cells() {
    for (int begin = 0; begin < owned_; begin += cells_per_patch_) {
      result_.patches.emplace_back().cells = {begin, std::min(owned_, begin + cells_per_patch_)};
    }
  }

  /// Every patch starts at a multiple of 8, so that vector loads are aligned.
  void place_edges_within(const EdgesOfPatches& within) {
    int begin = 0;
    for (int p = 0; p < count(); ++p) {
      Patch& patch = result_.patches[at(p)];
      patch.edges = {begin, begin + within.of(p).size()};
      begin += patch.right_slots();
    }
    result_.edges.resize(at(begin));
    result_.edge_number.resize(at(begin));
    team_.run([&](int member) {
      const Range share = share_of(member, team_.size(), result_.patches.size());
      for (int p = share.begin; p < share.end; ++p) place_edges_of(p, within);
    });
  }

  void place_edges_of(int p, const EdgesOfPatches& within) {
    const Patch& patch = result_.patches[at(p)];
    const int first = within.of(p).begin;
    for (int k = 0; k < patch.right_slots(); ++k) {
      const std::size_t i = at(patch.edges.begin + k);
      result_.edge_number[i] = -1;
      result_.edges.set(i, 0, 0, {0.0, 0.0, 0.0});
      if (k >= patch.edges.size()) continue;
      const Number edge = within.edges[at(first + k)];
      result_.edge_number[i] = edge;
      result_.edges.set(i, static_cast<Local>(left_place(edge) - patch.cells.begin),
                        static_cast<Local>(right_place(edge) - patch.cells.begin),
                        mesh_.edge_of(edge));
      slot_of(edge, 0) = k;
      slot_of(edge, 1) = patch.right_slots() + k;
    }
  }

  void place_cut_edges(const EdgesOfPatches& cut) {
    for (int p = 0; p < count(); ++p) result_.patches[at(p)].cut_edges = cut.of(p);
    result_.cut_edge_number = cut.edges;
    result_.cut_edges.resize(cut.edges.size());
    for (std::size_t i = 0; i < cut.edges.size(); ++i) {
      const Number edge = cut.edges[i];
      result_.cut_edges.set(i, left_place(edge), right_place(edge), mesh_.edge_of(edge));
    }
  }

  void place_boundaries(const EdgesOfPatches& boundaries) {
    for (int p = 0; p < count(); ++p) result_.patches[at(p)].boundaries = boundaries.of(p);
    result_.boundary_edge = boundaries.edges;
  }

  /// Lists what every patch takes from cut edges and boundaries, and the patches beside it.
  void place_outer_slots() {
    struct Taken {
      int outer_slot;
      Number edge;
      int side, neighbour;
    };
    std::vector<std::vector<Taken>> taken(result_.patches.size());
    const int cut_edges = static_cast<int>(result_.cut_edge_number.size());
    for (int c = 0; c < cut_edges; ++c) {
      const Number edge = result_.cut_edge_number[at(c)];
      const int left = patch_of(mesh_.left[at(edge)]), right = patch_of(mesh_.right[at(edge)]);
      if (left >= 0) taken[at(left)].push_back({c, edge, 0, right});
      if (right >= 0) taken[at(right)].push_back({cut_edges + c, edge, 1, left});
    }
    for (int b = 0; b < static_cast<int>(result_.boundary_edge.size()); ++b) {
      const Number edge = result_.boundary_edge[at(b)];
      const int left = patch_of(mesh_.left[at(edge)]);
      taken[at(left)].push_back({2 * cut_edges + b, edge, 0, left});
    }
    for (int p = 0; p < count(); ++p) {
      Patch& of = result_.patches[at(p)];
      of.outer_slots.begin = static_cast<int>(result_.outer_slots.size());
      of.neighbours.begin = static_cast<int>(result_.neighbours.size());
      std::vector<int> neighbours;
      int slot = of.outer_slots_begin();
      for (const Taken& t : taken[at(p)]) {
        result_.outer_slots.push_back(t.outer_slot);
        slot_of(t.edge, t.side) = slot++;
        if (t.neighbour >= 0 && t.neighbour != p) neighbours.push_back(t.neighbour);
      }
      std::sort(neighbours.begin(), neighbours.end());
      neighbours.erase(std::unique(neighbours.begin(), neighbours.end()), neighbours.end());
      result_.neighbours.insert(result_.neighbours.end(), neighbours.begin(), neighbours.end());
      of.outer_slots.end = static_cast<int>(result_.outer_slots.size());
      of.neighbours.end = static_cast<int>(result_.neighbours.size());
    }
  }

  /// The scheme takes the first three edges of a cell, in the order of the mesh.
  void place_slots() {
    for (AlignedVector<Local>& slots : result_.slots) slots.resize(at(owned_));
    std::vector<std::uint8_t> taken(at(owned_));
    team_.run([&](int member) {
      const Range patches = share_of(member, team_.size(), result_.patches.size());
      if (patches.size() > 0) place_slots_of(patches, taken);
    });
  }

  void place_slots_of(const Range& patches, std::vector<std::uint8_t>& taken) {
    const Range cells = {result_.patches[at(patches.begin)].cells.begin,
                         result_.patches[at(patches.end - 1)].cells.end};
    for (int i = cells.begin; i < cells.end; ++i) {
      const int empty = result_.patches[at(i / cells_per_patch_)].empty_slot();
      for (AlignedVector<Local>& slots : result_.slots) slots[at(i)] = static_cast<Local>(empty);
      taken[at(i)] = 0;
    }
    const auto take = [&](int i, int slot) {
      if (i < cells.begin || i >= cells.end || taken[at(i)] == 3) return;
      const std::size_t k = taken[at(i)]++;
      if (slot >= 0) result_.slots[k][at(i)] = static_cast<Local>(slot);
    };
    auto boundary = mesh_.boundaries.begin();
    for (Number edge = 0; edge < mesh_.n_edges(); ++edge) {
      const Number right = mesh_.right[at(edge)];
      const bool is_boundary = boundary != mesh_.boundaries.end() && boundary->edge == edge;
      if (is_boundary) ++boundary;
      if (is_boundary && right == mesh_.left[at(edge)]) take(left_place(edge), -1);
      take(left_place(edge), slot_of(edge, 0));
      if (right < 0 || (is_boundary && right == mesh_.left[at(edge)])) continue;
      // A boundary condition on an edge with a right cell leaves that cell's slot empty.
      take(right_place(edge), is_boundary ? -1 : slot_of(edge, 1));
    }
  }

  const cases::Mesh& mesh_;
  const std::vector<int>& place_;
  int owned_, cells_per_patch_;
  ThreadTeam& team_;
  Patches result_;
  std::vector<int> slot_of_;  ///< in the scratch of the patch, by 2 edge + side
};

bool slots_fit(const Patches& patches) {
  return std::all_of(patches.patches.begin(), patches.patches.end(), [](const Patch& patch) {
    return patch.empty_slot() <= std::numeric_limits<Local>::max();
  });
}

}  // namespace

int cells_per_patch_for(std::int64_t cells, int threads) {
  constexpr std::int64_t one = 1, fewest = 1024, grain = cells_of_shortest;
  const std::int64_t most = std::clamp<std::int64_t>(cells / 128, fewest, most_cells_per_patch);
  const std::int64_t rounds = std::max(one, (cells + most * threads - 1) / (most * threads));
  const std::int64_t patches = rounds * threads;
  const std::int64_t grains = std::max(one, (cells + patches * grain - 1) / (patches * grain));
  return static_cast<int>(grains * grain);
}

Patches make_patches(const cases::Mesh& mesh, const std::vector<int>& place, int owned,
                     int cells_per_patch, ThreadTeam& team) {
  Patches patches = Builder(mesh, place, owned, cells_per_patch, team).build();
  if (slots_fit(patches)) return patches;
  // Cells of very many sides: smaller patches until their slots can be numbered.
  if (cells_per_patch > cells_of_shortest) {
    const int half = cells_per_patch / (2 * cells_of_shortest) * cells_of_shortest;
    return make_patches(mesh, place, owned, half, team);
  }
  throw std::length_error("Error. The edges of " + std::to_string(cells_per_patch) +
                          " cells are more than the tables can number.");
}

}  // namespace engine
