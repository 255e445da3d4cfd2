#include "engine/sorted_edges.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

namespace engine {

namespace {

using cases::Number;

enum Kind { within, cut, on_boundary };

class Sorter {
 public:
  Sorter(const cases::Mesh& mesh, const std::vector<int>& place, int owned, int cells_per_patch,
         ThreadTeam& team)
      : mesh_(mesh),
        place_(place),
        owned_(owned),
        cells_per_patch_(cells_per_patch),
        patches_((owned + cells_per_patch - 1) / cells_per_patch),
        team_(team) {}

  SortedEdges sort() {
    count();
    collect();
    for (const Kind kind : {within, cut, on_boundary}) sort_within_patches(kind);
    return {std::move(lists_[within]), std::move(lists_[cut]), std::move(lists_[on_boundary])};
  }

 private:
  bool is_owned(int place) const { return place < owned_; }

  /// Places of the cells of an edge, the lower one first; twice the left one on a boundary.
  std::pair<int, int> cells_of(Number edge, bool is_boundary) const {
    const int left = place_[at(mesh_.left[at(edge)])];
    const int right = is_boundary ? left : place_[at(mesh_.right[at(edge)])];
    return std::minmax(left, right);
  }

  /// Calls visit(kind, patch, edge) for every edge of an owned cell in the order of the mesh.
  template <class Visit>
  void for_each_edge(const Visit& visit) const {
    auto boundary = mesh_.boundaries.begin();
    for (Number edge = 0; edge < mesh_.n_edges(); ++edge) {
      const bool is_boundary = boundary != mesh_.boundaries.end() && boundary->edge == edge;
      if (is_boundary) ++boundary;
      const auto [lower, higher] = cells_of(edge, is_boundary);
      if (!is_owned(lower) && !is_owned(higher)) continue;
      const int patch = lower / cells_per_patch_;
      const bool is_within = is_owned(higher) && patch == higher / cells_per_patch_;
      visit(is_boundary ? on_boundary : is_within ? within : cut, patch, edge);
    }
  }

  void count() {
    for (EdgesOfPatches& list : lists_) list.begins.assign(at(patches_) + 1, 0);
    for_each_edge([&](Kind kind, int patch, Number) { ++lists_[kind].begins[at(patch) + 1]; });
    for (EdgesOfPatches& list : lists_) {
      for (std::size_t p = 1; p < list.begins.size(); ++p) list.begins[p] += list.begins[p - 1];
      list.edges.resize(at(list.begins.back()));
    }
  }

  void collect() {
    std::array<std::vector<int>, 3> next = {lists_[within].begins, lists_[cut].begins,
                                            lists_[on_boundary].begins};
    for_each_edge([&](Kind kind, int patch, Number edge) {
      lists_[kind].edges[at(next[kind][at(patch)]++)] = edge;
    });
  }

  void sort_within_patches(Kind kind) {
    EdgesOfPatches& list = lists_[kind];
    team_.run([&](int member) {
      std::vector<std::pair<std::uint64_t, Number>> keys;
      const Range share = share_of(member, team_.size(), at(patches_));
      for (int p = share.begin; p < share.end; ++p) {
        const Range edges = list.of(p);
        keys.clear();
        for (int k = edges.begin; k < edges.end; ++k) {
          const Number edge = list.edges[at(k)];
          const auto [lower, higher] = cells_of(edge, kind == on_boundary);
          keys.emplace_back(
              static_cast<std::uint64_t>(lower) << 32 | static_cast<std::uint64_t>(higher), edge);
        }
        std::sort(keys.begin(), keys.end());
        for (int k = edges.begin; k < edges.end; ++k) {
          list.edges[at(k)] = keys[at(k - edges.begin)].second;
        }
      }
    });
  }

  const cases::Mesh& mesh_;
  const std::vector<int>& place_;
  int owned_, cells_per_patch_, patches_;
  ThreadTeam& team_;
  std::array<EdgesOfPatches, 3> lists_;
};

}  // namespace

SortedEdges sort_edges(const cases::Mesh& mesh, const std::vector<int>& place, int owned,
                       int cells_per_patch, ThreadTeam& team) {
  return Sorter(mesh, place, owned, cells_per_patch, team).sort();
}

}  // namespace engine
