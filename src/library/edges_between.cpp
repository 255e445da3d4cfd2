// The edges of the cells of a case that is given in arrays.
#include <algorithm>
#include <map>
#include <utility>

#include "library/case_of_arrays.hpp"

namespace quillmere {

namespace {

using cases::Number;

/// Adds the sides of a cell that no cell before has, and sets the cell at the right of the others.
void add_sides(Number cell, cases::Mesh& mesh,
               std::map<std::pair<Number, Number>, std::size_t>& known) {
  const std::span<const Number> nodes = mesh.nodes_of(cell);
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    const Number a = nodes[i], b = nodes[i + 1 < nodes.size() ? i + 1 : 0];
    const auto [side, is_new] = known.try_emplace(std::minmax(a, b), mesh.left.size());
    if (is_new) {
      mesh.left.push_back(cell);
      mesh.right.push_back(-1);
      mesh.node1.push_back(a);
      mesh.node2.push_back(b);
      continue;
    }
    if (mesh.right[side->second] >= 0 || mesh.left[side->second] == cell) {
      throw Error("cell " + std::to_string(cell) + " (counted from 0): found the side of nodes " +
                  std::to_string(a) + " and " + std::to_string(b) +
                  " once more, expected one cell on either side of it.");
    }
    mesh.right[side->second] = cell;
  }
}

}  // namespace

std::vector<Edge> edges_between(const Case& contents) {
  cases::Mesh mesh = mesh_without_edges(contents);
  std::map<std::pair<Number, Number>, std::size_t> known;  // edges by their nodes
  for (Number cell = 0; cell < mesh.n_cells(); ++cell) add_sides(cell, mesh, known);
  std::vector<Edge> edges;
  for (Number e = 0; e < mesh.n_edges(); ++e) {
    const std::size_t k = cases::at(e);
    const EdgeKind kind = mesh.right[k] < 0 ? EdgeKind::wall : EdgeKind::interior;
    Edge& edge = edges.emplace_back(
        Edge{mesh.left[k], mesh.right[k], mesh.node1[k], mesh.node2[k], kind, 0.0, -1});
    if (mesh.points_into_left_cell(e)) std::swap(edge.node1, edge.node2);
  }
  return edges;
}

}  // namespace quillmere
