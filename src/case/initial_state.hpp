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

/// The largest initial depth of all cells, m; 0 without any.
double largest_initial_depth(const Case& contents);
/// The smallest characteristic length of all cells, m; 1e20 without any.
double smallest_char_length(const Mesh& mesh);

}  // namespace cases
