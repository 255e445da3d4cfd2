// Reads a case and shares it out, without a whole mesh on any rank.
#pragma once

#include <string>
#include <vector>

#include "case/MeshRows.hpp"
#include "case/implausible_case.hpp"
#include "case/input_sums.hpp"
#include "case/read_case.hpp"
#include "ranks/Blocks.hpp"
#include "ranks/share_of.hpp"

namespace ranks {

struct ReadShare {
  Share share;
  cases::DataFile data;
  cases::MeshCounts counts;              ///< of the whole mesh
  cases::InputSums input_sums;           ///< of the whole case
  AreaLoss area_loss;                    ///< of all cells; on rank 0
  cases::ImplausibleFields implausible;  ///< of the whole case; on rank 0
  cases::MeshRows mesh_rows;  ///< of the blocks of this rank; only where the case asks for results
                              ///< that list its mesh
  Blocks cells;               ///< who knows the owner of which cell ...
  std::vector<int> owners;    ///< ... and those of the block of this rank
};

/// Ends on all ranks with what cases::read_case() ends with, on the others as a Refusal that tells
/// it. Rank 0 alone tells the listeners and the diagnostics. Called by all ranks.
ReadShare read_share(Group& group, const std::string& data_file, const cases::Listeners& listeners,
                     cases::Diagnostics& diagnostics);

}  // namespace ranks
