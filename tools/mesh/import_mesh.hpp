// The mesh of an imported case, and the terrain on its nodes.
#pragma once

#include <ostream>

#include "mesh/import_options.hpp"
#include "mesh/mesh.hpp"

namespace mesh_import {

/// Reads the mesh, makes its cells such that the simulator can use them, and sets the elevation of
/// its nodes; `out` is told what was read and changed. Throws tools::Error.
Mesh import_mesh(const ImportOptions& options, std::ostream& out);

}  // namespace mesh_import
