// Meshes a geometry of Gmsh.
#pragma once

#include <string>

#include "mesh/mesh.hpp"

namespace mesh_import {

/// The mesh of the surfaces of a .geo file, made by Gmsh as `gmsh -2` would. Throws tools::Error,
/// also where this program was built without Gmsh's library.
Mesh mesh_geo(const std::string& path);

}  // namespace mesh_import
