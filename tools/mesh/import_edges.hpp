// The edges of an imported case: boundaries, sections, and which cell each one names first.
#pragma once

#include <ostream>
#include <vector>

#include "mesh/boundaries.hpp"
#include "mesh/case_writer.hpp"
#include "mesh/import_options.hpp"
#include "mesh/spread.hpp"

namespace mesh_import {

/// Makes the edges of `contents.mesh`, which has its fields already, and gives those on the
/// boundary their conditions. The normals of the edges of a section point in its direction; all
/// other edges name the lower cell first. Throws tools::Error.
void import_edges(const ImportOptions& options, BoundaryRequests requests, Case& contents,
                  std::ostream& out);

}  // namespace mesh_import
