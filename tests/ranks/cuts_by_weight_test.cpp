#include "ranks/cuts_by_weight.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

#include "case/Mesh.hpp"
#include "engine/Range.hpp"

using Cuts = std::vector<int>;

namespace {

std::vector<double> equal_weights(int count) { return std::vector<double>(cases::at(count), 1.0); }

}  // namespace

TEST(CutsOf, GiveRunsOfOneLengthWhereWeightsAreAlike) {
  for (const int cells : {1, 7, 64, 1000}) {
    for (const int ranks : {1, 2, 3, 5, 7}) {
      const Cuts cuts = ranks::cuts_of(equal_weights(cells), ranks);
      const int runs = std::min(ranks, cells);
      ASSERT_EQ(cuts.size(), cases::at(runs) + 1);
      for (int run = 0; run < runs; ++run) {
        EXPECT_EQ(cuts[cases::at(run)], engine::share_of(run, runs, cases::at(cells)).begin);
      }
      EXPECT_EQ(cuts.back(), cells);
    }
  }
}

TEST(CutsOf, GiveRunsOfAboutOneWeight) {
  constexpr int patches = 500;
  std::mt19937 generator(5);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  std::vector<double> weights;
  for (int k = 0; k < patches; ++k) weights.push_back(k < 50 ? 10.0 * unit(generator) : 0.1);
  const double total = std::accumulate(weights.begin(), weights.end(), 0.0);
  const double heaviest = *std::max_element(weights.begin(), weights.end());
  for (const int ranks : {2, 3, 8, 16}) {
    const Cuts cuts = ranks::cuts_of(weights, ranks);
    ASSERT_EQ(cuts.size(), cases::at(ranks) + 1);
    EXPECT_EQ(cuts.back(), patches);
    for (std::size_t run = 0; run + 1 < cuts.size(); ++run) {
      const auto begin = weights.begin();
      EXPECT_LE(std::accumulate(begin + cuts[run], begin + cuts[run + 1], 0.0),
                total / ranks + heaviest);
    }
  }
}

TEST(CutsOf, LeaveNoRunWithoutAPatch) {
  EXPECT_EQ(ranks::cuts_of(std::vector<double>{9, 0, 0, 0, 0, 0}, 3), (Cuts{0, 1, 2, 6}));
  EXPECT_EQ(ranks::cuts_of(std::vector<double>{0, 0, 0, 0, 0, 9}, 3), (Cuts{0, 4, 5, 6}));
  EXPECT_EQ(ranks::cuts_of(std::vector<double>(6, 0.0), 6), (Cuts{0, 1, 2, 3, 4, 5, 6}));
}
