#include "ranks/cut_along_curve.hpp"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/strip_mesh.hpp"

using Runs = std::vector<std::vector<cases::Number>>;

TEST(CutAlongCurve, GivesEveryCellToOneRank) {
  EXPECT_EQ(ranks::cut_along_curve(support::strip_mesh(6), 1), (Runs{{0, 1, 2, 3, 4, 5}}));
  Runs runs = ranks::cut_along_curve(support::strip_mesh(6), 3);
  std::sort(runs.begin(), runs.end());  // a curve may begin at either end
  EXPECT_EQ(runs, (Runs{{0, 1}, {2, 3}, {4, 5}}));
}

TEST(CutAlongCurve, LeavesNoRankWithoutCells) {
  EXPECT_EQ(ranks::cut_along_curve(support::strip_mesh(2), 5).size(), 2U);
}
