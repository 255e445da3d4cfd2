// A mesh as the files of other programs hold it: nodes, cells, and the names of surfaces and lines.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace mesh_import {

/// Coordinates, m; z is the elevation of the terrain.
struct Node {
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
};

/// A triangle or a quadrilateral: node indices in order around the cell.
struct Cell {
  std::array<int, 4> nodes{-1, -1, -1, -1};  // the last one is negative in a triangle

  bool is_quad() const { return nodes[3] >= 0; }
  int size() const { return is_quad() ? 4 : 3; }
  int node(int k) const { return nodes[static_cast<std::size_t>(k % size())]; }
};

/// A piece of a named line between two nodes, in the direction of the line.
struct LinePiece {
  int node1 = 0;
  int node2 = 0;
  int line = 0;  // index into Mesh::line_names
};

struct Mesh {
  std::vector<Node> nodes;
  std::vector<Cell> cells;
  std::vector<int> zone_of_cell;    // index into zones
  std::vector<double> bed_of_cell;  // m; empty where the file gives nodes alone an elevation
  /// A cell may lie in several named surfaces, or in none: every combination is a zone, which lists
  /// its surfaces as indices into surface_names.
  std::vector<std::vector<int>> zones;
  std::vector<std::string> surface_names;
  std::vector<std::string> line_names;
  std::vector<LinePiece> line_pieces;
  std::optional<int> epsg;           // reference system, where the user or the terrain tells it
  std::string format;                // what was read, for the user: "Gmsh 4.1, binary"
  std::vector<std::string> remarks;  // what the user should know about the reading

  Node center(const Cell& cell) const {
    Node sum;
    for (int k = 0; k < cell.size(); ++k) {
      const Node& node = nodes[static_cast<std::size_t>(cell.node(k))];
      sum.x += node.x;
      sum.y += node.y;
      sum.z += node.z;
    }
    const double n = cell.size();
    return {sum.x / n, sum.y / n, sum.z / n};
  }
};

}  // namespace mesh_import
