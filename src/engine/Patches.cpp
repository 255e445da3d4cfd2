#include "engine/Patches.hpp"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>

#include "engine/numbering.hpp"

namespace engine {

namespace {

using kernels::Local;

enum class Place : std::uint64_t { within, cut, boundary };

/// Builds the parts of Patches one after the other.
class Builder {
 public:
  Builder(const EdgeTable& edges, int cells, int cells_per_patch)
      : edges_(edges), cells_per_patch_(cells_per_patch), slot_of_(2 * edges.left.size(), 0) {
    const int count = (cells + cells_per_patch - 1) / cells_per_patch;
    result_.patches.resize(at(count));
    for (int p = 0; p < count; ++p) {
      result_.patches[at(p)].cells = {p * cells_per_patch,
                                      std::min(cells, (p + 1) * cells_per_patch)};
    }
  }

  Patches build(const AlignedVector<int> (&slots)[3]) {
    order_edges();
    place_edges_within();
    place_cut_edges();
    place_outer_slots();
    place_slots(slots);
    return std::move(result_);
  }

 private:
  Patch& patch_of(int cell) { return result_.patches[at(cell / cells_per_patch_)]; }

  Place place_of(int edge) const {
    const int left = edges_.left[at(edge)], right = edges_.right[at(edge)];
    if (right < 0) return Place::boundary;
    return left / cells_per_patch_ == right / cells_per_patch_ ? Place::within : Place::cut;
  }

  /// Edges within patches, cut edges, boundaries; each along the lower of their cells.
  void order_edges() {
    std::vector<std::uint64_t> keys;
    keys.reserve(edges_.left.size());
    for (std::size_t e = 0; e < edges_.left.size(); ++e) {
      const int left = edges_.left[e];
      const int right = edges_.right[e] < 0 ? left : edges_.right[e];
      const auto place = static_cast<std::uint64_t>(place_of(static_cast<int>(e)));
      keys.push_back(place << 62 | static_cast<std::uint64_t>(std::min(left, right)) << 31 |
                     static_cast<std::uint64_t>(std::max(left, right)));
    }
    order_ = order_by_key(keys);
    first_cut_ = count_before(keys, Place::cut);
    first_boundary_ = count_before(keys, Place::boundary);
    result_.cut_edge_number.assign(order_.begin() + first_cut_, order_.begin() + first_boundary_);
    result_.boundary_number.assign(order_.begin() + first_boundary_, order_.end());
  }

  static int count_before(const std::vector<std::uint64_t>& keys, Place place) {
    return static_cast<int>(std::count_if(keys.begin(), keys.end(), [&](std::uint64_t key) {
      return key >> 62 < static_cast<std::uint64_t>(place);
    }));
  }

  int lower_cell(int k) const {
    const std::size_t e = at(order_[at(k)]);
    return edges_.right[e] < 0 ? edges_.left[e] : std::min(edges_.left[e], edges_.right[e]);
  }

  /// The run of ordered edges from k on whose lower cell lies in a patch.
  int end_of_run(int k, int end, const Patch& patch) const {
    while (k < end && lower_cell(k) < patch.cells.end) ++k;
    return k;
  }

  /// Every patch starts at a multiple of 8, so that vector loads are aligned.
  void place_edges_within() {
    PatchEdges& within = result_.edges;
    int k = 0;
    for (Patch& patch : result_.patches) {
      const int end = end_of_run(k, first_cut_, patch);
      const int begin = static_cast<int>(within.nx.size());
      patch.edges = {begin, begin + end - k};
      for (; k < end; ++k) {
        const int e = order_[at(k)];
        const int left = edges_.left[at(e)], right = edges_.right[at(e)];
        const int slot = static_cast<int>(within.nx.size()) - begin;
        within.left.push_back(static_cast<Local>(left - patch.cells.begin));
        within.right.push_back(static_cast<Local>(right - patch.cells.begin));
        within.nx.push_back(edges_.nx[at(e)]);
        within.ny.push_back(edges_.ny[at(e)]);
        within.length.push_back(edges_.length[at(e)]);
        result_.edge_number.push_back(e);
        slot_of_[at(2 * e)] = slot;
        slot_of_[at(2 * e + 1)] = patch.right_slots() + slot;
      }
      const std::size_t padded = at(begin + patch.right_slots());
      within.left.resize(padded);
      within.right.resize(padded);
      result_.edge_number.resize(padded, -1);
      for (Column* column : {&within.nx, &within.ny, &within.length}) column->resize(padded);
    }
  }

  void place_cut_edges() {
    EdgeTable& cut = result_.cut_edges;
    int k = first_cut_;
    for (Patch& patch : result_.patches) {
      const int end = end_of_run(k, first_boundary_, patch);
      patch.cut_edges = {k - first_cut_, end - first_cut_};
      for (; k < end; ++k) {
        const std::size_t e = at(order_[at(k)]);
        cut.left.push_back(edges_.left[e]);
        cut.right.push_back(edges_.right[e]);
        cut.nx.push_back(edges_.nx[e]);
        cut.ny.push_back(edges_.ny[e]);
        cut.length.push_back(edges_.length[e]);
      }
    }
    const int boundaries = static_cast<int>(order_.size());
    for (Patch& patch : result_.patches) {
      const int end = end_of_run(k, boundaries, patch);
      patch.boundaries = {k - first_boundary_, end - first_boundary_};
      k = end;
    }
  }

  /// Lists what every patch takes from cut edges and boundaries, and its neighbours.
  void place_outer_slots() {
    struct Taken {
      int outer_slot, edge_side, neighbour;
    };
    std::vector<std::vector<Taken>> taken(result_.patches.size());
    const auto patch = [&](int cell) { return cell / cells_per_patch_; };
    const int cut_edges = first_boundary_ - first_cut_;
    for (int c = 0; c < cut_edges; ++c) {
      const int e = order_[at(first_cut_ + c)];
      const int left = patch(edges_.left[at(e)]), right = patch(edges_.right[at(e)]);
      taken[at(left)].push_back({c, 2 * e, right});
      taken[at(right)].push_back({cut_edges + c, 2 * e + 1, left});
    }
    for (int b = 0; b < static_cast<int>(result_.boundary_number.size()); ++b) {
      const int e = result_.boundary_number[at(b)];
      const int left = patch(edges_.left[at(e)]);
      taken[at(left)].push_back({2 * cut_edges + b, 2 * e, left});
    }
    for (std::size_t p = 0; p < taken.size(); ++p) {
      Patch& of = result_.patches[p];
      of.outer_slots.begin = static_cast<int>(result_.outer_slots.size());
      of.neighbours.begin = static_cast<int>(result_.neighbours.size());
      std::vector<int> neighbours;
      int slot = of.outer_slots_begin();
      for (const Taken& t : taken[p]) {
        result_.outer_slots.push_back(t.outer_slot);
        slot_of_[at(t.edge_side)] = slot++;
        if (t.neighbour != static_cast<int>(p)) neighbours.push_back(t.neighbour);
      }
      std::sort(neighbours.begin(), neighbours.end());
      neighbours.erase(std::unique(neighbours.begin(), neighbours.end()), neighbours.end());
      result_.neighbours.insert(result_.neighbours.end(), neighbours.begin(), neighbours.end());
      of.outer_slots.end = static_cast<int>(result_.outer_slots.size());
      of.neighbours.end = static_cast<int>(result_.neighbours.size());
    }
  }

  void place_slots(const AlignedVector<int> (&slots)[3]) {
    for (std::size_t k = 0; k < 3; ++k) {
      AlignedVector<Local>& placed = result_.slots[k];
      placed.reserve(slots[k].size());
      for (std::size_t i = 0; i < slots[k].size(); ++i) {
        const int slot = slots[k][i];
        placed.push_back(static_cast<Local>(
            slot >= 0 ? slot_of_[at(slot)] : patch_of(static_cast<int>(i)).empty_slot()));
      }
    }
  }

  const EdgeTable& edges_;
  int cells_per_patch_;
  Patches result_;
  std::vector<int> order_;
  std::vector<int> slot_of_;  ///< in the scratch of the patch, by 2 edge + side
  int first_cut_ = 0, first_boundary_ = 0;
};

bool slots_fit(const Patches& patches) {
  return std::all_of(patches.patches.begin(), patches.patches.end(), [](const Patch& patch) {
    return patch.empty_slot() <= std::numeric_limits<Local>::max();
  });
}

}  // namespace

Patches make_patches(const EdgeTable& edges, const AlignedVector<int> (&slots)[3],
                     int cells_per_patch) {
  const int cells = static_cast<int>(slots[0].size());
  Patches patches = Builder(edges, cells, cells_per_patch).build(slots);
  if (slots_fit(patches)) return patches;
  // Cells of very many sides: smaller patches until their slots can be numbered.
  if (cells_per_patch > 64) return make_patches(edges, slots, cells_per_patch / 128 * 64);
  throw std::length_error("Error. The edges of " + std::to_string(cells_per_patch) +
                          " cells are more than the tables can number.");
}

}  // namespace engine
