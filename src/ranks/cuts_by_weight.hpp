// A Hilbert curve over the cells of all ranks, and where to cut it into runs, one for each.
#pragma once

#include <span>
#include <vector>

#include "engine/numbering.hpp"
#include "physics/cell_geometry.hpp"
#include "ranks/Group.hpp"

namespace ranks {

/// The curve over the centres of the cells of all ranks; here are those of this one. Called by all
/// ranks.
engine::HilbertCurve curve_over(Group& group, std::span<const physics::SpacePoint> centers);

/// Where the runs begin that weigh about as much as each other, of patches that do not part, and
/// the end of the last. A run weighs less than the mean and one patch more, unless runs behind it
/// would have no patch. Weights are finite and not below 0. There are as many runs as are wanted,
/// at least 1; fewer where there are fewer patches.
std::vector<int> cuts_of(std::span<const double> weights, int runs);

}  // namespace ranks
