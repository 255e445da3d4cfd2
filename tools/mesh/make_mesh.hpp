// The mesh of a case that is made from an outline.
#pragma once

#include <ostream>

#include "mesh/make_options.hpp"
#include "mesh/mesh.hpp"

namespace mesh_import {

/// Meshes what is drawn, and tells `out` what the mesh is like. Where no reference system is asked
/// for, `of_case` gets that of the outline. Throws tools::Error.
Mesh make_mesh(const MakeOptions& options, ImportOptions& of_case, std::ostream& out);

}  // namespace mesh_import
