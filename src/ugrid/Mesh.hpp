// A mesh as UGRID describes it.
#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "physics/cell_geometry.hpp"

namespace ugrid {

/// Coordinates are those of the reference system: the origin of a case has been added.
struct Mesh {
  static constexpr int no_node = -1;

  std::vector<double> node_x, node_y;  ///< m
  std::vector<double> node_bed;        ///< m
  std::vector<double> face_x, face_y;  ///< centres of the cells: the mean of their nodes, m
  std::size_t width = 0;               ///< most nodes of a cell
  /// Rows of `width`, one per cell: its nodes, counter-clockwise, filled up with no_node.
  std::vector<int> face_nodes;

  std::size_t n_nodes() const { return node_x.size(); }
  std::size_t n_faces() const { return face_x.size(); }
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

/// Of a mesh that knows x, y, n_cells() and nodes_of(cell). `origin` (m) is added to its
/// coordinates. Cells whose nodes run clockwise are turned round.
template <class Source>
Mesh mesh_of(const Source& source, physics::PlanPoint origin, std::vector<double> node_bed) {
  Mesh mesh;
  mesh.node_bed = std::move(node_bed);
  for (const double x : source.x) mesh.node_x.push_back(x + origin.x);
  for (const double y : source.y) mesh.node_y.push_back(y + origin.y);
  const auto n_faces = static_cast<std::size_t>(source.n_cells());
  mesh.width = most_nodes_of_a_cell(source);
  mesh.face_x.reserve(n_faces);
  mesh.face_y.reserve(n_faces);
  mesh.face_nodes.assign(mesh.width * n_faces, Mesh::no_node);
  auto row = mesh.face_nodes.begin();
  for (decltype(source.n_cells()) cell = 0; cell < source.n_cells(); ++cell) {
    const auto nodes = source.nodes_of(cell);
    const auto end = std::copy(nodes.begin(), nodes.end(), row);
    const auto node_at = [&](int i) {
      const auto node = static_cast<std::size_t>(row[i]);
      return physics::SpacePoint{mesh.node_x[node], mesh.node_y[node], 0.0};
    };
    const auto plan_at = [&](int i) { return physics::PlanPoint{node_at(i).x, node_at(i).y}; };
    const int n = static_cast<int>(nodes.size());
    if (physics::twice_signed_cell_area(n, plan_at) < 0.0) std::reverse(row + 1, end);
    const physics::SpacePoint center = physics::cell_center(n, node_at);
    mesh.face_x.push_back(center.x);
    mesh.face_y.push_back(center.y);
    row += static_cast<std::ptrdiff_t>(mesh.width);
  }
  return mesh;
}

}  // namespace ugrid
