// The bed at the nodes of a mesh, for formats that want it there.
#pragma once

#include <cstddef>
#include <vector>

namespace cases {

/// The mean of the cells around every node, of their bed (m); a node without a cell keeps its own
/// elevation. `Mesh` knows z, n_cells() and nodes_of(cell).
template <class Mesh>
std::vector<double> bed_at_nodes(const Mesh& mesh, const std::vector<double>& cell_bed) {
  std::vector<double> sum(mesh.z.size(), 0.0), count(mesh.z.size(), 0.0);
  for (decltype(mesh.n_cells()) cell = 0; cell < mesh.n_cells(); ++cell) {
    for (const int node : mesh.nodes_of(cell)) {
      sum[static_cast<std::size_t>(node)] += cell_bed[static_cast<std::size_t>(cell)];
      ++count[static_cast<std::size_t>(node)];
    }
  }
  for (std::size_t k = 0; k < sum.size(); ++k) {
    sum[k] = count[k] > 0.0 ? sum[k] / count[k] : mesh.z[k];
  }
  return sum;
}

}  // namespace cases
