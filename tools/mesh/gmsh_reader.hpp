// Reads meshes in Gmsh's formats MSH 2.2 and 4.1, ASCII and binary.
#pragma once

#include <string>

#include "mesh/mesh.hpp"

namespace mesh_import {

/// The lines, triangles and quadrilaterals of the file; physical groups give the names (a group
/// without a name is called by its number). Throws tools::Error.
///
/// Intended: no use of Gmsh's own library here. It ends the process on some damaged binary files,
/// and accepts others in part without a word.
Mesh read_msh(const std::string& path);

}  // namespace mesh_import
