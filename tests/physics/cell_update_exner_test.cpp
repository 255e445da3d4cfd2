#include "physics/cell_update_exner.hpp"

#include <gtest/gtest.h>

namespace cell_update_exner_test {

namespace {

constexpr double zero_depth = 1e-3;

physics::ExnerCell cell() {
  physics::ExnerCell c{};
  c.h = 1.0;
  c.qx = 0.5;
  c.qy = -0.25;
  c.hs = 0.3;
  c.qsx = 0.01;
  c.qsy = 0.02;
  c.dt_over_area = 0.1;
  c.dt = 0.05;
  return c;
}

}  // namespace

TEST(UpdateExner, TheBalanceMovesWaterAndBed) {
  auto c = cell();
  c.Fh = 1.0;
  c.Fqx = -2.0;
  c.Fqy = 4.0;
  c.Fhs = -0.5;
  const auto after = update_exner(c, zero_depth);
  EXPECT_DOUBLE_EQ(after.h, 1.1);
  EXPECT_DOUBLE_EQ(after.qx, 0.3);
  EXPECT_DOUBLE_EQ(after.qy, 0.15);
  EXPECT_DOUBLE_EQ(after.hs, 0.25);
}

TEST(UpdateExner, SourcesAreScaledWithTheDepthBeforeRain) {
  auto c = cell();
  c.rain = 3.0;
  c.source_qx = -0.1;
  const auto after = update_exner(c, zero_depth);
  EXPECT_DOUBLE_EQ(after.h, 4.0);
  EXPECT_DOUBLE_EQ(after.qx, 0.5 - 0.1 * 0.05 * 9.81 * 1.0);
}

TEST(UpdateExner, TheBedRockDoesNotErode) {
  auto c = cell();
  c.Fhs = -5.0;
  EXPECT_EQ(update_exner(c, zero_depth).hs, 0.0);
}

TEST(UpdateExner, SourcesStopADischargeButDoNotTurnItRound) {
  auto c = cell();
  c.source_qx = -100.0;
  const auto after = update_exner(c, zero_depth);
  EXPECT_EQ(after.qx, 0.0);
  EXPECT_EQ(after.qy, -0.25);
  EXPECT_LT(after.qx_moving, 0.0);  // the largest velocity counts before the rule

  c.source_qx = 0.0;
  c.source_qy = 100.0;
  const auto across = update_exner(c, zero_depth);
  EXPECT_EQ(across.qx, 0.5);
  EXPECT_EQ(across.qy, 0.0);
  EXPECT_GT(across.qy_moving, 0.0);
}

TEST(UpdateExner, ADryCellKeepsItsFilmAndItsBedAndDropsEveryDischarge) {
  auto c = cell();
  c.h = 0.5 * zero_depth;
  const auto after = update_exner(c, zero_depth);
  EXPECT_EQ(after.h, 0.5 * zero_depth);
  EXPECT_EQ(after.hs, 0.3);
  EXPECT_EQ(after.qx, 0.0);
  EXPECT_EQ(after.qy, 0.0);
  EXPECT_EQ(after.qsx, 0.0);
  EXPECT_EQ(after.qsy, 0.0);
}

TEST(UpdateExner, AWetCellKeepsItsBedLoadUntilTheTransportLawSpeaks) {
  const auto after = update_exner(cell(), zero_depth);
  EXPECT_EQ(after.qsx, 0.01);
  EXPECT_EQ(after.qsy, 0.02);
}

TEST(UpdateExner, ADepthAtTheThresholdIsNotEmptied) {
  auto c = cell();
  c.h = zero_depth;
  EXPECT_EQ(update_exner(c, zero_depth).qx, 0.5);
}

}  // namespace cell_update_exner_test
