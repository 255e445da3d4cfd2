// A case in blocks of its files, one for every rank: no rank has more than its share.
#pragma once

#include <vector>

#include "case/AreaLoss.hpp"
#include "case/Case.hpp"
#include "ranks/Blocks.hpp"

namespace ranks {

/// Coordinates of some nodes, m.
struct Corners {
  std::vector<double> x, y, z;
};

/// The block of this rank of every file, and where those of the others begin.
struct CaseBlocks {
  Blocks nodes, cells, edges;
  Corners corners;  ///< of the nodes here

  /// The cells here with their fields, over the nodes that they name; series, rain, soils and
  /// parameters of the whole case. No edges.
  cases::Case contents;
  std::vector<Number> node_number;  ///< in the whole case, of the nodes of `contents`

  /// The edges here: of cells and nodes by their numbers in the whole case, but boundaries name
  /// edges by their place in this block.
  cases::Mesh edges_here;
  Number first_boundary = 0;  ///< number of the first boundary here in the whole case

  AreaLoss area_loss;  ///< of all cells on rank 0, of nobody knows which elsewhere
};

/// The corners under distinct numbers, ascending, of whoever has them. Called by all ranks.
Corners corners_of(Group& group, const CaseBlocks& blocks, const std::vector<Number>& nodes);

}  // namespace ranks
