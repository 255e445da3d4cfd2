#include "mesh/import_edges.hpp"

#include <cmath>
#include <string>
#include <utility>

#include "mesh/edges.hpp"
#include "mesh/import_features.hpp"
#include "mesh/import_fields.hpp"
#include "mesh/numbers.hpp"
#include "mesh/sections.hpp"
#include "support/Error.hpp"
#include "utils/counted.hpp"

namespace mesh_import {

namespace {

void check_sediment_boundaries(const Case& contents) {
  if (contents.sediment.empty()) return;
  for (const Boundary& boundary : contents.boundaries.list) {
    if (boundary.kind->with_sediments) continue;
    throw tools::Error("--boundary " + boundary.name + "=" + boundary.kind->name +
                       ": the model with sediments has no such boundary; expected " +
                       forms_of_boundaries(true) + ".");
  }
}

/// Adds the sections and tells which edges they hold, which keep their direction.
std::vector<bool> set_sections(const std::vector<std::string>& requests, const EdgeIndex& index,
                               Case& contents) {
  std::vector<bool> is_fixed(contents.edges.size(), false);
  for (const auto& request : requests) {
    Section section = make_section(contents.mesh, contents.edges, index, request);
    for (const int edge : section.edges) {
      if (is_fixed[static_cast<std::size_t>(edge)]) {
        throw tools::Error("--section " + request +
                           ": the line shares an edge with another section; expected lines of "
                           "their own.");
      }
      is_fixed[static_cast<std::size_t>(edge)] = true;
    }
    contents.sections.push_back(std::move(section));
  }
  return is_fixed;
}

void tell_section(const Section& section, const std::vector<Edge>& edges,
                  const std::vector<double>& bed, std::ostream& out) {
  std::size_t n_downhill = 0;
  for (const int i : section.edges) {
    const Edge& edge = edges[static_cast<std::size_t>(i)];
    n_downhill +=
        bed[static_cast<std::size_t>(edge.left)] > bed[static_cast<std::size_t>(edge.right)];
  }
  out << "Section " << section.name << ": " << utils::counted(section.edges.size(), "edge") << ", "
      << shown(section.length) << " m, discharge positive towards ("
      << shown(std::round(section.nx * 1e3) / 1e3) << ", "
      << shown(std::round(section.ny * 1e3) / 1e3) << ")";
  if (n_downhill > 0) out << "; " << n_downhill << " of them name the higher cell first";
  out << ".\n";
}

}  // namespace

void import_edges(const ImportOptions& options, BoundaryRequests requests, Case& contents,
                  std::ostream& out) {
  contents.edges = make_edges(contents.mesh);
  const EdgeIndex index(contents.edges, contents.mesh.nodes.size());
  add_drawn_boundaries(options, contents, requests, out);
  contents.boundaries =
      assign_boundaries(contents.mesh, contents.edges, index, requests.conditions);
  check_sediment_boundaries(contents);
  spread_discharges(requests.spreads, contents, out);
  std::vector<bool> is_fixed = set_sections(options.sections, index, contents);
  add_drawn_sections(options, index, is_fixed, contents, out);
  const std::vector<double> bed = bed_of_cells(contents);
  const int n_turned = turn_edges_uphill(contents.edges, bed, is_fixed);
  out << "Turned " << utils::counted(n_turned, "edge")
      << " to name the lower cell first, so that water at rest stays at rest.\n";
  for (const Section& section : contents.sections) {
    tell_section(section, contents.edges, bed, out);
  }
  if (options.no_boundary_sections) return;
  for (Section& section : boundary_sections(contents.mesh, contents.edges, contents.boundaries)) {
    out << "The discharge along the boundary " << section.name
        << " is recorded, positive where it leaves.\n";
    contents.sections.push_back(std::move(section));
  }
}

}  // namespace mesh_import
