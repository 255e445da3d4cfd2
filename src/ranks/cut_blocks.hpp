// The cells of a case in blocks shared out among ranks.
#pragma once

#include <vector>

#include "ranks/CaseBlocks.hpp"
#include "ranks/Group.hpp"

namespace ranks {

/// The owners of the cells of the block of this rank: those that cut_along_curve() gives for as
/// many ranks. Called by all ranks.
std::vector<int> owners_along_curve(Group& group, const CaseBlocks& blocks);

}  // namespace ranks
