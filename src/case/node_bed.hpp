// The bed at the nodes of a mesh, for formats that want it there.
#pragma once

#include <cstddef>
#include <vector>

namespace cases {

/// Of nodes that are counted from 0: the mean of the cells around each.
class NodeBed {
 public:
  explicit NodeBed(std::size_t nodes) : sum_(nodes, 0.0), count_(nodes, 0.0) {}

  /// Adds a cell around a node, of its bed (m). Cells come in their order, which the sum keeps.
  void add(std::size_t node, double cell_bed) {
    sum_[node] += cell_bed;
    ++count_[node];
  }
  /// A node without a cell keeps its own elevation z, m.
  std::vector<double> means(const std::vector<double>& z) const {
    std::vector<double> bed(sum_.size());
    for (std::size_t k = 0; k < bed.size(); ++k) {
      bed[k] = count_[k] > 0.0 ? sum_[k] / count_[k] : z[k];
    }
    return bed;
  }

 private:
  std::vector<double> sum_, count_;
};

/// Of the bed of all cells (m). `Mesh` knows z, n_cells() and nodes_of(cell).
template <class Mesh>
std::vector<double> bed_at_nodes(const Mesh& mesh, const std::vector<double>& cell_bed) {
  NodeBed bed(mesh.z.size());
  for (decltype(mesh.n_cells()) cell = 0; cell < mesh.n_cells(); ++cell) {
    for (const int node : mesh.nodes_of(cell)) {
      bed.add(static_cast<std::size_t>(node), cell_bed[static_cast<std::size_t>(cell)]);
    }
  }
  return bed.means(mesh.z);
}

}  // namespace cases
