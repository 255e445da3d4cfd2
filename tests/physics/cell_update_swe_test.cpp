#include "physics/cell_update_swe.hpp"

#include <gtest/gtest.h>

namespace cell_update_swe_test {

constexpr double zero_depth = 0.01;

/// A cell with water 2 m deep, flowing at (3, -4) m2/s over a level bed, without any change.
physics::SweCell flowing() {
  return {.h = 2.0,
          .qx = 3.0,
          .qy = -4.0,
          .Fh = 0.0,
          .Fqx = 0.0,
          .Fqy = 0.0,
          .dt_over_area = 0.25,
          .dt = 0.5,
          .rain = 0.0,
          .source_qx = 0.0,
          .source_qy = 0.0,
          .infiltration_step = 0.0,
          .infiltrated_depth = 0.125,
          .bed_rock_level = 10.0,
          .max_node_level = 10.0};
}

TEST(UpdateSwe, AddsTheFluxesTimesTheStepOverTheArea) {
  physics::SweCell c = flowing();
  c.Fh = 2.0;
  c.Fqx = -4.0;
  c.Fqy = 8.0;
  const physics::SweCellUpdate after = physics::update_swe(c, zero_depth);
  EXPECT_EQ(after.h, 2.5);
  EXPECT_EQ(after.qx, 2.0);
  EXPECT_EQ(after.qy, -2.0);
  EXPECT_EQ(after.free_surface_level, 12.5);
  EXPECT_EQ(after.infiltrated_depth, 0.125);
}

TEST(UpdateSwe, RainDeepensTheWaterBeforeFrictionActs) {
  physics::SweCell c = flowing();
  c.rain = 2.0;
  c.source_qx = -0.0625;
  const physics::SweCellUpdate after = physics::update_swe(c, zero_depth);
  EXPECT_EQ(after.h, 4.0);
  EXPECT_DOUBLE_EQ(after.qx, 3.0 - 0.0625 * 0.5 * 9.81 * 4.0);
  EXPECT_EQ(after.qy, -4.0);
}

TEST(UpdateSwe, InfiltrationTakesItsDemandFromDeeperWater) {
  physics::SweCell c = flowing();
  c.infiltration_step = 0.5;
  const physics::SweCellUpdate after = physics::update_swe(c, zero_depth);
  EXPECT_EQ(after.h, 1.5);
  EXPECT_EQ(after.qx, 3.0);
  EXPECT_EQ(after.infiltrated_depth, 0.625);
}

TEST(UpdateSwe, InfiltrationEmptiesACellThatHoldsNoMoreThanItsDemand) {
  for (const double demand : {2.0, 5.0}) {
    physics::SweCell c = flowing();
    c.infiltration_step = demand;
    const physics::SweCellUpdate after = physics::update_swe(c, zero_depth);
    EXPECT_EQ(after.h, 0.0);
    EXPECT_EQ(after.qx, 0.0);
    EXPECT_EQ(after.qy, 0.0);
    EXPECT_EQ(after.infiltrated_depth, 2.125);
    EXPECT_EQ(after.free_surface_level, 10.0);
  }
}

TEST(UpdateSwe, ADemandThatIsNotPositiveTakesNothing) {
  physics::SweCell c = flowing();
  c.infiltration_step = -0.5;
  const physics::SweCellUpdate after = physics::update_swe(c, zero_depth);
  EXPECT_EQ(after.h, 2.0);
  EXPECT_EQ(after.infiltrated_depth, 0.125);
}

TEST(UpdateSwe, InfiltrationFindsTheRainOfTheStep) {
  physics::SweCell c = flowing();
  c.h = 0.0;
  c.rain = 0.5;
  c.infiltration_step = 0.25;
  EXPECT_EQ(physics::update_swe(c, zero_depth).h, 0.25);
  EXPECT_EQ(physics::update_swe(c, zero_depth).infiltrated_depth, 0.375);
}

TEST(UpdateSwe, SourcesStopTheFlowInsteadOfTurningIt) {
  physics::SweCell c = flowing();
  c.source_qx = -1.0;  // 0.5 * 9.81 * 2 = 9.81 m2/s against 3
  c.source_qy = 0.25;  // 2.4525 m2/s against 4
  const physics::SweCellUpdate after = physics::update_swe(c, zero_depth);
  EXPECT_EQ(after.qx, 0.0);
  EXPECT_DOUBLE_EQ(after.qy, -4.0 + 0.25 * 9.81);
}

TEST(UpdateSwe, EachComponentIsJudgedByItself) {
  physics::SweCell c = flowing();
  c.source_qx = -0.25;  // 2.4525 m2/s against 3
  c.source_qy = 1.0;    // 9.81 m2/s against 4
  const physics::SweCellUpdate after = physics::update_swe(c, zero_depth);
  EXPECT_DOUBLE_EQ(after.qx, 3.0 - 0.25 * 9.81);
  EXPECT_EQ(after.qy, 0.0);
}

TEST(UpdateSwe, TheFluxesMayTurnTheFlow) {
  physics::SweCell c = flowing();
  c.Fqx = -16.0;
  EXPECT_EQ(physics::update_swe(c, zero_depth).qx, -1.0);
}

TEST(UpdateSwe, SourcesMaySetWaterAtRestInMotion) {
  physics::SweCell c = flowing();
  c.qx = 0.0;
  c.source_qx = 0.5;
  EXPECT_DOUBLE_EQ(physics::update_swe(c, zero_depth).qx, 0.5 * 9.81);
}

TEST(UpdateSwe, WaterBelowTheHighestVertexStands) {
  physics::SweCell c = flowing();
  c.max_node_level = std::nextafter(12.0, 13.0);
  const physics::SweCellUpdate below = physics::update_swe(c, zero_depth);
  EXPECT_EQ(below.h, 2.0);
  EXPECT_EQ(below.qx, 0.0);
  EXPECT_EQ(below.qy, 0.0);
  c.max_node_level = 12.0;  // just covered
  EXPECT_EQ(physics::update_swe(c, zero_depth).qx, 3.0);
}

TEST(UpdateSwe, AFilmThinnerThanTheThresholdStands) {
  physics::SweCell c = flowing();
  c.h = std::nextafter(zero_depth, 0.0);
  EXPECT_EQ(physics::update_swe(c, zero_depth).h, c.h);
  EXPECT_EQ(physics::update_swe(c, zero_depth).qx, 0.0);
  EXPECT_EQ(physics::update_swe(c, zero_depth).qy, 0.0);
  c.h = zero_depth;
  EXPECT_EQ(physics::update_swe(c, zero_depth).qx, 3.0);
}

TEST(UpdateSwe, ANegativeDepthIsKeptAndStands) {
  physics::SweCell c = flowing();
  c.Fh = -10.0;
  const physics::SweCellUpdate after = physics::update_swe(c, zero_depth);
  EXPECT_EQ(after.h, -0.5);
  EXPECT_EQ(after.qx, 0.0);
  EXPECT_EQ(after.qy, 0.0);
  EXPECT_EQ(after.free_surface_level, 9.5);
}

}  // namespace cell_update_swe_test
