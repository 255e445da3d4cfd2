#include "fields/Field.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "fields/maxima_columns.hpp"

namespace {

using fields::Field;

std::string snapshot_columns(bool has_sediments, bool has_infiltration) {
  std::string columns;
  for (const fields::FieldInfo& info : fields::field_table) {
    if (is_in_snapshots(info, has_sediments, has_infiltration))
      columns += info.column, columns += ' ';
  }
  return columns;
}

TEST(FieldTable, HasARowForEveryFieldInTheirOrder) {
  int row = 0;
  for (const fields::FieldInfo& info : fields::field_table) {
    EXPECT_EQ(static_cast<int>(info.field), row++);
    EXPECT_EQ(&fields::info(info.field), &info);
  }
  EXPECT_EQ(row - 1, static_cast<int>(Field::time_under_water));
}

TEST(FieldTable, KnowsTheColumnsOfTheSnapshots) {
  EXPECT_EQ(snapshot_columns(false, false), "h qx qy ");
  EXPECT_EQ(snapshot_columns(false, true), "h qx qy f ");
  EXPECT_EQ(snapshot_columns(true, false), "h qx qy zb hs qsx qsy ");
  EXPECT_EQ(snapshot_columns(true, true), snapshot_columns(true, false));
}

TEST(FieldTable, KnowsTheColumnsOfTheMaxima) {
  EXPECT_EQ(fields::maxima_header(),
            "x\ty\tzb\th_max\tlevel_max\tv_max\tq_max\thv_max\tt_h_max\tt_arrival\tt_wet");
  for (const fields::FieldInfo& info : fields::field_table) {
    const bool has_column =
        std::any_of(fields::maxima_columns.begin(), fields::maxima_columns.end(),
                    [&](const auto& column) { return column.field == info.field; });
    EXPECT_EQ(has_column, is_of_maxima(info) || info.field == Field::bed_level) << info.quantity;
  }
}

TEST(FieldTable, NamesTheUnitsOfItsFields) {
  EXPECT_STREQ(info(Field::depth).unit, "m");
  EXPECT_STREQ(info(Field::bed_load_x).unit, "m2/s");
  EXPECT_TRUE(info(Field::sediment_thickness).is_depth);
  EXPECT_FALSE(info(Field::bed_level).is_depth);
}

}  // namespace
