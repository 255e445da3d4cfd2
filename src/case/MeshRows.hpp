// Nodes and cells of a mesh as files of results list them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "physics/cell_geometry.hpp"

namespace cases {

/// Nodes that follow each other, and cells that do. Coordinates are those of the reference system:
/// the origin of a case has been added.
struct MeshRows {
  static constexpr int no_node = -1;

  std::size_t first_node = 0, first_cell = 0;
  std::vector<double> node_x, node_y;  ///< m
  std::vector<double> node_bed;        ///< m
  std::vector<double> cell_x, cell_y;  ///< centres: the mean of their nodes, m
  std::vector<double> cell_bed;        ///< at the start, m
  std::size_t width = 0;               ///< most nodes of a cell of the mesh
  /// Rows of `width`, one per cell: its nodes, counter-clockwise, filled up with no_node.
  std::vector<int> cell_nodes;

  std::size_t n_nodes() const { return node_x.size(); }
  std::size_t n_cells() const { return cell_x.size(); }

  /// For utils/bytes.hpp.
  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.first_node, self.first_cell, self.node_x, self.node_y, self.node_bed, self.cell_x,
          self.cell_y, self.cell_bed, self.width, self.cell_nodes);
  }
};

/// Of a mesh that knows n_cells() and nodes_of(cell).
template <class Source>
std::size_t most_nodes_of_a_cell(const Source& source) {
  std::size_t most = 0;
  for (decltype(source.n_cells()) cell = 0; cell < source.n_cells(); ++cell) {
    most = std::max(most, source.nodes_of(cell).size());
  }
  return most;
}

/// Adds nodes at coordinates from which `origin` (m) was taken.
inline void add_nodes(const std::vector<double>& xs, const std::vector<double>& ys,
                      physics::PlanPoint origin, MeshRows& rows) {
  rows.node_x.reserve(xs.size());
  rows.node_y.reserve(ys.size());
  for (const double x : xs) rows.node_x.push_back(x + origin.x);
  for (const double y : ys) rows.node_y.push_back(y + origin.y);
}

/// Adds the cells of a mesh that knows x, y, n_cells() and nodes_of(cell), and from whose
/// coordinates `origin` (m) was taken. Cells whose nodes run clockwise are turned round. A node of
/// the source has the number that number_of() gives.
template <class Source, class NumberOf>
void add_cells(const Source& source, physics::PlanPoint origin, const NumberOf& number_of,
               MeshRows& rows) {
  const auto n_cells = static_cast<std::size_t>(source.n_cells());
  rows.cell_x.reserve(n_cells);
  rows.cell_y.reserve(n_cells);
  rows.cell_nodes.assign(rows.width * n_cells, MeshRows::no_node);
  auto row = rows.cell_nodes.begin();
  for (decltype(source.n_cells()) cell = 0; cell < source.n_cells(); ++cell) {
    const auto nodes = source.nodes_of(cell);
    const auto end = std::copy(nodes.begin(), nodes.end(), row);
    const auto node_at = [&](int i) {
      const auto node = static_cast<std::size_t>(row[i]);
      return physics::SpacePoint{source.x[node] + origin.x, source.y[node] + origin.y, 0.0};
    };
    const auto plan_at = [&](int i) { return physics::PlanPoint{node_at(i).x, node_at(i).y}; };
    const int n = static_cast<int>(nodes.size());
    if (physics::twice_signed_cell_area(n, plan_at) < 0.0) std::reverse(row + 1, end);
    const physics::SpacePoint center = physics::cell_center(n, node_at);
    rows.cell_x.push_back(center.x);
    rows.cell_y.push_back(center.y);
    std::transform(row, end, row, number_of);
    row += static_cast<std::ptrdiff_t>(rows.width);
  }
}

/// All rows of such a mesh.
template <class Source>
MeshRows all_rows_of(const Source& source, physics::PlanPoint origin, std::vector<double> node_bed,
                     std::vector<double> cell_bed) {
  MeshRows rows;
  rows.width = most_nodes_of_a_cell(source);
  rows.node_bed = std::move(node_bed);
  rows.cell_bed = std::move(cell_bed);
  add_nodes(source.x, source.y, origin, rows);
  add_cells(
      source, origin, [](int node) { return node; }, rows);
  return rows;
}

}  // namespace cases
