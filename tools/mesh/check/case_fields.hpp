// Reads the per-cell files of a case, its rain and its soils past their errors.
#pragma once

#include "mesh/check/checked_case.hpp"
#include "mesh/check/data_file.hpp"
#include "mesh/check/findings.hpp"

namespace tools::check {

/// Reads the files with a value per cell and reports what is malformed. If the cells file is at
/// fault, files with a record per cell are only opened, here and below.
void read_fields(const DataFile& data, CheckedCase& checked, Findings& findings);

/// Reads and checks rain, soils, and the IDs that cells refer to them by.
void read_rain(const DataFile& data, CheckedCase& checked, Findings& findings);
void read_soils(const DataFile& data, CheckedCase& checked, Findings& findings);

}  // namespace tools::check
