// Cells that get other ranks: the static data of a part goes from those who have it straight to
// those who need it.
#pragma once

#include <vector>

#include "ranks/Group.hpp"
#include "ranks/share_of.hpp"

namespace ranks {

/// The share of this rank once the cells belong to others, as share_of() would make it of the whole
/// case, but edges between two ghosts of the last ring may be missing. `part`: what the rank has
/// now; `owners`: to whom its cells belong then, ghosts included. What stays with a rank does not
/// travel. Called by all ranks.
Share share_anew(Group& group, const cases::Part& part, const std::vector<int>& owners);

}  // namespace ranks
