#include "mesh/edges.hpp"

#include <algorithm>
#include <string>
#include <utility>

#include "mesh/numbers.hpp"
#include "support/Error.hpp"

namespace mesh_import {

namespace {

/// The edges of one cell each, sorted by their nodes: equal ones stand together.
class Sides {
 public:
  explicit Sides(const Mesh& mesh) : mesh_(mesh), twin_(mesh.cells.size() * 4, -1) {
    const std::size_t n_nodes = mesh.nodes.size();
    std::vector<int> begin(n_nodes + 1, 0);
    for_each_side(
        [&](int, int a, int b) { ++begin[static_cast<std::size_t>(std::min(a, b)) + 1]; });
    for (std::size_t i = 0; i < n_nodes; ++i) begin[i + 1] += begin[i];
    std::vector<Entry> entries(static_cast<std::size_t>(begin[n_nodes]));
    std::vector<int> next(begin.begin(), begin.end() - 1);
    for_each_side([&](int side, int a, int b) {
      const int place = next[static_cast<std::size_t>(std::min(a, b))]++;
      entries[static_cast<std::size_t>(place)] = {std::max(a, b), side};
    });
    for (std::size_t i = 0; i < n_nodes; ++i)
      pair(entries.data() + begin[i], entries.data() + begin[i + 1]);
    if (n_overlaps_ == 0) return;
    throw tools::Error(
        first_overlap_ +
        (n_overlaps_ == 1 ? ""
                          : " It is the first of " + std::to_string(n_overlaps_) + " such edges."));
  }

  /// The cell on the other side of side k of a cell, or -1.
  int cell_beyond(int cell, int k) const {
    const int twin = twin_[static_cast<std::size_t>(4 * cell + k)];
    return twin < 0 ? -1 : twin / 4;
  }

 private:
  /// A side is 4 * cell + place of its first node.
  using Entry = std::pair<int, int>;  // larger node, side

  template <class Visit>
  void for_each_side(Visit visit) const {
    for (std::size_t i = 0; i < mesh_.cells.size(); ++i) {
      const Cell& cell = mesh_.cells[i];
      for (int k = 0; k < cell.size(); ++k) {
        visit(static_cast<int>(4 * i) + k, cell.node(k), cell.node(k + 1));
      }
    }
  }

  int first_node(int side) const {
    return mesh_.cells[static_cast<std::size_t>(side / 4)].node(side % 4);
  }

  void pair(Entry* first, Entry* last) {
    std::sort(first, last);
    for (Entry* entry = first; entry + 1 < last; ++entry) {
      if (entry[0].first != entry[1].first) continue;
      const bool is_third = entry + 2 < last && entry[2].first == entry[0].first;
      const bool same_way = first_node(entry[0].second) == first_node(entry[1].second);
      if (is_third || same_way) note_overlap(entry[0].second, entry[1].second, is_third);
      twin_[static_cast<std::size_t>(entry[0].second)] = entry[1].second;
      twin_[static_cast<std::size_t>(entry[1].second)] = entry[0].second;
      ++entry;
      while (is_third && entry + 1 < last && entry[1].first == entry[0].first) ++entry;
    }
  }

  void note_overlap(int side1, int side2, bool is_third) {
    if (n_overlaps_++ > 0) return;
    const Cell& cell = mesh_.cells[static_cast<std::size_t>(side1 / 4)];
    const Node& a = mesh_.nodes[static_cast<std::size_t>(cell.node(side1 % 4))];
    const Node& b = mesh_.nodes[static_cast<std::size_t>(cell.node(side1 % 4 + 1))];
    first_overlap_ =
        "the edge from " + shown_point(a.x, a.y) + " to " + shown_point(b.x, b.y) + ": found " +
        (is_third ? "more than two cells" : "two cells on the same side") + " (cells " +
        std::to_string(side1 / 4 + 1) + " and " + std::to_string(side2 / 4 + 1) +
        " of the mesh among them), expected one cell on each side: cells overlap.";
  }

  const Mesh& mesh_;
  std::vector<int> twin_;
  std::size_t n_overlaps_ = 0;
  std::string first_overlap_;
};

}  // namespace

void Edge::turn() {
  std::swap(left, right);
  std::swap(node1, node2);
}

std::vector<Edge> make_edges(const Mesh& mesh) {
  const Sides sides(mesh);
  std::vector<Edge> edges;
  edges.reserve(mesh.cells.size() * 3 / 2 + 1);
  for (int i = 0; i < static_cast<int>(mesh.cells.size()); ++i) {
    const Cell& cell = mesh.cells[static_cast<std::size_t>(i)];
    for (int k = 0; k < cell.size(); ++k) {
      const int other = sides.cell_beyond(i, k);
      if (other < 0 || other > i) edges.push_back({i, other, cell.node(k), cell.node(k + 1)});
    }
  }
  return edges;
}

int turn_edges_uphill(std::vector<Edge>& edges, const std::vector<double>& bed_of_cells,
                      const std::vector<bool>& is_fixed) {
  int n_turned = 0;
  for (std::size_t i = 0; i < edges.size(); ++i) {
    Edge& edge = edges[i];
    if (edge.is_boundary() || is_fixed[i]) continue;
    if (bed_of_cells[static_cast<std::size_t>(edge.left)] >
        bed_of_cells[static_cast<std::size_t>(edge.right)]) {
      edge.turn();
      ++n_turned;
    }
  }
  return n_turned;
}

EdgeIndex::EdgeIndex(const std::vector<Edge>& edges, std::size_t n_nodes)
    : edges_(edges), begin_(n_nodes + 1, 0), edge_(edges.size()) {
  const auto smaller = [](const Edge& edge) {
    return static_cast<std::size_t>(std::min(edge.node1, edge.node2));
  };
  for (const Edge& edge : edges) ++begin_[smaller(edge) + 1];
  for (std::size_t i = 0; i < n_nodes; ++i) begin_[i + 1] += begin_[i];
  std::vector<int> next(begin_.begin(), begin_.end() - 1);
  for (std::size_t i = 0; i < edges.size(); ++i) {
    edge_[static_cast<std::size_t>(next[smaller(edges[i])]++)] = static_cast<int>(i);
  }
}

int EdgeIndex::find(int node1, int node2) const {
  const int smaller = std::min(node1, node2), larger = std::max(node1, node2);
  if (smaller < 0) return -1;
  const auto node = static_cast<std::size_t>(smaller);
  for (int k = begin_[node]; k < begin_[node + 1]; ++k) {
    const Edge& edge = edges_[static_cast<std::size_t>(edge_[static_cast<std::size_t>(k)])];
    if (std::max(edge.node1, edge.node2) == larger) return edge_[static_cast<std::size_t>(k)];
  }
  return -1;
}

}  // namespace mesh_import
