// The state of a case at its start, cell by cell.
#pragma once

#include <vector>

#include "case/Case.hpp"
#include "physics/initial_water.hpp"

namespace cases {

/// Level of the bed without its sediments, m.
double bed_rock_of(const Case& contents, Number cell);
/// Level of the bed with its sediments, m.
double bed_level_of(const Case& contents, Number cell);
/// Of all cells, m.
std::vector<double> bed_levels_of(const Case& contents);
/// Whether that is the mean of the nodes of a cell, and nothing else makes the bed.
bool nodes_make_bed(const Case& contents);
physics::InitialWater initial_water_of(const Case& contents, Number cell);

}  // namespace cases
