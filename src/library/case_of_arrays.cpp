#include "library/case_of_arrays.hpp"

#include <cmath>

#include "case/EdgeWarnings.hpp"
#include "case/boundary_kinds.hpp"
#include "case/finite_geometry.hpp"
#include "library/require.hpp"

namespace quillmere {

namespace {

using cases::at;
using cases::Number;

/// "cell 7" for the entry 7 of what is named so.
std::string entry(const std::string& what, std::size_t i) {
  return what + " " + std::to_string(i) + " (counted from 0)";
}

std::vector<double> column(const std::string& what, const std::vector<double>& values,
                           std::size_t count) {
  require_count(what, values.size(), count);
  for (std::size_t i = 0; i < count; ++i) require_finite(entry(what, i), values[i]);
  return values;
}

std::vector<double> column_or_none(const std::string& what, const std::vector<double>& values,
                                   std::size_t count) {
  return values.empty() ? values : column(what, values, count);
}

cases::Scheme scheme_of(Scheme scheme) {
  switch (scheme) {
    case Scheme::LHLLC:
      return cases::Scheme::lhllc;
    case Scheme::HLL1:
      return cases::Scheme::hll1;
    case Scheme::HLL2:
      return cases::Scheme::hll2;
  }
  throw Error("The flux scheme is none of those that there are.");
}

void take_parameters(const Case& given, cases::Case& contents) {
  require_finite("start time", contents.t_start = given.t_start);
  require_finite("end time", contents.t_end = given.t_end);
  require_finite("Courant number", contents.cfl = given.courant_number);
  contents.scheme = scheme_of(given.scheme);
  require_finite("zero depth", contents.zero_depth = given.zero_depth);
}

void take_nodes(const Case& given, cases::Mesh& mesh) {
  mesh.x = column("x of the nodes", given.x, given.x.size());
  mesh.y = column("y of the nodes", given.y, given.x.size());
  mesh.z = column("z of the nodes", given.z, given.x.size());
}

/// Where the nodes of the cells begin and end.
std::vector<std::int64_t> ends_of_cells(const Case& given) {
  std::vector<std::int64_t> ends = given.first_node;
  const auto count = static_cast<std::int64_t>(given.cell_nodes.size());
  if (ends.empty()) {
    for (std::int64_t end = 0; end <= count; end += 3) ends.push_back(end);
  }
  if (ends.size() < 2) refuse("cells", "none", "1 or more: a mesh has cells");
  if (ends.front() != 0 || ends.back() != count) {
    refuse(
        "nodes of the cells", std::to_string(count) + " of them",
        given.first_node.empty() ? "three of each cell" : "as many as first_node says, from 0 on");
  }
  for (std::size_t cell = 0; cell + 1 < ends.size(); ++cell) {
    const std::int64_t nodes = ends[cell + 1] - ends[cell];
    if (nodes < 3) refuse(entry("cell", cell), std::to_string(nodes) + " nodes", "at least 3");
  }
  return ends;
}

void take_cells(const Case& given, cases::Mesh& mesh) {
  const std::vector<std::int64_t> ends = ends_of_cells(given);
  for (std::size_t cell = 0; cell + 1 < ends.size(); ++cell) {
    const auto begin = given.cell_nodes.begin() + ends[cell];
    const std::vector<Number> nodes(begin, given.cell_nodes.begin() + ends[cell + 1]);
    for (const Number node : nodes) {
      require_index(entry("cell", cell) + ", node", node, mesh.n_nodes());
    }
    mesh.add_cell(nodes);
    if (cases::is_finite(mesh.geometry_of(static_cast<Number>(cell)))) continue;
    throw Error(entry("cell", cell) + ": " + cases::overflow_of(mesh, nodes) + ".");
  }
}

void take_series(const Case& given, cases::Case& contents) {
  for (std::size_t s = 0; s < given.series.size(); ++s) {
    const auto& [times, values] = given.series[s];
    const std::string place = entry("series", s);
    if (times.size() < 2) refuse(place, std::to_string(times.size()) + " samples", "at least 2");
    column(place + ", times", times, times.size());
    column(place + ", values", values, times.size());
    for (std::size_t i = 1; i < times.size(); ++i) {
      if (times[i] > times[i - 1]) continue;
      refuse(place + ", " + entry("time", i), utils::number_text(times[i]),
             "a time later than that of the sample before");
    }
    contents.series.push_back({place, times, values});
  }
}

void check_edge(const Edge& edge, const std::string& place, const cases::Case& contents) {
  const cases::Mesh& mesh = contents.mesh;
  require_index(place + ", left cell", edge.left, mesh.n_cells());
  if (edge.right >= 0) require_index(place + ", right cell", edge.right, mesh.n_cells());
  require_index(place + ", node 1", edge.node1, mesh.n_nodes());
  require_index(place + ", node 2", edge.node2, mesh.n_nodes());
  require_finite(place + ", value", edge.value);
  const int code = static_cast<int>(edge.kind);
  if (edge.kind == EdgeKind::interior) {
    if (edge.right < 0) refuse(place, "an interior edge without a right cell", "a boundary");
    if (edge.right == edge.left) refuse(place, "an edge of a cell with itself", "two cells");
    return;
  }
  const cases::BoundaryKind* const kind = cases::boundary_kind(code);
  if (kind == nullptr) refuse(place, "kind " + std::to_string(code), "one of EdgeKind");
  if (!kind->has_series()) return;
  require_index(place + ", series", edge.series, static_cast<int>(contents.series.size()));
}

void take_edges(const std::vector<Edge>& edges, cases::Case& contents,
                cases::Diagnostics& diagnostics) {
  cases::Mesh& mesh = contents.mesh;
  cases::EdgeWarnings warnings(diagnostics);
  for (std::size_t i = 0; i < edges.size(); ++i) {
    const Edge& edge = edges[i];
    const auto number = static_cast<Number>(i);
    check_edge(edge, entry("edge", i), contents);
    const bool is_boundary = edge.kind != EdgeKind::interior;
    const int code = static_cast<int>(edge.kind);
    if (is_boundary) {
      const bool has_series = cases::boundary_kind(code)->has_series();
      mesh.boundaries.push_back({number, code, edge.value, has_series ? edge.series : -1});
    }
    mesh.left.push_back(edge.left);
    mesh.right.push_back(edge.right < 0 ? -1 : edge.right);
    mesh.node1.push_back(edge.node1);
    mesh.node2.push_back(edge.node2);
    if (!std::isfinite(mesh.edge_of(number).length)) {
      const Number nodes[] = {edge.node1, edge.node2};
      throw Error(entry("edge", i) + ": " + cases::overflow_of(mesh, nodes) + ".");
    }
    warnings.check(mesh, number, is_boundary ? &mesh.boundaries.back() : nullptr);
  }
  warnings.check_numbers_of_edges(mesh);
}

void take_fields(const Case& given, std::size_t n_cells, cases::CellFields& fields) {
  fields.bed = column_or_none("bed levels", given.bed, n_cells);
  fields.manning = column_or_none("Manning coefficients", given.manning, n_cells);
  fields.level = column("levels", given.level, n_cells);
  fields.qx = column_or_none("discharges qx", given.qx, n_cells);
  fields.qy = column_or_none("discharges qy", given.qy, n_cells);
  fields.qx.resize(n_cells);
  fields.qy.resize(n_cells);
}

}  // namespace

cases::Mesh mesh_without_edges(const Case& given) {
  cases::Mesh mesh;
  take_nodes(given, mesh);
  take_cells(given, mesh);
  return mesh;
}

cases::Case case_of_arrays(const Case& given, cases::Diagnostics& diagnostics) {
  cases::Case contents;
  take_parameters(given, contents);
  contents.mesh = mesh_without_edges(given);
  take_series(given, contents);
  take_edges(given.edges.empty() ? edges_between(given) : given.edges, contents, diagnostics);
  take_fields(given, at(contents.mesh.n_cells()), contents.fields);
  return contents;
}

}  // namespace quillmere
