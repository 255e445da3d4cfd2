#include "engine/numbering.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

class Numbering : public testing::Test {
 protected:
  engine::ThreadTeam team{2};
};

/// A thousand points, many of them twice.
void scatter(std::vector<double>& x, std::vector<double>& y) {
  for (int i = 0; i < 1000; ++i) {
    x.push_back(std::fmod(0.618 * (i % 700), 1.0) * 5000.0);
    y.push_back(std::fmod(0.414 * (i % 700), 1.0) * 300.0 + 1e6);
  }
}

}  // namespace

TEST_F(Numbering, IsAPermutation) {
  std::vector<double> x, y;
  scatter(x, y);
  std::vector<int> order = engine::order_along_hilbert_curve(x, y, team);
  std::sort(order.begin(), order.end());
  std::vector<int> all(1000);
  std::iota(all.begin(), all.end(), 0);
  EXPECT_EQ(order, all);
}

TEST_F(Numbering, WalksAGridFromNeighbourToNeighbour) {
  // A grid whose lines fall on those of the curve: each step of a Hilbert curve is one square.
  constexpr int side = 16;
  std::vector<double> x, y;
  for (int j = 0; j < side; ++j) {
    for (int i = 0; i < side; ++i) {
      x.push_back(i);
      y.push_back(j);
    }
  }
  const std::vector<int> order = engine::order_along_hilbert_curve(x, y, team);
  for (std::size_t k = 1; k < order.size(); ++k) {
    const int a = order[k - 1], b = order[k];
    EXPECT_EQ(std::abs(a % side - b % side) + std::abs(a / side - b / side), 1) << k;
  }
}

TEST_F(Numbering, AcceptsNoPointsAndEqualPoints) {
  EXPECT_TRUE(engine::order_along_hilbert_curve({}, {}, team).empty());
  EXPECT_EQ(engine::order_along_hilbert_curve({1.0, 1.0}, {2.0, 2.0}, team),
            (std::vector<int>{0, 1}));
}

TEST_F(Numbering, SweepsEachRunOfTheCurveAlongItsLongerExtent) {
  // A wide run of four points and a tall one, far from each other.
  const std::vector<double> x = {2, 0, 3, 1, 900, 901, 900, 901};
  const std::vector<double> y = {0, 1, 1, 0, 1003, 1000, 1001, 1002};
  const std::vector<int> order = engine::order_by_swept_runs(x, y, {}, 4, team);
  EXPECT_EQ(order, (std::vector<int>{1, 3, 0, 2, 5, 6, 7, 4}));
}

TEST_F(Numbering, PutsALowerBandFirst) {
  const std::vector<double> x = {0, 1, 2, 3, 4, 5, 6, 7}, y(8, 0.0);
  const std::vector<std::uint8_t> bands = {1, 0, 1, 0, 0, 1, 0, 2};
  EXPECT_EQ(engine::order_by_swept_runs(x, y, bands, 4, team),
            (std::vector<int>{1, 3, 4, 6, 0, 2, 5, 7}));
}

TEST_F(Numbering, IsTheSameOnAnyNumberOfThreads) {
  std::vector<double> x, y;
  scatter(x, y);
  const std::vector<int> expected = engine::order_by_swept_runs(x, y, {}, 64, team);
  for (const int threads : {1, 3, 5, 8}) {
    engine::ThreadTeam other(threads);
    EXPECT_EQ(engine::order_by_swept_runs(x, y, {}, 64, other), expected) << threads;
  }
}

TEST(PlacesOf, TellWhereNumbersStandInAnOrder) {
  EXPECT_EQ(engine::places_of({3, 0, 2, 1}), (std::vector<int>{1, 3, 2, 0}));
}
