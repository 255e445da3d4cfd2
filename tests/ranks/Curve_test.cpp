#include "ranks/Curve.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

#include "engine/Range.hpp"
#include "support/strip_mesh.hpp"

using ranks::Curve;
using Cuts = std::vector<int>;

namespace {

std::vector<double> equal_weights(int count) { return std::vector<double>(cases::at(count), 1.0); }

}  // namespace

TEST(Curve, IsCutIntoRunsOfOneLengthWhereWeightsAreAlike) {
  for (const int cells : {1, 7, 64, 1000}) {
    const Curve curve(support::strip_mesh(cells));
    for (const int ranks : {1, 2, 3, 5, 7}) {
      const Cuts cuts = curve.cuts(equal_weights(cells), ranks);
      const int runs = std::min(ranks, cells);
      ASSERT_EQ(cuts.size(), cases::at(runs) + 1);
      for (int run = 0; run < runs; ++run) {
        EXPECT_EQ(cuts[cases::at(run)], engine::share_of(run, runs, cases::at(cells)).begin);
      }
      EXPECT_EQ(cuts.back(), cells);
    }
  }
}

TEST(Curve, IsCutIntoRunsOfAboutOneWeight) {
  constexpr int patches = 500;
  const Curve curve(support::strip_mesh(4 * patches - 3), 4);
  ASSERT_EQ(curve.patches(), patches);
  std::mt19937 generator(5);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  std::vector<double> weights;
  for (int k = 0; k < patches; ++k) weights.push_back(k < 50 ? 10.0 * unit(generator) : 0.1);
  const double total = std::accumulate(weights.begin(), weights.end(), 0.0);
  const double heaviest = *std::max_element(weights.begin(), weights.end());
  for (const int ranks : {2, 3, 8, 16}) {
    const std::vector<double> runs = ranks::weights_of_runs(weights, curve.cuts(weights, ranks));
    ASSERT_EQ(runs.size(), cases::at(ranks));
    EXPECT_NEAR(std::accumulate(runs.begin(), runs.end(), 0.0), total, 1e-9);
    for (const double run : runs) EXPECT_LE(run, total / ranks + heaviest);
  }
}

TEST(Curve, LeavesNoRunWithoutAPatch) {
  const Curve curve(support::strip_mesh(6));
  EXPECT_EQ(curve.cuts(std::vector<double>{9, 0, 0, 0, 0, 0}, 3), (Cuts{0, 1, 2, 6}));
  EXPECT_EQ(curve.cuts(std::vector<double>{0, 0, 0, 0, 0, 9}, 3), (Cuts{0, 4, 5, 6}));
  EXPECT_EQ(curve.cuts(std::vector<double>(6, 0.0), 6), (Cuts{0, 1, 2, 3, 4, 5, 6}));
}

TEST(Curve, HoldsEveryCellOnceInPatchesThatNoCutParts) {
  constexpr int cells = 100, cells_per_patch = 8;
  const Curve curve(support::strip_mesh(cells), cells_per_patch);
  ASSERT_EQ(curve.patches(), 13);
  const auto runs = curve.runs({0, 2, 3, 13});
  ASSERT_EQ(runs.size(), 3U);
  EXPECT_EQ(runs[0].size(), 16U);
  EXPECT_EQ(runs[1].size(), 8U);
  ranks::Cells all;
  for (const ranks::Cells& run : runs) {
    EXPECT_TRUE(std::is_sorted(run.begin(), run.end()));
    all.insert(all.end(), run.begin(), run.end());
  }
  std::sort(all.begin(), all.end());
  ranks::Cells expected(cells);
  std::iota(expected.begin(), expected.end(), 0);
  EXPECT_EQ(all, expected);
}

TEST(Curve, SumsUpTheValuesOfThePatches) {
  const Curve curve(support::strip_mesh(10), 4);
  std::vector<double> values(10);
  std::iota(values.begin(), values.end(), 0.0);
  const std::vector<double> sums = curve.sums_of_patches(values);
  const auto runs = curve.runs({0, 1, 2, 3});
  for (std::size_t patch = 0; patch < 3; ++patch) {
    double sum = 0.0;
    for (const cases::Number cell : runs[patch]) sum += cell;
    EXPECT_EQ(sums[patch], sum);
  }
}
