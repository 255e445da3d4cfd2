// Reads meshes in the format .2dm of SMS.
#pragma once

#include <string>

#include "mesh/mesh.hpp"

namespace mesh_import {

/// The cards ND, E3T, E4Q and NS; the name (card MAT or MATNAME) or else the number of a material
/// names a surface, the name or else the number of a node string names a line. Throws tools::Error.
Mesh read_2dm(const std::string& path);

}  // namespace mesh_import
