// Reads meshes by the conventions of UGRID 1.0 in NetCDF.
#pragma once

#include <string>

#include "mesh/mesh.hpp"

namespace mesh_import {

/// The one mesh of two dimensions in a file, of triangles and quadrilaterals, with the elevation of
/// its nodes or else the bed of its cells. The format names neither lines nor surfaces. Throws
/// tools::Error, also where this program was built without the netCDF library.
Mesh read_ugrid(const std::string& path);

}  // namespace mesh_import
