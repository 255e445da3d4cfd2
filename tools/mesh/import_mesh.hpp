// The mesh of an imported case, and the terrain on its nodes.
#pragma once

#include <ostream>

#include "mesh/import_options.hpp"
#include "mesh/mesh.hpp"

namespace mesh_import {

/// Reads the mesh and makes its cells such that the simulator can use them; `out` is told what was
/// read and changed. Throws tools::Error.
Mesh read_mesh(ImportOptions& options, std::ostream& out);

/// Gives the nodes the elevation of the terrain, and warns of ground that looks odd. Throws
/// tools::Error.
void set_ground(const ImportOptions& options, Mesh& mesh, std::ostream& out);

}  // namespace mesh_import
