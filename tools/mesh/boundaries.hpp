// Boundary conditions of named lines.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "case/Case.hpp"
#include "case/boundary_kinds.hpp"
#include "mesh/edges.hpp"
#include "mesh/mesh.hpp"

namespace mesh_import {

/// A boundary condition as the command line gives it: NAME=KIND or NAME=KIND:ARGUMENT.
struct BoundaryRequest {
  std::string name;
  const cases::BoundaryKind* kind = nullptr;
  double value = 0.0;     // of a discharge (m2/s) or a level (m)
  bool is_total = false;  // whether it is the discharge of the whole boundary, m3/s
  std::string file;       // of its series, to be copied into the case
  double sign = 1.0;      // -1 where positive discharges flow in
};

/// The kinds of a model as the command line writes them, as in "wall or level:V".
std::string forms_of_boundaries(bool with_sediments = false);

/// Reads one; throws CLI::ValidationError (wrong usage).
BoundaryRequest parse_boundary(const std::string& text);

/// Sets the kind and its argument; answers what was expected in their place, none if all is well.
std::optional<std::string> set_condition(const std::string& kind,
                                         const std::optional<std::string>& argument,
                                         BoundaryRequest& request);

struct Boundary {
  std::string name;  // of the line; empty for edges without a name
  bool is_given = false;
  const cases::BoundaryKind* kind = cases::boundary_kind("wall");
  double value = 0.0;     // m2/s or m; the first one of a series
  bool is_total = false;  // whether values are discharges of the whole boundary, m3/s
  cases::Series series;   // without a name where there is none
  int n_edges = 0;
  double length = 0.0;  // m

  bool lets_water_pass() const { return kind->code != edge_code::wall && n_edges > 0; }
};

/// The boundary that a request asks for, without its edges; reads its series, whose file in the
/// case gets a name that is not taken yet, and takes it. Throws tools::Error.
Boundary boundary_of(const BoundaryRequest& request, std::set<std::string>& taken_files);

struct Boundaries {
  std::vector<Boundary> list;
  std::vector<int> of_edge;  // index into list, -1 for an interior edge
  /// Of the edges of a total discharge: the part of it that a metre takes, 1/m.
  std::vector<double> share_of_edge;
};

/// Every boundary edge gets the boundary of its line; a line that no request names, and edges
/// without a line, are walls. Throws tools::Error for unknown names and unreadable series.
Boundaries assign_boundaries(const Mesh& mesh, const std::vector<Edge>& edges,
                             const EdgeIndex& index, const std::vector<BoundaryRequest>& requests);

/// The table of all boundaries, for the user.
std::string boundary_table(const Boundaries& boundaries);

}  // namespace mesh_import
