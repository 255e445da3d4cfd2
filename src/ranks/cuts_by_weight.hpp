// Where to cut a curve over cells into runs, one for each rank.
#pragma once

#include <span>
#include <vector>

namespace ranks {

/// Where the runs begin that weigh about as much as each other, of patches that do not part, and
/// the end of the last. A run weighs less than the mean and one patch more, unless runs behind it
/// would have no patch. Weights are finite and not below 0. There are as many runs as are wanted,
/// at least 1; fewer where there are fewer patches.
std::vector<int> cuts_of(std::span<const double> weights, int runs);

}  // namespace ranks
