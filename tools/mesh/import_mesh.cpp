#include "mesh/import_mesh.hpp"

#include <algorithm>

#include "mesh/cells.hpp"
#include "mesh/fields.hpp"
#include "mesh/merge_nodes.hpp"
#include "mesh/mesh_file.hpp"
#include "mesh/numbers.hpp"
#include "mesh/raster.hpp"
#include "support/GroundSurvey.hpp"
#include "utils/counted.hpp"
#include "utils/stop.hpp"

namespace mesh_import {

namespace {

void set_terrain(const ImportOptions& options, Mesh& mesh, std::ostream& out) {
  if (!options.terrain.empty()) {
    const Raster terrain(options.terrain, mesh.epsg);
    if (!mesh.epsg) mesh.epsg = terrain.epsg();
    const int n_filled = set_elevations(mesh, terrain, options.fill);
    if (n_filled > 0) {
      out << "No terrain under " << utils::counted(n_filled, "node") << ": filled with "
          << shown(*options.fill) << " m.\n";
    }
  }
  const auto [low, high] = std::minmax_element(
      mesh.nodes.begin(), mesh.nodes.end(), [](const Node& a, const Node& b) { return a.z < b.z; });
  out << "Elevations run from " << shown(low->z) << " to " << shown(high->z) << " m.\n";
}

/// Where the cells have beds of their own, elevations of nodes mean nothing.
void warn_of_odd_ground(const Mesh& mesh, bool has_bed) {
  const auto point = [&](int node) {
    const Node& at = mesh.nodes[static_cast<std::size_t>(node)];
    return tools::GroundPoint{at.x, at.y, has_bed ? 0.0 : at.z};
  };
  tools::GroundSurvey survey;
  for (int i = 0; i < static_cast<int>(mesh.nodes.size()); ++i) survey.add_node(point(i));
  for (const Cell& cell : mesh.cells) {
    survey.add_cell({point(cell.node(0)), point(cell.node(1)), point(cell.node(2))});
  }
  for (const auto& [kind, text] : survey.remarks()) {
    if (has_bed && kind == "flat ground") continue;
    utils::warn(text + (text.back() == '?' ? "" : "."));
  }
}

}  // namespace

Mesh read_mesh(ImportOptions& options, std::ostream& out) {
  Mesh mesh = read_mesh_file(options.mesh, options.allow_commands);
  if (!options.epsg && mesh.epsg) {
    require_known_system(*mesh.epsg, options.mesh);
    options.epsg = mesh.epsg;
  }
  mesh.epsg = options.epsg;
  const CellChanges changes = prepare_cells(mesh);
  out << "Read " << options.mesh << " (" << mesh.format
      << "): " << utils::counted(mesh.nodes.size(), "node") << ", "
      << utils::counted(mesh.cells.size(), "triangle") << ".\n";
  for (const auto& remark : mesh.remarks) out << remark << "\n";
  if (changes.n_split > 0) {
    out << "Split " << utils::counted(changes.n_split, "quadrilateral")
        << " into triangles, along the shorter diagonal.\n";
  }
  if (changes.n_repeated_cells > 0) {
    out << "Joined " << utils::counted(changes.n_repeated_cells, "cell")
        << " that the file repeats.\n";
  }
  if (changes.n_unused_nodes > 0) {
    out << "Left out " << utils::counted(changes.n_unused_nodes, "node") << " that no cell has.\n";
  }
  out << "Turned " << utils::counted(changes.n_turned, "cell") << " to run counter-clockwise.\n";
  merge_boundary_nodes(mesh, options.merge_distance, out);
  return mesh;
}

void set_ground(const ImportOptions& options, Mesh& mesh, std::ostream& out) {
  set_terrain(options, mesh, out);
  warn_of_odd_ground(mesh, !options.bed.empty() || !mesh.bed_of_cell.empty());
}

}  // namespace mesh_import
