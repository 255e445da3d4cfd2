#include "mesh/merge_nodes.hpp"

#include <array>
#include <numeric>
#include <utility>
#include <vector>

#include "case/coincident_nodes.hpp"
#include "mesh/cells.hpp"
#include "mesh/edges.hpp"
#include "mesh/numbers.hpp"
#include "support/Error.hpp"
#include "utils/counted.hpp"
#include "utils/stop.hpp"

namespace mesh_import {

namespace {

using Pairs = std::vector<std::pair<int, int>>;

Pairs pairs_on_boundary(const Mesh& mesh, std::optional<double> distance) {
  std::vector<double> x, y;
  for (const Node& node : mesh.nodes) {
    x.push_back(node.x);
    y.push_back(node.y);
  }
  std::vector<std::array<int, 2>> boundary;
  for (const Edge& edge : make_edges(mesh)) {
    if (edge.is_boundary()) boundary.push_back({edge.node1, edge.node2});
  }
  return cases::coincident_nodes(x, y, boundary, distance.value_or(-1.0));
}

/// Of every node, the one that takes its place: the first of a group, or itself.
std::vector<int> first_of_groups(std::size_t n_nodes, const Pairs& pairs) {
  std::vector<int> first(n_nodes);
  std::iota(first.begin(), first.end(), 0);
  const auto root = [&first](int node) {
    while (first[static_cast<std::size_t>(node)] != node) {
      node = first[static_cast<std::size_t>(node)];
    }
    return node;
  };
  for (const auto& pair : pairs) {
    const auto [a, b] = std::minmax({root(pair.first), root(pair.second)});
    first[static_cast<std::size_t>(b)] = a;
  }
  for (int& node : first) node = root(node);
  return first;
}

void expect_whole_cells(const Mesh& mesh, double distance) {
  for (const Cell& cell : mesh.cells) {
    for (int k = 0; k < cell.size(); ++k) {
      if (cell.node(k) != cell.node(k + 1)) continue;
      const Node& node = mesh.nodes[static_cast<std::size_t>(cell.node(k))];
      throw tools::Error("--merge-nodes " + shown(distance) + ": a cell at " +
                         shown_point(node.x, node.y) +
                         " would lose a side; expected a distance shorter than the sides of the "
                         "cells.");
    }
  }
}

}  // namespace

void merge_boundary_nodes(Mesh& mesh, std::optional<double> distance, std::ostream& out) {
  const Pairs pairs = pairs_on_boundary(mesh, distance);
  if (!distance) {
    if (pairs.empty()) return;
    const Node& at = mesh.nodes[static_cast<std::size_t>(pairs.front().first)];
    utils::warn(utils::counted(pairs.size(), "pair") +
                " of nodes on the boundary lie at one place, the first at " +
                shown_point(at.x, at.y) +
                ": no water passes between their cells. Where no thin wall is meant, "
                "--merge-nodes 0.001 joins nodes within a millimetre.");
    return;
  }
  const std::vector<int> first = first_of_groups(mesh.nodes.size(), pairs);
  const auto replace = [&first](int& node) {
    if (node >= 0) node = first[static_cast<std::size_t>(node)];
  };
  for (Cell& cell : mesh.cells) {
    for (int k = 0; k < cell.size(); ++k) replace(cell.nodes[static_cast<std::size_t>(k)]);
  }
  for (LinePiece& piece : mesh.line_pieces) {
    replace(piece.node1);
    replace(piece.node2);
  }
  expect_whole_cells(mesh, *distance);
  const int n_merged = drop_unused_nodes(mesh);
  out << "Merged " << utils::counted(n_merged, "node") << " into others within " << shown(*distance)
      << " m.\n";
}

}  // namespace mesh_import
