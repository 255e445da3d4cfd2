// The values of an imported case's cells.
#pragma once

#include <ostream>
#include <vector>

#include "mesh/case_writer.hpp"
#include "mesh/import_options.hpp"

namespace mesh_import {

/// Bed, friction, sediments, water, rain and soils of the cells of `contents.mesh`; `out` is told
/// what the user may not expect. Throws tools::Error.
void import_fields(const ImportOptions& options, Case& contents, std::ostream& out);

/// Bed level of the cells, the sediments included, m.
std::vector<double> bed_of_cells(const Case& contents);

}  // namespace mesh_import
