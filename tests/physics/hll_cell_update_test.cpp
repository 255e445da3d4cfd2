#include "physics/hll_cell_update.hpp"

#include <gtest/gtest.h>

#include "support/hll_random.hpp"

namespace hll_cell_update_test {

using hll_random::Source;
using physics::HllCellStep;
using physics::HllCellUpdate;

constexpr double zero_depth = 0.01;

/// A cell with water 2 m deep that moves at (1.5, -2) m/s, without any change.
HllCellStep flowing() {
  return {.h = 2.0,
          .qx = 3.0,
          .qy = -4.0,
          .u = 1.5,
          .v = -2.0,
          .Fh = 0.0,
          .Fqx = 0.0,
          .Fqy = 0.0,
          .source = {0.0, 0.0},
          .dt_over_area = 0.25,
          .dt = 0.5,
          .rain = 0.0,
          .infiltration_step = 0.0,
          .infiltrated_depth = 0.125,
          .resistance = 0.0};
}

TEST(UpdateHll, AddsTheFluxesTimesTheStepOverTheAreaLessTheSource) {
  HllCellStep c = flowing();
  c.Fh = 2.0;
  c.Fqx = -4.0;
  c.Fqy = 8.0;
  c.source = {1.0, -2.0};
  const HllCellUpdate after = physics::update_hll<false>(c, zero_depth);
  EXPECT_EQ(after.h, 2.5);
  EXPECT_DOUBLE_EQ(after.qx, 3.0 - 1.0 - 0.5);
  EXPECT_DOUBLE_EQ(after.qy, -4.0 + 2.0 + 1.0);
  EXPECT_EQ(after.infiltrated_depth, 0.125);
  EXPECT_EQ(after.taken_discharge, 0.0);
}

TEST(UpdateHll, RainBringsNoMomentum) {
  HllCellStep c = flowing();
  c.rain = 2.0;
  const HllCellUpdate after = physics::update_hll<false>(c, zero_depth);
  EXPECT_EQ(after.h, 4.0);
  EXPECT_DOUBLE_EQ(after.qx, 3.0);
  EXPECT_DOUBLE_EQ(after.qy, -4.0);
}

TEST(UpdateHll, ASoilTakesTheMomentumOfItsWaterAlong) {
  HllCellStep c = flowing();
  c.infiltration_step = 0.5;
  const HllCellUpdate after = physics::update_hll<false>(c, zero_depth);
  EXPECT_EQ(after.h, 1.5);
  EXPECT_DOUBLE_EQ(after.qx, 1.5 * 1.5);
  EXPECT_DOUBLE_EQ(after.qy, 1.5 * -2.0);
  EXPECT_EQ(after.infiltrated_depth, 0.625);
}

TEST(UpdateHll, ASoilTakesAtMostWhatIsThere) {
  HllCellStep c = flowing();
  c.infiltration_step = 2.5;
  const HllCellUpdate after = physics::update_hll<false>(c, zero_depth);
  EXPECT_EQ(after.h, 0.0);
  EXPECT_EQ(after.qx, 0.0);
  EXPECT_EQ(after.qy, 0.0);
  EXPECT_EQ(after.infiltrated_depth, 2.125);
}

TEST(UpdateHll, AFullSoilGivesNothingBack) {
  HllCellStep c = flowing();
  c.infiltration_step = -0.5;
  const HllCellUpdate after = physics::update_hll<false>(c, zero_depth);
  EXPECT_EQ(after.h, 2.0);
  EXPECT_EQ(after.infiltrated_depth, 0.125);
}

TEST(UpdateHll, AFilmKeepsItsWaterAndLosesItsMomentum) {
  HllCellStep c = flowing();
  c.Fh = -8.0 + 3.9 * zero_depth;
  c.u = 1e3;  // so that the bound of a draining film does not act
  const HllCellUpdate after = physics::update_hll<false>(c, zero_depth);
  EXPECT_NEAR(after.h, 0.975 * zero_depth, 1e-15);
  EXPECT_EQ(after.qx, 0.0);
  EXPECT_EQ(after.qy, 0.0);
}

TEST(UpdateHll, WaterThatDrainsIsNotSetFasterThanItsWaves) {
  HllCellStep c = flowing();
  c.Fh = -7.0;  // a quarter of a metre stays
  c.Fqx = 20.0;
  const HllCellUpdate bound = physics::update_hll<false>(c, zero_depth);
  EXPECT_DOUBLE_EQ(bound.h, 0.25);
  EXPECT_DOUBLE_EQ(bound.qx, 0.25 * 1.5);
  EXPECT_DOUBLE_EQ(bound.qy, 0.25 * -2.0);
  EXPECT_DOUBLE_EQ(bound.taken_discharge, std::hypot(8.0 - 0.25 * 1.5, -4.0 + 0.25 * 2.0));
  c.Fqx = -12.0;
  c.Fqy = 16.0;
  const HllCellUpdate free = physics::update_hll<false>(c, zero_depth);
  EXPECT_NEAR(free.qx, 0.0, 1e-15);
  EXPECT_EQ(free.taken_discharge, 0.0);
}

TEST(UpdateHll, WaterThatRisesMayMoveAsItsMomentumSays) {
  HllCellStep c = flowing();
  c.Fh = 1.0;
  c.Fqx = 1e4;
  EXPECT_DOUBLE_EQ(physics::update_hll<false>(c, zero_depth).qx, 3.0 + 2500.0);
}

TEST(UpdateHll, FrictionIsImplicitInTheNewSpeed) {
  HllCellStep c = flowing();
  c.resistance = physics::manning_resistance(0.1);
  const HllCellUpdate after = physics::update_hll<true>(c, zero_depth);
  const double u = after.qx / 2.0, v = after.qy / 2.0, speed = std::hypot(u, v);
  const double k = 9.81 * 0.01 / std::pow(2.0, 4.0 / 3.0);
  EXPECT_NEAR(speed, 2.5 - c.dt * k * speed * speed, 1e-14);
  EXPECT_NEAR(u / v, -0.75, 1e-14);
}

TEST(UpdateHll, FrictionSlowsDownAndNeverReverses) {
  Source random;
  for (int i = 0; i < 2000; ++i) {
    HllCellStep c = flowing();
    c.h = random.between(0.02, 0.1);
    c.resistance = random.between(0.0, 10.0);
    c.dt = random.between(0.0, 100.0);
    const HllCellUpdate after = physics::update_hll<true>(c, zero_depth);
    EXPECT_GE(after.qx, 0.0);
    EXPECT_LE(after.qx, 3.0 * (1.0 + 1e-15));
    EXPECT_LE(after.qy, 0.0);
  }
}

TEST(UpdateHll, AFilmThatFrictionHoldsInALongStepIsNoWaterThatDrainsTooFast) {
  HllCellStep c = flowing();
  c.h = 0.05;
  c.u = 0.2;
  c.qx = 0.2 * 0.05;
  c.v = c.qy = 0.0;
  c.Fh = -1e-3;
  c.source = {-0.05, 0.0};
  c.dt = 2.0;
  c.resistance = physics::manning_resistance(0.1);
  const HllCellUpdate after = physics::update_hll<true>(c, zero_depth);
  EXPECT_EQ(after.taken_discharge, 0.0);
  EXPECT_GT(after.qx / after.h, 0.25);
  EXPECT_GT(physics::update_hll<false>(c, zero_depth).taken_discharge, 0.0);
}

TEST(UpdateHll, WithoutRoughnessHasTheBitsOfNoFriction) {
  Source random;
  for (int i = 0; i < 2000; ++i) {
    HllCellStep c = flowing();
    c.h = random.between(0.0, 0.1);
    c.Fh = random.between(-0.1, 0.1) * c.h;
    c.Fqx = random.between(-1.0, 1.0);
    const HllCellUpdate with = physics::update_hll<true>(c, zero_depth);
    const HllCellUpdate without = physics::update_hll<false>(c, zero_depth);
    EXPECT_EQ(with.h, without.h);
    EXPECT_EQ(with.qx, without.qx);
    EXPECT_EQ(with.qy, without.qy);
  }
}

}  // namespace hll_cell_update_test
