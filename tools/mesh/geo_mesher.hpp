// Meshes a geometry of Gmsh.
#pragma once

#include <string>

#include "mesh/mesh.hpp"

namespace mesh_import {

/// The mesh of the surfaces of a .geo file, made by Gmsh as `gmsh -2` would without the user's
/// settings. Such a file is a program: one that runs commands is refused unless they are allowed.
/// Throws tools::Error, also where this program was built without Gmsh's library.
Mesh mesh_geo(const std::string& path, bool allows_commands);

}  // namespace mesh_import
