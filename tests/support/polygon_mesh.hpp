// A mesh of one cell with many sides, all of them walls.
#pragma once

#include <cmath>
#include <vector>

#include "case/Mesh.hpp"
#include "case/boundary_kinds.hpp"

namespace support {

/// A regular polygon in a circle of 1 m.
inline cases::Mesh polygon_mesh(int sides) {
  cases::Mesh mesh;
  std::vector<cases::Number> nodes;
  for (int i = 0; i < sides; ++i) {
    const double angle = 2.0 * 3.141592653589793 * i / sides;
    mesh.x.push_back(std::cos(angle));
    mesh.y.push_back(std::sin(angle));
    mesh.z.push_back(0.0);
    nodes.push_back(i);
    mesh.left.push_back(0);
    mesh.right.push_back(-1);
    mesh.node1.push_back(i);
    mesh.node2.push_back((i + 1) % sides);
    mesh.boundaries.push_back({i, edge_code::wall, 0.0, -1});
  }
  mesh.add_cell(nodes);
  return mesh;
}

}  // namespace support
