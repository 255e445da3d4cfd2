// The state of a case at its start, cell by cell.
#pragma once

#include "case/Case.hpp"
#include "physics/initial_water.hpp"

namespace cases {

/// Level of the bed without its sediments, m.
double bed_rock_of(const Case& contents, Number cell);
/// Level of the bed with its sediments, m.
double bed_level_of(const Case& contents, Number cell);
physics::InitialWater initial_water_of(const Case& contents, Number cell);

}  // namespace cases
