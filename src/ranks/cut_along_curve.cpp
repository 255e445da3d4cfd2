#include "ranks/cut_along_curve.hpp"

#include <algorithm>

#include "engine/Range.hpp"
#include "engine/centers.hpp"
#include "engine/numbering.hpp"

namespace ranks {

std::vector<std::vector<cases::Number>> cut_along_curve(const cases::Mesh& mesh, int ranks) {
  engine::ThreadTeam team(1);
  const engine::CentersOfCells centers = engine::centers_of(mesh, mesh.n_cells(), team);
  const std::vector<int> order = engine::order_along_hilbert_curve(centers.x, centers.y, team);
  std::vector<std::vector<cases::Number>> runs;
  for (int rank = 0; rank < ranks; ++rank) {
    const engine::Range share = engine::share_of(rank, ranks, order.size());
    if (share.size() == 0) continue;
    auto& cells = runs.emplace_back(order.begin() + share.begin, order.begin() + share.end);
    std::sort(cells.begin(), cells.end());
  }
  return runs;
}

}  // namespace ranks
