#include "report/StepHistory.hpp"

#include <gtest/gtest.h>

namespace {

StepRecord step(double t, double dt, int cell) {
  return {t, dt, cell, {1.0, 2.0, 3.0, 0.0, 0.0, 0.0}};
}

TEST(StepHistory, IsEmptyAtFirst) {
  const StepHistory history;
  EXPECT_EQ(history.count(), 0);
  EXPECT_EQ(history.mean(), 0.0);
  EXPECT_TRUE(history.last().empty());
  EXPECT_TRUE(history.most_frequent().empty());
}

TEST(StepHistory, KnowsTheSmallestTheLargestAndTheMeanStep) {
  StepHistory history;
  history.add(step(0.0, 0.3, 4));
  history.add(step(0.3, 0.1, 7));
  history.add(step(0.4, 0.5, 4));
  history.add(step(0.9, 0.1, 2));
  EXPECT_EQ(history.count(), 4);
  EXPECT_EQ(history.smallest().cell, 7);  // the first of two alike
  EXPECT_EQ(history.smallest().t, 0.3);
  EXPECT_EQ(history.smallest().state.qx, 2.0);
  EXPECT_EQ(history.largest(), 0.5);
  EXPECT_DOUBLE_EQ(history.mean(), 0.25);
}

TEST(StepHistory, KeepsTheLastFiftySteps) {
  StepHistory history;
  for (int i = 0; i < 49; ++i) history.add(step(i, 1.0, i));
  EXPECT_EQ(history.last().size(), 49U);
  EXPECT_EQ(history.last().front().t, 0.0);
  for (int i = 49; i < 173; ++i) history.add(step(i, 1.0, i));
  const std::vector<StepRecord> last = history.last();
  ASSERT_EQ(last.size(), 50U);
  for (int i = 0; i < 50; ++i) EXPECT_EQ(last[static_cast<std::size_t>(i)].t, 123.0 + i);
}

TEST(StepHistory, ListsTheTenCellsThatSetMostStepsMostOftenFirst) {
  StepHistory history;
  // Cell k sets k steps, but 3 sets as many as 12; some are set by dry cells.
  for (int cell = 1; cell <= 12; ++cell) {
    for (int i = 0; i < (cell == 3 ? 12 : cell); ++i) history.add(step(0.0, 1.0, cell));
  }
  for (int i = 0; i < 20; ++i) history.add(step(0.0, 1.0, -1));
  const std::vector<StepHistory::CellCount> cells = history.most_frequent();
  ASSERT_EQ(cells.size(), 10U);
  const std::vector<int> expected = {3, 12, 11, 10, 9, 8, 7, 6, 5, 4};
  for (std::size_t i = 0; i < 10; ++i) {
    EXPECT_EQ(cells[i].cell, expected[i]);
    EXPECT_EQ(cells[i].steps, i == 0 ? 12 : expected[i]);
  }
  EXPECT_EQ(history.set_by_dry_cells(), 20);
}

}  // namespace
