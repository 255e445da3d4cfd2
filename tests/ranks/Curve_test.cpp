#include "ranks/Curve.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

#include "support/strip_mesh.hpp"

using ranks::Curve;

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
