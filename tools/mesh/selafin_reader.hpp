// Reads meshes in the format SELAFIN (SERAFIN), with numbers of single or double precision.
#pragma once

#include <string>

#include "mesh/mesh.hpp"

namespace mesh_import {

/// The mesh, and the bottom of the first time step, whose variable is called BOTTOM or FOND, as the
/// elevation of its nodes. The format names neither lines nor surfaces. Throws tools::Error.
Mesh read_selafin(const std::string& path);

}  // namespace mesh_import
