#include "physics/bed_load_mpm.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace bed_load_mpm_test {

namespace {
const physics::Grains sand = {0.001, 2.65};
}

TEST(BedLoadMpm, AWorkedExample) {
  const double theta = physics::shields_number(4.0, 1.0, 1.0, 0.03, sand);
  EXPECT_NEAR(theta, 0.0009 * 4.0 / (1.65 * 0.001), 1e-12);  // 2.1818
  const physics::BedLoad load = physics::bed_load_mpm(1.0, 1.0, 2.0, 0.0, 0.03, sand);
  EXPECT_TRUE(load.moves);
  EXPECT_NEAR(load.qsx, 8.0 * std::sqrt(9.81 * 1.65 * 1e-9) * std::pow(theta - 0.047, 1.5), 1e-15);
  EXPECT_NEAR(load.qsx, 0.003175, 5e-7);
  EXPECT_EQ(load.qsy, 0.0);
}

TEST(BedLoadMpm, FollowsTheDirectionOfTheFlow) {
  const physics::BedLoad load = physics::bed_load_mpm(1.0, 1.0, -1.2, 1.6, 0.03, sand);
  const physics::BedLoad along = physics::bed_load_mpm(1.0, 1.0, 2.0, 0.0, 0.03, sand);
  EXPECT_NEAR(load.qsx, -0.6 * along.qsx, 1e-16);
  EXPECT_NEAR(load.qsy, 0.8 * along.qsx, 1e-16);
}

TEST(BedLoadMpm, TheDerivativeIsThatOfTheRateAtFixedDischarge) {
  const double h = 0.8, q = 1.5, step = 1e-6;
  const double above = physics::bed_load_mpm(h + step, 1.0 / (h + step), q, 0.0, 0.03, sand).qsx;
  const double below = physics::bed_load_mpm(h - step, 1.0 / (h - step), q, 0.0, 0.03, sand).qsx;
  const double slope = (above - below) / (2.0 * step);
  EXPECT_NEAR(physics::bed_load_mpm(h, 1.0 / h, q, 0.0, 0.03, sand).dqs_dh, slope,
              1e-7 * std::fabs(slope));
}

TEST(BedLoadMpm, DoesNotMoveAtTheThreshold) {
  // Look for grains and a discharge whose Shields number is the threshold to the last bit.
  double q = 0.0;
  physics::Grains grains = {0.0, 2.0};
  double theta = 0.0;
  for (int d = 1; d <= 1000 && theta != physics::critical_shields; ++d) {
    grains.d = d;
    q = std::sqrt(physics::critical_shields * d);
    theta = physics::shields_number(q * q, 1.0, 1.0, 1.0, grains);
  }
  ASSERT_EQ(theta, physics::critical_shields);
  EXPECT_FALSE(physics::bed_load_mpm(1.0, 1.0, q, 0.0, 1.0, grains).moves);
  EXPECT_TRUE(physics::bed_load_mpm(1.0, 1.0, 1.001 * q, 0.0, 1.0, grains).moves);
}

TEST(BedLoadMpm, StillWaterNeverDividesByItsDischarge) {
  const physics::BedLoad load = physics::bed_load_mpm(1.0, 1.0, 0.0, 0.0, 0.03, sand);
  EXPECT_FALSE(load.moves);
  EXPECT_EQ(load.qsx, 0.0);
  EXPECT_EQ(load.qsy, 0.0);
  EXPECT_EQ(load.dqs_dh, 0.0);
}

TEST(BedLoadMpm, WithoutFrictionNothingMoves) {
  EXPECT_FALSE(physics::bed_load_mpm(1.0, 1.0, 5.0, 0.0, 0.0, sand).moves);
}

}  // namespace bed_load_mpm_test
