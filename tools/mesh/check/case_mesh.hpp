// The mesh of a case, as its three files hold it.
#pragma once

#include <string>
#include <vector>

#include "mesh/check/data_file.hpp"
#include "mesh/check/findings.hpp"
#include "model/MeshNode.hpp"

namespace tools::check {

struct CaseEdge {
  int left, right, node1, node2;
  int code;
  double value = 0.0;  ///< imposed discharge (m2/s) or level (m)
  int series = -1;     ///< index into the series files; -1 without one
};

struct CaseMesh {
  std::vector<MeshNode> nodes;
  std::vector<std::size_t> first_node;  ///< of a cell in `cell_nodes`; one entry past the last cell
  std::vector<int> cell_nodes;
  std::vector<CaseEdge> edges;
  std::vector<std::string> series_files;
  /// Whether a file was read to its end without an error.
  bool has_nodes = false, has_cells = false, has_edges = false;

  int n_nodes() const { return static_cast<int>(nodes.size()); }
  int n_cells() const { return static_cast<int>(first_node.size()) - 1; }
  int n_edges() const { return static_cast<int>(edges.size()); }
  bool has_geometry() const { return has_nodes && has_cells; }
  bool is_whole() const { return has_geometry() && has_edges; }

  int n_nodes_of(int cell) const;
  /// Index of node i of a cell; i may be the number of its nodes, for the first one.
  int node_of(int cell, int i) const;
  std::vector<const MeshNode*> corners(int cell) const;
};

/// Reads the mesh files, and reports what is malformed, out of range, or no boundary of the model.
CaseMesh read_mesh(const DataFile& data, Findings& findings);

}  // namespace tools::check
