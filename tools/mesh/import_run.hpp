// How long an imported case runs, and what it records.
#pragma once

#include <optional>
#include <ostream>

#include "mesh/case_writer.hpp"
#include "mesh/import_options.hpp"

namespace mesh_import {

/// Title, end, times of the outputs and numerical parameters of `contents`, which has its
/// boundaries already, and its gauges: where they were asked for, or else one in the lowest cell.
/// Throws tools::Error.
void import_run(const ImportOptions& options, Case& contents, std::ostream& out);

/// When the outputs of `contents`, whose end is known, are written: every tenth of the run without
/// an interval (s). Snapshots have round times, unless they are there already; envelopes, gauges
/// and sections, of which only the interval can be chosen, come a little more often instead, so
/// that the last one comes shortly before the end.
void set_outputs(std::optional<double> interval, Case& contents, std::ostream& out);

}  // namespace mesh_import
