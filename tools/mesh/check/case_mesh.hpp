// Reads the mesh of a case past its errors.
#pragma once

#include "mesh/check/checked_case.hpp"
#include "mesh/check/data_file.hpp"
#include "mesh/check/findings.hpp"

namespace tools::check {

/// Reads the mesh files, and reports what is malformed, out of range, or no boundary of the model.
void read_mesh(const DataFile& data, CheckedCase& checked, Findings& findings);

}  // namespace tools::check
