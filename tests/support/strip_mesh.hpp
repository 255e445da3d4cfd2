// A mesh of squares in a row.
#pragma once

#include <array>

#include "case/Mesh.hpp"
#include "case/boundary_kinds.hpp"

namespace support {

/// A strip of n squares of 1 m from west to east, each with four edges: walls in the south and
/// north, then the one to the west; the last edge closes the east.
inline cases::Mesh strip_mesh(int n) {
  cases::Mesh mesh;
  for (int i = 0; i <= n; ++i) {
    for (const double y : {0.0, 1.0}) {
      mesh.x.push_back(i);
      mesh.y.push_back(y);
      mesh.z.push_back(0.0);
    }
  }
  const auto add_edge = [&](int left, int right, int node1, int node2) {
    if (right < 0) mesh.boundaries.push_back({mesh.n_edges(), edge_code::wall, 0.0, -1});
    mesh.left.push_back(left);
    mesh.right.push_back(right);
    mesh.node1.push_back(node1);
    mesh.node2.push_back(node2);
  };
  for (int i = 0; i < n; ++i) {
    mesh.add_cell(std::array{2 * i, 2 * i + 2, 2 * i + 3, 2 * i + 1});
    add_edge(i, -1, 2 * i, 2 * i + 2);
    add_edge(i, -1, 2 * i + 3, 2 * i + 1);
    if (i == 0) {
      add_edge(0, -1, 1, 0);
    } else {
      add_edge(i - 1, i, 2 * i, 2 * i + 1);
    }
  }
  add_edge(n - 1, -1, 2 * n, 2 * n + 1);
  return mesh;
}

}  // namespace support
