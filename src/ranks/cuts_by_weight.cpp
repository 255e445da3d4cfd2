#include "ranks/cuts_by_weight.hpp"

#include <algorithm>
#include <numeric>

#include "engine/aligned_vector.hpp"

namespace ranks {

using engine::at;

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
