// Parts of one case made into one, as cells go from rank to rank.
#pragma once

#include <vector>

#include "case/Part.hpp"

namespace ranks {

/// What any of some parts of a case holds of mesh and fields, each cell, edge and node once and in
/// the order of its number in the whole case. Nobody owns its cells, and it has no parameters.
cases::Part united(const std::vector<const cases::Part*>& parts);

/// Where numbers stand among distinct ascending ones, which hold them all. Numbers that mostly
/// ascend take a time that goes with their count.
std::vector<cases::Number> places_among(const std::vector<cases::Number>& distinct,
                                        const std::vector<cases::Number>& numbers);

}  // namespace ranks
