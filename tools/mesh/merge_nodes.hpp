// Nodes at one place on the boundary of a mesh: cracks that no water passes, and their mending.
#pragma once

#include <optional>
#include <ostream>

#include "mesh/mesh.hpp"

namespace mesh_import {

/// Makes one node of those of the boundary that lie no further apart than `distance` (m), with the
/// elevation of the first; without a distance, warns of those that coincide. The cells are
/// prepared. Throws tools::Error where a cell would lose a side.
void merge_boundary_nodes(Mesh& mesh, std::optional<double> distance, std::ostream& out);

}  // namespace mesh_import
