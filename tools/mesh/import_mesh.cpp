#include "mesh/import_mesh.hpp"

#include <algorithm>

#include "mesh/cells.hpp"
#include "mesh/fields.hpp"
#include "mesh/merge_nodes.hpp"
#include "mesh/mesh_file.hpp"
#include "mesh/numbers.hpp"
#include "utils/counted.hpp"

namespace mesh_import {

namespace {

Mesh read_mesh(const ImportOptions& options, std::ostream& out) {
  Mesh mesh = read_mesh_file(options.mesh, options.allow_commands);
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

void set_terrain(const ImportOptions& options, Mesh& mesh, std::ostream& out) {
  if (!options.terrain.empty()) {
    const int n_filled = set_elevations(mesh, Raster(options.terrain), options.fill);
    if (n_filled > 0) {
      out << "No terrain under " << utils::counted(n_filled, "node") << ": filled with "
          << shown(*options.fill) << " m.\n";
    }
  }
  const auto [low, high] = std::minmax_element(
      mesh.nodes.begin(), mesh.nodes.end(), [](const Node& a, const Node& b) { return a.z < b.z; });
  out << "Elevations run from " << shown(low->z) << " to " << shown(high->z) << " m.\n";
}

}  // namespace

Mesh import_mesh(const ImportOptions& options, std::ostream& out) {
  Mesh mesh = read_mesh(options, out);
  set_terrain(options, mesh, out);
  return mesh;
}

}  // namespace mesh_import
