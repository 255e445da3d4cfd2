#include "ranks/cuts_by_weight.hpp"

#include <algorithm>
#include <array>
#include <limits>
#include <numeric>
#include <utility>

#include "engine/aligned_vector.hpp"
#include "ranks/values.hpp"

namespace ranks {

using engine::at;

namespace {

/// Cells of a rank that follow each other along the curve.
struct Grain {
  CurvePlace begin;
  double weight = -1.0;  ///< below 0: there is no such grain
};

/// So many tell where the weight of a rank lies: each has about as much of it and of its cells.
constexpr int grains_of_rank = 128;
using Grains = std::array<Grain, static_cast<std::size_t>(grains_of_rank)>;

Grains grains_of(std::vector<WeighedCell> cells) {
  const auto is_before = [](const WeighedCell& a, const WeighedCell& b) {
    return a.place < b.place;
  };
  std::sort(cells.begin(), cells.end(), is_before);
  double sum = 0.0;
  for (const WeighedCell& cell : cells) sum += cell.weight;
  // In halves: a heavy cell takes many grains' worth, and must not leave too few for the others.
  const double of_cell = 0.5 / static_cast<double>(cells.size());
  const double of_weight = sum > 0.0 ? 0.5 / sum : 0.0;
  Grains grains;
  std::size_t last = 0;
  double before = 0.0;
  for (const WeighedCell& cell : cells) {
    const auto number =
        std::min(grains.size() - 1, static_cast<std::size_t>(before * grains_of_rank));
    if (grains.front().weight < 0.0) {
      grains[last] = {cell.place, 0.0};
    } else if (number > last) {
      grains[last = number] = {cell.place, 0.0};
    }
    grains[last].weight += cell.weight;
    before += of_cell + of_weight * cell.weight;
  }
  return grains;
}

/// Gives every cell its least weight.
void raise_to_least(Group& group, std::vector<WeighedCell>& cells) {
  struct Sum {
    double weight, count;
  };
  Sum own = {0.0, static_cast<double>(cells.size())}, all = {0.0, 0.0};
  for (const WeighedCell& cell : cells) own.weight += cell.weight;
  for (const Sum& of_rank : gather_all_plain(group, own)) {
    all = {all.weight + of_rank.weight, all.count + of_rank.count};
  }
  const double least = least_weight * all.weight / all.count;
  for (WeighedCell& cell : cells) cell.weight = std::max(cell.weight, least);
}

}  // namespace

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

std::vector<double> weights_of_runs(std::span<const double> weights, const std::vector<int>& cuts) {
  std::vector<double> sums;
  for (std::size_t run = 0; run + 1 < cuts.size(); ++run) {
    sums.push_back(
        std::accumulate(weights.begin() + cuts[run], weights.begin() + cuts[run + 1], 0.0));
  }
  return sums;
}

int CutCurve::owner_of(const CurvePlace& place) const {
  return static_cast<int>(std::upper_bound(begins.begin(), begins.end(), place) - begins.begin());
}

CutCurve cuts_by_weight(Group& group, std::vector<WeighedCell> cells) {
  raise_to_least(group, cells);
  std::vector<Grain> grains;
  for (const Grains& of_rank : gather_all_plain(group, grains_of(std::move(cells)))) {
    std::copy_if(of_rank.begin(), of_rank.end(), std::back_inserter(grains),
                 [](const Grain& grain) { return grain.weight >= 0.0; });
  }
  const auto is_before = [](const Grain& a, const Grain& b) { return a.begin < b.begin; };
  if (!std::is_sorted(grains.begin(), grains.end(), is_before)) {
    std::sort(grains.begin(), grains.end(), is_before);
  }
  std::vector<double> weights;
  for (const Grain& grain : grains) weights.push_back(grain.weight);
  const std::vector<int> cuts = cuts_of(weights, group.size());
  CutCurve curve{{}, weights_of_runs(weights, cuts)};
  for (std::size_t run = 1; run + 1 < cuts.size(); ++run) {
    curve.begins.push_back(grains[at(cuts[run])].begin);
  }
  return curve;
}

}  // namespace ranks
