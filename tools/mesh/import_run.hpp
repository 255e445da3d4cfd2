// How long an imported case runs, and what it records.
#pragma once

#include <ostream>

#include "mesh/case_writer.hpp"
#include "mesh/import_options.hpp"

namespace mesh_import {

/// Title, end, times of the outputs and numerical parameters of `contents`, which has its
/// boundaries already, and its gauges: where they were asked for, or else one in the lowest cell.
/// Throws tools::Error.
void import_run(const ImportOptions& options, Case& contents, std::ostream& out);

}  // namespace mesh_import
