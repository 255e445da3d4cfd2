#include "report/CompensatedSum.hpp"

#include <gtest/gtest.h>

TEST(CompensatedSum, KeepsWhatRoundingWouldLose) {
  CompensatedSum sum;
  sum.add(1.0);
  for (int i = 0; i < 1000; ++i) sum.add(1e-17);  // far below half a unit in the last place of 1
  EXPECT_EQ(sum.value(), 1.0 + 1e-14);
  EXPECT_GT(sum.value(), 1.0);
}

TEST(CompensatedSum, KeepsASmallSumUnderALargeTermThatGoesAgain) {
  CompensatedSum sum;
  sum.add(1.0);
  sum.add(1e100);
  sum.add(1.0);
  sum.add(-1e100);
  EXPECT_EQ(sum.value(), 2.0);
}
