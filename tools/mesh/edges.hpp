// The edges of a mesh, as the simulator's edges file lists them.
#pragma once

#include <vector>

#include "mesh/mesh.hpp"

namespace mesh_import {

/// Walking from node1 to node2, the left cell is on the left; right is negative on the boundary.
struct Edge {
  int left = -1;
  int right = -1;
  int node1 = -1;
  int node2 = -1;

  bool is_boundary() const { return right < 0; }
  void turn();
};

/// All edges, in the order of their first cells; the cells run counter-clockwise. Throws
/// tools::Error where cells overlap, or more than two share an edge.
std::vector<Edge> make_edges(const Mesh& mesh);

/// Makes the lower cell the left one of every interior edge that is not fixed; the count of those
/// turned. Water at rest on a shore stays at rest only if the wet cell is the left one.
int turn_edges_uphill(std::vector<Edge>& edges, const std::vector<double>& bed_of_cells,
                      const std::vector<bool>& is_fixed);

/// Finds edges by their nodes.
class EdgeIndex {
 public:
  EdgeIndex(const std::vector<Edge>& edges, std::size_t n_nodes);
  /// Index of the edge between two nodes, either way round; -1 if there is none.
  int find(int node1, int node2) const;

 private:
  const std::vector<Edge>& edges_;
  std::vector<int> begin_;  // of a node's edges in edge_; they stand at their smaller node
  std::vector<int> edge_;
};

}  // namespace mesh_import
