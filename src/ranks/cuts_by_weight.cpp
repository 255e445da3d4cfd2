#include "ranks/cuts_by_weight.hpp"

#include <algorithm>
#include <limits>
#include <numeric>

#include "engine/aligned_vector.hpp"
#include "ranks/values.hpp"

namespace ranks {

using engine::at;

engine::HilbertCurve curve_over(Group& group, std::span<const physics::SpacePoint> centers) {
  constexpr double infinite = std::numeric_limits<double>::infinity();
  struct Extent {
    double x_min = infinite, x_max = -infinite, y_min = infinite, y_max = -infinite;
  };
  const auto widen = [](Extent& extent, const Extent& by) {
    extent = {std::min(extent.x_min, by.x_min), std::max(extent.x_max, by.x_max),
              std::min(extent.y_min, by.y_min), std::max(extent.y_max, by.y_max)};
  };
  Extent extent;
  for (const auto& center : centers) widen(extent, {center.x, center.x, center.y, center.y});
  for (const Extent& of_rank : gather_all_plain(group, extent)) widen(extent, of_rank);
  return {extent.x_min, extent.x_max, extent.y_min, extent.y_max};
}

std::vector<int> cuts_of(std::span<const double> weights, int wanted) {
  const int count = static_cast<int>(weights.size()), runs = std::min(wanted, count);
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

}  // namespace ranks
