#include "engine/HllPatches.hpp"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "case/hll_cell.hpp"
#include "engine/Tables.hpp"

namespace engine {

namespace {

using cases::Number;
using cases::TriangleSides;
using kernels::Local;

int blocks_of(int count) { return (count + kernels::hll_block - 1) / kernels::hll_block; }
int whole_blocks(int count) { return blocks_of(count) * kernels::hll_block; }

Local as_local(int number) { return static_cast<Local>(number); }

/// What all patches are built of.
struct Source {
  const cases::Case& contents;
  const std::vector<TriangleSides>& sides;
  const Tables& tables;
  bool second_order;
  const std::vector<int>& order;  ///< cells of the case by their places
  Column& reciprocal_length;      ///< of the cells, 1/m

  const TriangleSides& sides_at(int place) const { return sides[at(order[at(place)])]; }
  int place_of(Number cell) const { return tables.place[at(cell)]; }
};

/// Builds one patch.
class Builder {
 public:
  Builder(const Source& source, int number)
      : source_(source), own_(source.tables.patches.patches[at(number)].cells) {
    boundaries_ = source.tables.patches.patches[at(number)].boundaries;
  }

  HllPatch build() {
    find_cells();
    describe_cells();
    place_edges();
    place_boundaries();
    return std::move(patch_);
  }

 private:
  void find_cells() {
    std::vector<int> own(at(own_.size()));
    for (int i = 0; i < own_.size(); ++i) own[at(i)] = own_.begin + i;
    ring_ = cells_around(own, {});
    if (source_.second_order) second_ring_ = cells_around(ring_, ring_);
    patch_.cells = own_.size();
    patch_.ring = whole_blocks(patch_.cells);
    patch_.with_states = patch_.ring + whole_blocks(static_cast<int>(ring_.size()));
    patch_.around = ring_;
    patch_.around.resize(at(patch_.with_states - patch_.ring), ring_.empty() ? 0 : ring_.back());
    patch_.around.insert(patch_.around.end(), second_ring_.begin(), second_ring_.end());
  }

  /// Neighbours of cells that are neither own nor among those given, in ascending order.
  std::vector<int> cells_around(const std::vector<int>& cells, const std::vector<int>& but) const {
    std::vector<int> found;
    for (const int place : cells) {
      for (const cases::TriangleSide& side : source_.sides_at(place)) {
        if (side.neighbour < 0) continue;
        const int other = source_.place_of(side.neighbour);
        if (!is_own(other) && !std::binary_search(but.begin(), but.end(), other)) {
          found.push_back(other);
        }
      }
    }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
  }

  bool is_own(int place) const { return place >= own_.begin && place < own_.end; }

  /// Number within the patch.
  int local(int place) const {
    if (is_own(place)) return place - own_.begin;
    const auto in = [&](const std::vector<int>& ring) {
      const auto found = std::lower_bound(ring.begin(), ring.end(), place);
      return found != ring.end() && *found == place ? static_cast<int>(found - ring.begin()) : -1;
    };
    const int first = in(ring_);
    return first >= 0 ? patch_.ring + first : patch_.with_states + in(second_ring_);
  }

  /// The place of a cell that has edge states; of a gap, that of the last cell before it.
  int place_at(int k) const {
    if (k >= patch_.ring) return patch_.around[at(k - patch_.ring)];
    return own_.begin + std::min(k, patch_.cells - 1);
  }

  void describe_cells() {
    using kernels::HllCellColumns;
    const int numbers = numbers_of_cells(source_.second_order);
    patch_.geometry.resize(at(patch_.with_states * numbers));
    if (source_.second_order) {
      patch_.weights.resize(at(patch_.with_states * HllCellColumns::weights_per_cell));
      for (AlignedVector<Local>& column : patch_.neighbours) column.resize(at(patch_.with_states));
    }
    for (int k = 0; k < patch_.with_states; ++k) {
      const int place = place_at(k);
      const cases::HllCellOfCase of =
          cases::hll_cell_of(source_.contents, source_.sides, source_.order[at(place)]);
      kernels::set_hll_cell(patch_.geometry.data(), numbers, k, of.cell);
      if (k < patch_.cells) source_.reciprocal_length[at(place)] = of.reciprocal_length;
      if (source_.second_order) describe_surroundings(k, place, of.weights);
    }
  }

  /// What the slopes of entry k need.
  void describe_surroundings(int k, int place, const physics::SlopeWeights& weights) {
    kernels::set_hll_weights(patch_.weights.data(), k, weights);
    for (std::size_t side = 0; side < 3; ++side) {
      const Number neighbour = source_.sides_at(place)[side].neighbour;
      // Across a boundary a cell sees itself.
      const int other = neighbour < 0 ? place : source_.place_of(neighbour);
      patch_.neighbours[side][at(k)] = as_local(local(other));
    }
  }

  /// Where an edge meets a cell.
  struct Side {
    int place, number;
  };

  int state_at(const Side& side) const {
    return (source_.second_order ? side.number * patch_.with_states : 0) + local(side.place);
  }

  /// The edges with two cells come along the first of their own cells.
  void place_edges() {
    struct Taken {
      physics::Edge edge;
      Side left, right;
    };
    std::vector<Taken> taken;
    for (int place = own_.begin; place < own_.end; ++place) {
      for (int k = 0; k < 3; ++k) {
        const cases::TriangleSide& side = source_.sides_at(place)[at(k)];
        if (side.neighbour < 0) continue;
        const int other = source_.place_of(side.neighbour);
        if (is_own(other) && other < place) continue;
        const Side here = {place, k}, there = {other, side.neighbour_side};
        const Number left = source_.contents.mesh.left[at(side.edge)];
        const bool is_left = source_.place_of(left) == place;
        taken.push_back(
            {cases::edge_at_side(source_.contents.mesh, left, is_left ? k : side.neighbour_side),
             is_left ? here : there, is_left ? there : here});
      }
    }
    const int count = static_cast<int>(taken.size());
    patch_.edges.resize(at(whole_blocks(count)));
    for (AlignedVector<Local>& column : patch_.slots) {
      column.assign(at(patch_.cells), as_local(patch_.first_boundary_slot() + boundaries_.size()));
    }
    for (int e = 0; e < patch_.right_slots(); ++e) {
      if (e >= count) {
        patch_.edges.set(at(e), 0, 0, {0.0, 0.0, 0.0});
        continue;
      }
      const Taken& edge = taken[at(e)];
      patch_.edges.set(at(e), as_local(state_at(edge.left)), as_local(state_at(edge.right)),
                       edge.edge);
      set_slot(edge.left, e);
      set_slot(edge.right, patch_.right_slots() + e);
    }
  }

  /// Where an own cell finds what passes at a side.
  void set_slot(const Side& side, int slot) {
    if (!is_own(side.place)) return;
    patch_.slots[side.number][at(side.place - own_.begin)] = as_local(slot);
  }

  void place_boundaries() {
    for (int b = boundaries_.begin; b < boundaries_.end; ++b) {
      const Number edge = source_.tables.patches.boundary_edge[at(b)];
      const int place = source_.tables.boundaries[at(b)].cell;
      const Side side = {place, cases::side_at_edge(source_.sides_at(place), edge)};
      set_slot(side, patch_.first_boundary_slot() + (b - boundaries_.begin));
      patch_.boundary_states.push_back(as_local(state_at(side)));
    }
  }

  const Source& source_;
  Range own_, boundaries_;
  std::vector<int> ring_, second_ring_;  ///< places
  HllPatch patch_;
};

}  // namespace

std::vector<HllPatch> make_hll_patches(const cases::Case& contents,
                                       const std::vector<TriangleSides>& sides,
                                       const Tables& tables, const std::vector<int>& order,
                                       ThreadTeam& team, Column& reciprocal_length) {
  if (tables.cells_per_patch() > most_cells_per_patch) {
    throw std::length_error("Error. A patch of the flux scheme has at most " +
                            std::to_string(most_cells_per_patch) + " cells.");
  }
  const Source source = {
      contents, sides, tables, contents.scheme == cases::Scheme::hll2, order, reciprocal_length};
  std::vector<HllPatch> patches(tables.patches.patches.size());
  team.run([&](int member) {
    const Range share = share_of(member, team.size(), patches.size());
    for (int p = share.begin; p < share.end; ++p) patches[at(p)] = Builder(source, p).build();
  });
  return patches;
}

}  // namespace engine
