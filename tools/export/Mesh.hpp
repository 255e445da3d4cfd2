// The mesh of a case, as flat arrays.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace exports {

struct Mesh {
  std::array<double, 2> origin{};  ///< what the files take from x and y, and is added here, m
  std::vector<double> x, y, z;     ///< nodes, m
  std::vector<int> first;          ///< of every cell, where its nodes begin; one more at the end
  std::vector<int> nodes;          ///< nodes of the cells, counter-clockwise
  /// Centres of the cells: the mean of their nodes, m.
  std::vector<double> center_x, center_y, center_z;

  std::size_t n_nodes() const { return x.size(); }
  std::size_t n_cells() const { return center_x.size(); }
  std::span<const int> nodes_of(std::size_t cell) const {
    return std::span(nodes).subspan(static_cast<std::size_t>(first[cell]),
                                    static_cast<std::size_t>(first[cell + 1] - first[cell]));
  }
  double area_of(std::size_t cell) const;  ///< m2
};

/// Reads the nodes and cells files. Cells whose nodes run clockwise are turned round, since that is
/// what the formats of other programs ask for.
Mesh read_mesh(const std::string& nodes_file, const std::string& cells_file,
               const std::array<double, 2>& origin = {});

/// An edge that bounds the domain, with its condition.
struct BoundaryEdge {
  int edge;            ///< its number
  int code;            ///< see cases::boundary_kinds
  double value;        ///< imposed unit discharge (m2/s, positive leaves) or level (m)
  std::string series;  ///< file of the series that imposes it; empty: none
};

struct Edges {
  std::vector<std::array<int, 2>> nodes;  ///< of every edge
  std::vector<BoundaryEdge> boundary;
};
/// Reads the edges file.
Edges read_edges(const std::string& edges_file, const Mesh& mesh);

/// The cells cut into triangles.
struct Triangulation {
  std::vector<std::array<int, 3>> nodes;
  std::vector<int> cell;  ///< the cell of every triangle
};
Triangulation triangulate(const Mesh& mesh);

struct Extent {
  double west, east, south, north;
};
/// Extent of the nodes, m.
Extent extent_of(const Mesh& mesh);

}  // namespace exports
