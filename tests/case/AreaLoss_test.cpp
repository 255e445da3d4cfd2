#include "case/AreaLoss.hpp"

#include <gtest/gtest.h>

#include "support/text.hpp"

namespace {

TEST(AreaLoss, SaysNothingAsLongAsNoCellLosesMoreThanAMillionth) {
  AreaLoss loss;
  EXPECT_FALSE(loss.remark());
  loss.add({6e5, 5e6}, 1.0 + 0.9e-6, 1.0);
  loss.add({6e5, 5e6}, 0.0, 0.0);
  EXPECT_FALSE(loss.remark());
}

TEST(AreaLoss, NamesTheCellsTheLargestLossAndWhatHelps) {
  AreaLoss loss;
  loss.add({617929.5, 5234069.25}, 1.0, 1.0);
  loss.add({617930.5, 5234069.25}, 1.0 - 2e-6, 1.0);
  loss.add({617931.5, 5234069.25}, 1.27, 1.0);
  ASSERT_TRUE(loss.remark());
  const std::string text = *loss.remark();
  EXPECT_TRUE(support::starts_with(text, "2 of 3 cells lose more than 1e-06 of their area"))
      << text;
  EXPECT_TRUE(support::contains(
      text, "0.27 of it, cell 2 (counted from 0), centre (617931.5, 5234069.25) m"))
      << text;
  EXPECT_TRUE(support::contains(text, "quillmere-mesh import --origin 617000,5234000")) << text;
}

TEST(AreaLoss, OfCellsThatWereLookedAtApartIsThatOfAll) {
  const double areas[] = {1.0, 1.0 - 3e-6, 1.2, 1.0, 1.2, 1.1};
  AreaLoss all, parts[3];
  for (int cell = 0; cell < 6; ++cell) {
    all.add({1e5 * cell, 0.0}, areas[cell], 1.0);
    parts[cell / 2].add({1e5 * cell, 0.0}, areas[cell], 1.0);
  }
  AreaLoss sum;
  for (const AreaLoss& part : parts) sum.add(part);
  sum.add(AreaLoss{});
  ASSERT_TRUE(all.remark());
  EXPECT_EQ(sum.remark(), all.remark());
}

}  // namespace
