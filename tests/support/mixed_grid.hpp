// Squares, of which some are cut in two, and a wall between two cells: a mesh of triangles and of
// others, cells and edges in any order.
#pragma once

#include <algorithm>
#include <array>
#include <map>
#include <numeric>
#include <random>
#include <utility>
#include <vector>

#include "case/Case.hpp"
#include "case/boundary_kinds.hpp"

namespace support {

inline cases::Case mixed_grid(int nx, int ny) {
  using cases::Number;
  std::mt19937 random(11);
  cases::Case contents;
  contents.cfl = 0.9;
  contents.t_end = 10.0;
  contents.zero_depth = 1e-4;
  cases::Mesh& mesh = contents.mesh;
  for (int k = 0; k < (nx + 1) * (ny + 1); ++k) {
    mesh.x.push_back(k % (nx + 1));
    mesh.y.push_back(k / (nx + 1));
    mesh.z.push_back(0.1 * (k % 7));
  }
  std::vector<std::vector<Number>> cells;
  for (int k = 0; k < nx * ny; ++k) {
    const Number sw = k / nx * (nx + 1) + k % nx, se = sw + 1, nw = sw + nx + 1, ne = nw + 1;
    if (k % 3 == 0) {
      cells.push_back({sw, se, ne});
      cells.push_back({sw, ne, nw});
    } else {
      cells.push_back({sw, se, ne, nw});
    }
  }
  std::shuffle(cells.begin(), cells.end(), random);
  std::map<std::pair<Number, Number>, std::array<Number, 4>> edges;  // left, right, nodes
  for (const auto& nodes : cells) {
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      const Number a = nodes[i], b = nodes[(i + 1) % nodes.size()], cell = mesh.n_cells();
      const auto [edge, is_new] =
          edges.try_emplace(std::minmax(a, b), std::array<Number, 4>{cell, -1, a, b});
      if (!is_new) edge->second[1] = cell;
    }
    mesh.add_cell(nodes);
    contents.fields.level.push_back(1.0 + 0.01 * mesh.n_cells());
    contents.fields.qx.push_back(0.1 * (mesh.n_cells() % 5));
    contents.fields.qy.push_back(0.0);
  }
  for (const auto& [nodes, edge] : edges) {
    const bool is_wall_within = edge[1] >= 0 && random() % 40 == 0;
    if (edge[1] < 0 || is_wall_within) {
      mesh.boundaries.push_back({mesh.n_edges(), edge_code::wall, 0.0, -1});
    }
    mesh.left.push_back(edge[0]);
    mesh.right.push_back(edge[1]);
    mesh.node1.push_back(edge[2]);
    mesh.node2.push_back(edge[3]);
  }
  return contents;
}

}  // namespace support
