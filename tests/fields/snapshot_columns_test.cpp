#include "fields/snapshot_columns.hpp"

#include <gtest/gtest.h>

namespace {

using fields::SnapshotColumns;

TEST(SnapshotColumns, HaveTheBedBehindTheCentreWhereverItComesFrom) {
  EXPECT_EQ(SnapshotColumns(false, false).header(), "x\ty\tzb\th\tqx\tqy");
  EXPECT_EQ(SnapshotColumns(false, true).header(), "x\ty\tzb\th\tqx\tqy\tf");
  EXPECT_EQ(SnapshotColumns(true, false).header(), "x\ty\tzb\th\tqx\tqy\ths\tqsx\tqsy");
  EXPECT_EQ(SnapshotColumns(false, true).fields.size(), 4u);
  EXPECT_EQ(SnapshotColumns(true, true).fields.front(), fields::Field::bed_level);
}

}  // namespace
