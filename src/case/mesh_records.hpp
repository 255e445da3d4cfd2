// The records of the mesh files. `Source` gives the values of a file, as utils::TextScanner does.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "case/Mesh.hpp"
#include "case/Records.hpp"
#include "case/boundary_kinds.hpp"

namespace cases {

struct EdgeRecord {
  Number left, right;  ///< cells; right is negative without one
  Number node1, node2;
  int code;
  double value;      ///< imposed discharge (m2/s) or level (m); 0 where none is
  std::string file;  ///< of a time series; empty without one
};

/// The coordinates of a node, and further numbers.
template <class Source>
void read_node(Source& file, std::span<double> values) {
  static constexpr const char* fields[] = {"x", "y", "z"};
  for (std::size_t i = 0; i < values.size(); ++i) {
    values[i] = file.read_number(i < 3 ? fields[i] : "further coordinate");
  }
}

/// The nodes of a cell, each below n_nodes.
template <class Source>
void read_cell(Source& file, Number n_nodes, std::vector<Number>& nodes) {
  constexpr int triangle = 3;  // needs no look at how much the file can hold
  const int count = file.read_integer("number of nodes");
  if (count != triangle) {
    file.require_count(count, "number of nodes", 1);
    if (count < triangle) file.refuse("number of nodes", "at least 3");
    file.require_last();
  }
  nodes.resize(file.goes_on() ? at(count) : 0);
  for (Number& node : nodes) node = file.read_index("node", n_nodes);
}

/// An edge whose indices are below n_nodes and n_cells. `check_code(code)` sees the code of a
/// boundary before the value or the series is read that it asks for.
template <class Source, class CheckCode>
void read_edge(Source& file, Number n_nodes, Number n_cells, EdgeRecord& edge,
               const CheckCode& check_code) {
  edge.left = file.read_index("left cell", n_cells);
  edge.right = file.read_integer("right cell");
  if (edge.right >= n_cells) {
    file.refuse("right cell",
                "an index from 0 to " + std::to_string(n_cells - 1) + ", or -1 on a boundary");
  }
  edge.node1 = file.read_index("node 1", n_nodes);
  edge.node2 = file.read_index("node 2", n_nodes);
  edge.code = file.read_integer("boundary code");
  file.require_last();
  edge.value = 0.0;
  edge.file.clear();
  if (edge_code::is_between_cells(edge.code)) {
    if (!file.record_is_well()) return;
    if (edge.right < 0) {
      file.refuse("boundary code", "a boundary condition, since the edge has no right cell");
    } else if (edge.right == edge.left) {
      file.refuse("boundary code", "two different cells on the sides of an interior edge");
    }
    return;
  }
  if (file.record_is_well()) check_code(edge.code);
  const BoundaryKind* const kind = boundary_kind(edge.code);
  if (kind == nullptr) return;
  if (kind->has_series()) edge.file = file.read_word("time-series file");
  if (kind->has_value()) edge.value = file.read_number("imposed value");
}

/// Adds nodes.
template <class Source>
void read_node_run(Source& file, const Records& records, Mesh& mesh) {
  for (auto* column : {&mesh.x, &mesh.y, &mesh.z}) column->reserve(at(records.size()));
  read_each(file, "node", records, [&](Number) {
    double node[3];
    read_node(file, node);
    mesh.x.push_back(node[0]);
    mesh.y.push_back(node[1]);
    mesh.z.push_back(node[2]);
  });
}

/// Adds cells; `look_at(cell)` sees each as soon as it is read.
template <class Source, class LookAt>
void read_cell_run(Source& file, const Records& records, Number n_nodes, Mesh& mesh,
                   const LookAt& look_at) {
  mesh.cell_nodes.reserve(3 * at(records.size()));
  std::vector<Number> nodes;
  read_each(file, "cell", records, [&](Number i) {
    read_cell(file, n_nodes, nodes);
    mesh.add_cell(nodes);
    look_at(i);
  });
}

/// Adds an edge; `series` is the number of its time series, -1 without one.
inline void add_edge(Mesh& mesh, const EdgeRecord& edge, int series) {
  if (!edge_code::is_between_cells(edge.code)) {
    mesh.boundaries.push_back({mesh.n_edges(), edge.code, edge.value, series});
  }
  mesh.left.push_back(edge.left);
  mesh.right.push_back(edge.right < 0 ? -1 : edge.right);
  mesh.node1.push_back(edge.node1);
  mesh.node2.push_back(edge.node2);
}

/// Reads edges. `check_code(code)`: see read_edge(). `take(edge)` gets each as soon as it is read.
template <class Source, class CheckCode, class Take>
void read_edge_run(Source& file, const Records& records, Number n_nodes, Number n_cells, Mesh& mesh,
                   const CheckCode& check_code, const Take& take) {
  for (auto* column : {&mesh.left, &mesh.right, &mesh.node1, &mesh.node2}) {
    column->reserve(at(records.size()));
  }
  EdgeRecord edge;
  read_each(file, "edge", records, [&](Number) {
    read_edge(file, n_nodes, n_cells, edge, check_code);
    take(edge);
  });
}

/// The least number of values that a record of each file holds.
inline constexpr std::size_t tokens_of_node = 3, tokens_of_cell = 2, tokens_of_edge = 5;

/// Adds the nodes of a file. Answers how many it announces.
template <class Source>
Number read_node_records(Source& file, Mesh& mesh) {
  const Number count = file.read_count("number of records", tokens_of_node);
  read_node_run(file, Records::all(count), mesh);
  return count;
}

/// Adds the cells of a file; see read_cell_run(). Answers how many the file announces.
template <class Source, class LookAt>
Number read_cell_records(Source& file, Number n_nodes, Mesh& mesh, const LookAt& look_at) {
  const Number count = file.read_count("number of records", tokens_of_cell);
  read_cell_run(file, Records::all(count), n_nodes, mesh, look_at);
  return count;
}

/// Reads the edges of a file; see read_edge_run().
template <class Source, class CheckCode, class Take>
void read_edge_records(Source& file, Number n_nodes, Number n_cells, Mesh& mesh,
                       const CheckCode& check_code, const Take& take) {
  const Number count = file.read_count("number of records", tokens_of_edge);
  read_edge_run(file, Records::all(count), n_nodes, n_cells, mesh, check_code, take);
}

}  // namespace cases
