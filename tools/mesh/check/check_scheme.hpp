// Whether the flux scheme bears what it is asked to.
#pragma once

#include <vector>

#include "mesh/check/cell_values.hpp"
#include "mesh/check/checked_case.hpp"
#include "mesh/check/data_file.hpp"
#include "mesh/check/findings.hpp"

namespace tools::check {

/// Reports rain, and a small dry depth, on ground that is steeper than the first scheme bears; the
/// mesh must be whole.
void check_scheme(const DataFile& data, const CheckedCase& checked,
                  const std::vector<CellValues>& cells, Findings& findings);

}  // namespace tools::check
