// Mesh files of every format.
#pragma once

#include <string>

#include "mesh/mesh.hpp"

namespace mesh_import {

/// Reads a mesh; its extension tells the format (.msh, .geo, .2dm, .slf, .nc). A .geo may run
/// commands only if they are allowed. Throws tools::Error.
Mesh read_mesh_file(const std::string& path, bool allows_commands = false);

/// The bytes of a file. Throws tools::Error.
std::string read_whole_file(const std::string& path);

}  // namespace mesh_import
