#include "mesh/boundaries.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <cmath>
#include <set>

#include "mesh/fields.hpp"
#include "mesh/numbers.hpp"
#include "mesh/series_table.hpp"
#include "mesh/units.hpp"
#include "support/Error.hpp"
#include "utils/counted.hpp"
#include "utils/number_text.hpp"
#include "utils/stop.hpp"

namespace mesh_import {

namespace {

using Argument = cases::BoundaryKind::Argument;

/// A file name without spaces or signs that mean something elsewhere, and not taken yet.
std::string series_name(const std::string& boundary, std::set<std::string>& taken) {
  std::string name = "boundary_";
  for (const char c : boundary) {
    name += std::isalnum(static_cast<unsigned char>(c)) || c == '-' ? c : '_';
  }
  std::string file = name + ".txt";
  for (int k = 2; !taken.insert(file).second; ++k) file = name + "_" + std::to_string(k) + ".txt";
  return file;
}

std::vector<Boundary> boundaries_of_lines(const Mesh& mesh,
                                          const std::vector<BoundaryRequest>& requests) {
  std::vector<Boundary> list(mesh.line_names.size() + 1);  // the last one has no name
  for (std::size_t i = 0; i < list.size(); ++i) {
    if (i < mesh.line_names.size()) list[i].name = mesh.line_names[i];
  }
  std::set<std::string> file_names;
  for (const auto& request : requests) {
    const auto line = std::find(mesh.line_names.begin(), mesh.line_names.end(), request.name) -
                      mesh.line_names.begin();
    if (line == static_cast<std::ptrdiff_t>(mesh.line_names.size())) {
      throw tools::Error("--boundary " + request.name + "=" + request.kind->name +
                         ": the mesh has no line \"" + request.name +
                         "\"; it has: " + list_of_names(mesh.line_names) + ".");
    }
    Boundary& boundary = list[static_cast<std::size_t>(line)];
    if (boundary.is_given) {
      throw tools::Error("--boundary " + request.name + ": given twice; expected it once.");
    }
    boundary = boundary_of(request, file_names);
  }
  return list;
}

/// Pieces of a line that follow no edge of the mesh, as where a node string leaves out nodes.
struct StrayPieces {
  std::size_t n_pieces = 0, n_stray = 0;
  LinePiece first = {};

  void add(const LinePiece& piece, bool is_stray) {
    ++n_pieces;
    if (is_stray && n_stray++ == 0) first = piece;
  }
  void warn(const Mesh& mesh, const std::string& name) const {
    if (n_stray == 0) return;
    const auto place = [&mesh](int node) {
      if (node < 0) return std::string("a node of no cell");
      const Node& at = mesh.nodes[static_cast<std::size_t>(node)];
      return shown_point(at.x, at.y);
    };
    utils::warn("the line \"" + name + "\": " + std::to_string(n_stray) + " of " +
                utils::counted(n_pieces, "piece") + " follow no edge of the mesh, the first from " +
                place(first.node1) + " to " + place(first.node2) +
                "; the edges there get no condition of it. Expected every node along the line.");
  }
};

std::string padded(const std::string& text, std::size_t width) {
  return text + std::string(width > text.size() ? width - text.size() : 0, ' ');
}

std::string right_aligned(const std::string& text, std::size_t width) {
  return std::string(width > text.size() ? width - text.size() : 0, ' ') + text;
}

/// The first value, with its unit; for a discharge also how much flows in or out.
std::string first_value(const Boundary& boundary) {
  if (boundary.kind->imposes_level()) return shown(boundary.value) + " m";
  if (!boundary.kind->imposes_discharge()) return "-";
  const std::string text = shown(boundary.value) + (boundary.is_total ? " m3/s" : " m2/s");
  if (boundary.value == 0.0) return text;
  const std::string way = boundary.value < 0.0 ? "in" : "out";
  if (boundary.is_total) return text + " (" + way + ")";
  const double total = std::abs(boundary.value * boundary.length);
  return text + " (" + shown(total) + " m3/s " + way + ")";
}

/// How the command line writes a kind, as in "level:V".
std::string form_of(const cases::BoundaryKind& kind) {
  const std::string name = kind.name;
  switch (kind.argument) {
    case Argument::none:
      return name;
    case Argument::value:
      return name + ":V";
    case Argument::series:
      return name + ":FILE";
  }
  return name;
}

/// Takes a value with its unit; false where it is none of the kind's.
bool set_value(const std::string& text, BoundaryRequest& request) {
  const auto measured = parse_measured(text);
  if (!measured) return false;
  request.value = measured->value;
  if (measured->unit.empty()) return true;
  const auto unit = parse_unit(measured->unit);
  if (!unit) return false;
  request.value *= unit->in_si;
  request.is_total = unit->quantity == Quantity::discharge;
  if (request.kind->imposes_level()) return unit->quantity == Quantity::length;
  return request.is_total || unit->quantity == Quantity::unit_discharge;
}

}  // namespace

std::string forms_of_boundaries(bool with_sediments) {
  std::vector<std::string> forms;
  for (const cases::BoundaryKind& kind : cases::boundary_kinds) {
    if (kind.with_sediments || !with_sediments) forms.push_back(form_of(kind));
  }
  return utils::alternatives(forms);
}

Boundary boundary_of(const BoundaryRequest& request, std::set<std::string>& taken_files) {
  Boundary boundary;
  boundary.name = request.name;
  boundary.is_given = true;
  boundary.kind = request.kind;
  boundary.value = request.value * request.sign;
  boundary.is_total = request.is_total;
  if (!request.kind->has_series()) return boundary;
  ImposedSeries imposed = read_boundary_series(request.file, *request.kind);
  boundary.series = std::move(imposed.series);
  boundary.is_total = imposed.is_total;
  boundary.series.file = series_name(request.name, taken_files);
  for (double& value : boundary.series.values) value *= request.sign;
  boundary.value = boundary.series.values.front();
  return boundary;
}

std::optional<std::string> set_condition(const std::string& kind,
                                         const std::optional<std::string>& argument,
                                         BoundaryRequest& request) {
  request.kind = cases::boundary_kind(kind);
  if (request.kind == nullptr) return "one of the kinds " + forms_of_boundaries();
  switch (request.kind->argument) {
    case Argument::none:
      if (argument) return "nothing after \"" + kind + "\"";
      break;
    case Argument::value:
      if (!set_value(argument.value_or(""), request)) {
        return "a number after \"" + kind + ":\", " +
               (request.kind->imposes_level() ? "in m" : "in m2/s, or in m3/s as in -40m3/s");
      }
      break;
    case Argument::series:
      if (argument.value_or("").empty()) return "a file after \"" + kind + ":\"";
      request.file = *argument;
      break;
  }
  return std::nullopt;
}

BoundaryRequest parse_boundary(const std::string& text) {
  const auto refuse = [&text](const std::string& expected) {
    throw CLI::ValidationError("--boundary", "found \"" + text + "\", expected " + expected);
  };
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos || equals == 0) {
    refuse("NAME=KIND, as in outflow=transmissive or inflow=discharge:-2.5");
  }
  BoundaryRequest request;
  request.name = text.substr(0, equals);
  const std::size_t colon = text.find(':', equals);
  std::optional<std::string> argument;
  if (colon != std::string::npos) argument = text.substr(colon + 1);
  const auto expected =
      set_condition(text.substr(equals + 1, colon - (equals + 1)), argument, request);
  if (expected) refuse(*expected);
  return request;
}

Boundaries assign_boundaries(const Mesh& mesh, const std::vector<Edge>& edges,
                             const EdgeIndex& index, const std::vector<BoundaryRequest>& requests) {
  Boundaries boundaries;
  boundaries.list = boundaries_of_lines(mesh, requests);
  const auto unnamed = static_cast<int>(mesh.line_names.size());
  auto& of_edge = boundaries.of_edge;
  of_edge.assign(edges.size(), -1);
  for (std::size_t i = 0; i < edges.size(); ++i) {
    if (edges[i].is_boundary()) of_edge[i] = unnamed;
  }
  const auto boundary = [&](int i) -> Boundary& {
    return boundaries.list[static_cast<std::size_t>(i)];
  };
  std::vector<StrayPieces> strays(mesh.line_names.size());
  for (const LinePiece& piece : mesh.line_pieces) {
    const int edge = index.find(piece.node1, piece.node2);
    strays[static_cast<std::size_t>(piece.line)].add(piece, edge < 0);
    if (edge < 0 || !edges[static_cast<std::size_t>(edge)].is_boundary()) continue;
    int& present = of_edge[static_cast<std::size_t>(edge)];
    if (present == piece.line) continue;
    if (present != unnamed && boundary(present).is_given) {
      if (!boundary(piece.line).is_given) continue;
      const Node& a = mesh.nodes[static_cast<std::size_t>(piece.node1)];
      throw tools::Error("the boundary edge at " + shown_point(a.x, a.y) + " belongs to \"" +
                         boundary(present).name + "\" and to \"" + boundary(piece.line).name +
                         "\"; expected a --boundary for one of them.");
    }
    present = piece.line;
  }
  for (std::size_t i = 0; i < edges.size(); ++i) {
    if (of_edge[i] < 0) continue;
    const Node& a = mesh.nodes[static_cast<std::size_t>(edges[i].node1)];
    const Node& b = mesh.nodes[static_cast<std::size_t>(edges[i].node2)];
    ++boundary(of_edge[i]).n_edges;
    boundary(of_edge[i]).length += std::hypot(b.x - a.x, b.y - a.y);
  }
  for (std::size_t line = 0; line < strays.size(); ++line) {
    strays[line].warn(mesh, mesh.line_names[line]);
  }
  for (const Boundary& given : boundaries.list) {
    if (given.is_given && given.n_edges == 0) {
      throw tools::Error("--boundary " + given.name + "=" + given.kind->name + ": the line \"" +
                         given.name +
                         "\" has no edge on the boundary of the mesh; expected one that has "
                         "cells on one side only (--section takes inner lines).");
    }
  }
  return boundaries;
}

std::string boundary_table(const Boundaries& boundaries) {
  constexpr std::size_t kind_width = 22, edges_width = 8, length_width = 14;
  std::size_t name_width = 12;
  for (const auto& boundary : boundaries.list) {
    name_width = std::max(name_width, boundary.name.size() + 2);
  }
  const auto row = [&](const std::string& name, const std::string& kind, const std::string& n,
                       const std::string& length, const std::string& value) {
    return padded(name, name_width) + padded(kind, kind_width) + right_aligned(n, edges_width) +
           right_aligned(length, length_width) + "  " + value + "\n";
  };
  std::string table = row("boundary", "kind", "edges", "length", "first value");
  for (const auto& boundary : boundaries.list) {
    if (boundary.n_edges == 0) continue;
    const bool is_named = !boundary.name.empty();
    table +=
        row(is_named ? boundary.name : "(no name)",
            boundary.kind->name + std::string(is_named && !boundary.is_given ? " (not given)" : ""),
            std::to_string(boundary.n_edges), shown(boundary.length) + " m", first_value(boundary));
  }
  return table;
}

}  // namespace mesh_import
