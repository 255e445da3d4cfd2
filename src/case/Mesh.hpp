// The mesh of a case in plain arrays, as its three files hold it.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "physics/cell_geometry.hpp"
#include "physics/edge_frame.hpp"

namespace cases {

/// Number of a node, cell or edge, counted from 0. Offsets and sums of them take 64 bits.
using Number = std::int32_t;

inline std::size_t at(Number i) { return static_cast<std::size_t>(i); }

/// A boundary condition on an edge.
struct Boundary {
  Number edge;
  int code;      ///< see boundary_kinds
  double value;  ///< imposed unit discharge (m2/s, positive leaves) or level (m)
  int series;    ///< number of the time series that imposes it; -1: none

  /// Here and below for utils/bytes.hpp.
  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.edge, self.code, self.value, self.series);
  }
};

/// Geometry of a cell.
struct CellGeometry {
  physics::SpacePoint center;  ///< mean of the vertices, m
  double area, perimeter;      ///< m2, m
  double highest_node;         ///< m

  double char_length() const { return physics::characteristic_length(area, perimeter); }
};

struct MeshCounts {
  Number nodes = 0, cells = 0, edges = 0;
};

struct Mesh {
  std::vector<double> x, y, z;           ///< of the nodes, m
  std::vector<Number> cell_nodes;        ///< those of the first cell, of the second, ...
  std::vector<std::int64_t> first_node;  ///< of the cells in cell_nodes, and the end; empty where
                                         ///< all cells are triangles
  std::vector<Number> left, right;       ///< cells of the edges; right: -1 without one
  std::vector<Number> node1, node2;      ///< of the edges; the normal is to the right of 1 to 2
  std::vector<Boundary> boundaries;      ///< in the order of their edges; all others are interior

  Number n_nodes() const { return static_cast<Number>(x.size()); }
  Number n_cells() const {
    const std::size_t count = first_node.empty() ? cell_nodes.size() / 3 : first_node.size() - 1;
    return static_cast<Number>(count);
  }
  Number n_edges() const { return static_cast<Number>(left.size()); }
  MeshCounts counts() const { return {n_nodes(), n_cells(), n_edges()}; }

  std::span<const Number> nodes_of(Number cell) const {
    if (first_node.empty()) return {cell_nodes.data() + 3 * at(cell), 3};
    const auto begin = static_cast<std::size_t>(first_node[at(cell)]);
    return {cell_nodes.data() + begin, static_cast<std::size_t>(first_node[at(cell) + 1]) - begin};
  }
  physics::PlanPoint plan_node(Number node) const { return {x[at(node)], y[at(node)]}; }

  void add_cell(std::span<const Number> nodes);
  /// Mean of the vertices, m.
  physics::SpacePoint center_of(Number cell) const;
  CellGeometry geometry_of(Number cell) const;
  /// Of all cells, m2.
  std::vector<double> areas() const;
  /// Area from differences of coordinates, without what rounding takes from it, m2.
  double accurate_area_of(Number cell) const;
  physics::Edge edge_of(Number edge) const {
    return physics::edge_between(plan_node(node1[at(edge)]), plan_node(node2[at(edge)]));
  }
  /// Whether the normal of an edge points the wrong way.
  bool points_into_left_cell(Number edge) const;
  /// The boundary condition on an edge; null on an interior one.
  const Boundary* boundary_on(Number edge) const;

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.x, self.y, self.z, self.cell_nodes, self.first_node, self.left, self.right,
          self.node1, self.node2, self.boundaries);
  }
};

/// Whether the normal to the right of the way from a to b points to a side with a centre.
bool points_towards(const physics::SpacePoint& center, physics::PlanPoint a, physics::PlanPoint b);

}  // namespace cases
