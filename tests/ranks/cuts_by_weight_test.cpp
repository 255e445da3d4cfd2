#include "ranks/cuts_by_weight.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

#include "engine/Range.hpp"
#include "ranks/on_ranks.hpp"

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
    const std::vector<double> runs =
        ranks::weights_of_runs(weights, ranks::cuts_of(weights, ranks));
    ASSERT_EQ(runs.size(), cases::at(ranks));
    EXPECT_NEAR(std::accumulate(runs.begin(), runs.end(), 0.0), total, 1e-9);
    for (const double run : runs) EXPECT_LE(run, total / ranks + heaviest);
  }
}

TEST(CutsOf, LeaveNoRunWithoutAPatch) {
  EXPECT_EQ(ranks::cuts_of(std::vector<double>{9, 0, 0, 0, 0, 0}, 3), (Cuts{0, 1, 2, 6}));
  EXPECT_EQ(ranks::cuts_of(std::vector<double>{0, 0, 0, 0, 0, 9}, 3), (Cuts{0, 4, 5, 6}));
  EXPECT_EQ(ranks::cuts_of(std::vector<double>(6, 0.0), 6), (Cuts{0, 1, 2, 3, 4, 5, 6}));
}

namespace {

/// Runs of one length over 0 ... count - 1, one for every rank.
std::vector<ranks::WeighedCell> run_of(ranks::Group& group, int count,
                                       const std::vector<double>& weights) {
  const engine::Range run = engine::share_of(group.rank(), group.size(), cases::at(count));
  std::vector<ranks::WeighedCell> cells;
  for (int k = run.begin; k < run.end; ++k) {
    cells.push_back({{static_cast<std::uint64_t>(k / 2), k}, weights[cases::at(k)]});
  }
  return cells;
}

}  // namespace

TEST(CutsByWeight, GiveEveryRankAboutTheSameAndNoneAllThatWeighsNothing) {
  constexpr int cells = 20000;
  std::vector<double> weights(cells, 0.0);
  std::fill(weights.begin() + 7000, weights.begin() + 9000, 1.0);
  test_ranks::on_ranks(7, [&](ranks::Group& group) {
    // Twice: what is known of the weight of a rank is a number of hundredths of it.
    std::vector<ranks::WeighedCell> own = run_of(group, cells, weights);
    ranks::CutCurve cuts = ranks::cuts_by_weight(group, own);
    std::vector<ranks::WeighedCell> next;
    for (int k = 0; k < cells; ++k) {
      const ranks::CurvePlace place = {static_cast<std::uint64_t>(k / 2), k};
      if (cuts.owner_of(place) == group.rank()) next.push_back({place, weights[cases::at(k)]});
    }
    cuts = ranks::cuts_by_weight(group, next);
    ASSERT_EQ(cuts.begins.size(), 6U);
    const double least = ranks::least_weight * 2000 / cells;
    const double mean = (2000 + 18000 * least) / 7;
    std::vector<double> found(7, 0.0);
    std::vector<int> counts(7, 0);
    for (int k = 0; k < cells; ++k) {
      const std::size_t owner = cases::at(cuts.owner_of({static_cast<std::uint64_t>(k / 2), k}));
      found[owner] += std::max(weights[cases::at(k)], least);
      ++counts[owner];
    }
    for (std::size_t rank = 0; rank < found.size(); ++rank) {
      EXPECT_NEAR(found[rank], mean, mean * 0.05) << rank;
      EXPECT_NEAR(found[rank], cuts.weights[rank], 1e-9) << rank;
      EXPECT_LE(counts[rank], 5 * cells / 7) << rank;
    }
  });
}

TEST(CutsByWeight, LeaveNoRankWithoutACell) {
  test_ranks::on_ranks(5, [](ranks::Group& group) {
    const std::vector<double> weights = {0, 0, 0, 1, 0, 0};
    const ranks::CutCurve cuts =
        ranks::cuts_by_weight(group, run_of(group, static_cast<int>(weights.size()), weights));
    std::vector<int> owners;
    for (int k = 0; k < 6; ++k) {
      owners.push_back(cuts.owner_of({static_cast<std::uint64_t>(k / 2), k}));
    }
    for (int rank = 0; rank < 5; ++rank) {
      EXPECT_NE(std::find(owners.begin(), owners.end(), rank), owners.end()) << rank;
    }
    EXPECT_TRUE(std::is_sorted(owners.begin(), owners.end()));
  });
}

TEST(CutsByWeight, TakeCellsThatLieAnyhow) {
  constexpr int cells = 1000, ranks = 4;
  test_ranks::on_ranks(ranks, [](ranks::Group& group) {
    std::vector<ranks::WeighedCell> own;
    for (int k = group.rank(); k < cells; k += ranks) {
      own.push_back({{static_cast<std::uint64_t>(k), k}, 1.0});
    }
    const ranks::CutCurve cuts = ranks::cuts_by_weight(group, own);
    std::vector<int> found(ranks, 0);
    for (int k = 0; k < cells; ++k) {
      ++found[cases::at(cuts.owner_of({static_cast<std::uint64_t>(k), k}))];
    }
    for (const int count : found) EXPECT_NEAR(count, cells / ranks, 10);
  });
}
