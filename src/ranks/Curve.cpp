#include "ranks/Curve.hpp"

#include <algorithm>
#include <numeric>

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

std::vector<double> Curve::sums_of_patches(std::span<const double> of_cells) const {
  std::vector<double> sums(at(patches()), 0.0);
  for (std::size_t k = 0; k < order_.size(); ++k) {
    sums[k / at(cells_per_patch_)] += of_cells[at(order_[k])];
  }
  return sums;
}

std::vector<int> Curve::cuts(std::span<const double> weights, int ranks) const {
  const int count = patches(), runs = std::min(ranks, count);
  const double total = std::accumulate(weights.begin(), weights.end(), 0.0);
  std::vector<int> cuts = {0};
  double before = 0.0;  // what the patches before `next` weigh
  for (int run = 1, next = 0; run < runs; ++run) {
    const double share = total * run / runs;
    for (; next < count && before + weights[at(next)] <= share; ++next) {
      before += weights[at(next)];
    }
    // Every run has a patch.
    cuts.push_back(std::clamp(next, cuts.back() + 1, count - (runs - run)));
  }
  cuts.push_back(count);
  return cuts;
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

std::vector<double> weights_of_runs(std::span<const double> weights, const std::vector<int>& cuts) {
  std::vector<double> sums;
  for (std::size_t run = 0; run + 1 < cuts.size(); ++run) {
    sums.push_back(
        std::accumulate(weights.begin() + cuts[run], weights.begin() + cuts[run + 1], 0.0));
  }
  return sums;
}

}  // namespace ranks
