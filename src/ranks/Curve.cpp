#include "ranks/Curve.hpp"

#include <algorithm>

#include "engine/aligned_vector.hpp"
#include "engine/centers.hpp"
#include "engine/numbering.hpp"

namespace ranks {

using engine::at;

Curve::Curve(const cases::Mesh& mesh, int cells_per_patch) : cells_per_patch_(cells_per_patch) {
  engine::ThreadTeam team(1);
  const engine::CentersOfCells centers = engine::centers_of(mesh, mesh.n_cells(), team);
  order_ = engine::order_along_hilbert_curve(centers.x, centers.y, team);
}

int Curve::patches() const {
  return (static_cast<int>(order_.size()) + cells_per_patch_ - 1) / cells_per_patch_;
}

std::vector<Cells> Curve::runs(const std::vector<int>& cuts) const {
  const auto place = [this](int patch) {
    return std::min(order_.size(), at(patch) * at(cells_per_patch_));
  };
  std::vector<Cells> runs;
  for (std::size_t run = 0; run + 1 < cuts.size(); ++run) {
    const auto begin = order_.begin();
    auto& cells = runs.emplace_back(begin + static_cast<std::ptrdiff_t>(place(cuts[run])),
                                    begin + static_cast<std::ptrdiff_t>(place(cuts[run + 1])));
    std::sort(cells.begin(), cells.end());
  }
  return runs;
}

}  // namespace ranks
