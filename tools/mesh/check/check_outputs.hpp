// Whether the outputs of a case can be recorded.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "mesh/check/cell_values.hpp"
#include "mesh/check/checked_case.hpp"
#include "mesh/check/data_file.hpp"
#include "mesh/check/findings.hpp"

namespace tools::check {

// Intervals that leave the end of the run unrecorded are reported, too; `first_step` is the first
// time step (s), where it is known.

void check_envelope(const DataFile& data, const std::optional<double>& first_step,
                    Findings& findings);
/// Reads the gauges file and reports gauges in no cell. Without geometry, pass no cells.
void check_gauges(const DataFile& data, const CheckedCase& checked,
                  const std::vector<CellValues>& cells, const std::optional<double>& first_step,
                  Findings& findings);
/// Reads the sections file; reports edges that do not exist, and normals on both sides.
void check_sections(const DataFile& data, const CheckedCase& checked,
                    const std::optional<double>& first_step, Findings& findings);
/// Reads the times of the snapshots, as text and in NetCDF; reports those that the run does not
/// reach, and those that results in NetCDF do not take.
void check_snapshots(const DataFile& data, Findings& findings);
/// Reports results that would destroy an input or each other, and those outside the folder of the
/// case.
void check_results(const std::string& data_file, Findings& findings);
/// Reports an output folder that is not there.
void check_output_folder(const DataFile& data, Findings& findings);

}  // namespace tools::check
