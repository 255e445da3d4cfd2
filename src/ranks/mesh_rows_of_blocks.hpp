// What files of results list of a mesh, from the blocks in which ranks have read it.
#pragma once

#include "case/MeshRows.hpp"
#include "ranks/CaseBlocks.hpp"
#include "ranks/Group.hpp"

namespace ranks {

/// The nodes and cells of the block of this rank, `origin` (m) added: those that
/// cases::all_rows_of() gives of the whole case. Called by all ranks.
cases::MeshRows mesh_rows_of_blocks(Group& group, const CaseBlocks& blocks,
                                    physics::PlanPoint origin);

}  // namespace ranks
