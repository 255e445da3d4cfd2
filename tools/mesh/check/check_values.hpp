// Whether the values of a case are plausible: most that are not were given in another unit.
#pragma once

#include <vector>

#include "case/Case.hpp"
#include "mesh/check/cell_values.hpp"
#include "mesh/check/findings.hpp"

namespace tools::check {

/// Depths, velocities and levels at the start.
void check_initial_state(const cases::CellFields& fields, const std::vector<CellValues>& cells,
                         Findings& findings);
void check_friction(const DataFile& data, const cases::CellFields& fields, Findings& findings);
void check_rain(const DataFile& data, const std::vector<cases::Hyetogram>& rain,
                Findings& findings);
void check_soils(const DataFile& data, const cases::CellFields& fields,
                 const std::vector<cases::Soil>& soils, Findings& findings);
/// Parameters of the sediments, by the rules of the simulator, and beyond.
void check_sediments(const DataFile& data, const cases::CellFields& fields, Findings& findings);

}  // namespace tools::check
