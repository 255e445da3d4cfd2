#include "physics/stable_step.hpp"

#include <gtest/gtest.h>

#include "support/unit_wave.hpp"

namespace stable_step_test {

using support::k;
constexpr double zero_depth = 0.01;

TEST(StableStep, IsTheTimeTheFastestWaveTakesThroughTheCell) {
  // Velocity (3, 4) m/s, celerity 2 m/s, characteristic length 14 m.
  const double h = 4.0 * k;
  EXPECT_DOUBLE_EQ(physics::stable_step(h, 3.0 * h, 4.0 * h, 14.0, zero_depth), 2.0);
}

TEST(StableStep, ADryCellIsUnbounded) {
  EXPECT_EQ(physics::stable_step(zero_depth, 1.0, 1.0, 14.0, zero_depth), 1e20);
  EXPECT_EQ(physics::stable_step(-1.0, 1.0, 1.0, 14.0, zero_depth), 1e20);
}

TEST(StableStepDry, IsHalfTheTimeOfAWaveOfTheLargestInitialDepth) {
  EXPECT_DOUBLE_EQ(physics::stable_step_dry(12.0, 9.0 * k, zero_depth), 2.0);  // 12 / (2 * 3)
}

TEST(StableStepDry, IsUnboundedInADomainThatWasDryFromTheStart) {
  EXPECT_EQ(physics::stable_step_dry(12.0, zero_depth, zero_depth), 1e20);
  EXPECT_EQ(physics::stable_step_dry(12.0, 0.0, zero_depth), 1e20);
}

TEST(StableStepDomain, IsATenthOfTheSmallestLengthWhereNoCellBoundsIt) {
  EXPECT_EQ(physics::stable_step_domain(0.25, 12.0), 0.25);
  EXPECT_EQ(physics::stable_step_domain(1e20, 12.0), 1.2);
}

}  // namespace stable_step_test
