// From blocks of the files to what the ranks compute: every rank gets the cells that it owns and
// the ghosts around them from whoever has them.
#pragma once

#include <vector>

#include "ranks/CaseBlocks.hpp"
#include "ranks/Group.hpp"
#include "ranks/share_of.hpp"

namespace ranks {

/// The share of this rank, with so many rings of ghosts: the same bytes as share_of() makes of the
/// whole case. `owners`: of the cells in the block of this rank. Called by all ranks.
Share share_of_blocks(Group& group, CaseBlocks blocks, const std::vector<int>& owners, int rings);

}  // namespace ranks
