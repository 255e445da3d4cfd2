#include "model/FluxSlots.hpp"

#include <gtest/gtest.h>

namespace {

TEST(FluxSlots, AreZeroUntilTheyAreWritten) {
  FluxSlots slots;
  EXPECT_TRUE(slots.empty());
  slots.add();
  slots.add();
  ASSERT_EQ(slots.size(), 2u);
  const FluxSlots& unwritten = slots;
  EXPECT_EQ(unwritten[1].h, 0.0);
  EXPECT_EQ(unwritten[1].qsy, 0.0);
  slots[0].h = 3.0;
  EXPECT_EQ(unwritten[0].h, 3.0);
  EXPECT_EQ(unwritten[1].h, 0.0);
}

TEST(FluxSlots, KeepWhatWasWrittenWhenTheirNumberChanges) {
  FluxSlots slots;
  slots.resize(2);
  slots[1].set_values(1.0, 2.0, 3.0);
  slots.add();
  ASSERT_EQ(slots.size(), 3u);
  EXPECT_EQ(slots[1].qy, 3.0);
  EXPECT_EQ(slots[2].qy, 0.0);
  slots.resize(1);
  slots.resize(2);
  EXPECT_EQ(slots[1].qy, 0.0);
  slots.clear();
  EXPECT_TRUE(slots.empty());
}

TEST(FluxSlots, OfTwoCellsAreIndependentWhileTheyAreUnwritten) {
  FluxSlots one, other;
  one.add();
  other.add();
  one[0].h = 1.0;
  EXPECT_EQ(other[0].h, 0.0);
}

}  // namespace
