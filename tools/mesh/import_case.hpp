// A case of a mesh, whatever the mesh comes from.
#pragma once

#include <functional>
#include <ostream>

#include "mesh/import_options.hpp"
#include "mesh/mesh.hpp"

namespace mesh_import {

/// Reads or makes a mesh, whose cells the simulator can use, and tells what it did. It may complete
/// the options, as with the reference system of what it reads. Throws tools::Error.
using MeshSource = std::function<Mesh(ImportOptions&, std::ostream&)>;

/// Makes the case that the options describe of a mesh, and tells what became of it; whatever is
/// wrong usage is refused before a file is read. Throws tools::Error and CLI::ValidationError.
void import_case(ImportOptions options, const MeshSource& source, std::ostream& out);

}  // namespace mesh_import
