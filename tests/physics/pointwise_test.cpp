#include "physics/pointwise.hpp"

#include <gtest/gtest.h>

#include "support/unit_wave.hpp"

namespace pointwise_test {

using support::k;
constexpr double zero_depth = 0.01;

TEST(Pointwise, ADepthAtTheThresholdIsDry) {
  EXPECT_FALSE(physics::is_wet(zero_depth, zero_depth));
  EXPECT_TRUE(physics::is_wet(std::nextafter(zero_depth, 1.0), zero_depth));
}

TEST(Pointwise, EveryQuantityOfADryDepthIsZero) {
  for (const double h : {zero_depth, 0.5 * zero_depth, 0.0, -0.0, -1.0}) {
    EXPECT_EQ(physics::celerity(h, zero_depth), 0.0) << h;
    EXPECT_EQ(physics::froude(2.0, h, zero_depth), 0.0) << h;
    EXPECT_EQ(physics::sigma(2.0, h, zero_depth), 0.0) << h;
    EXPECT_EQ(physics::mu(2.0, 3.0, h, zero_depth), 0.0) << h;
  }
}

TEST(Pointwise, EveryQuantityOfTheShallowestWaterIsThere) {
  const double h = std::nextafter(zero_depth, 1.0);
  EXPECT_GT(physics::celerity(h, zero_depth), 0.0);
  EXPECT_GT(physics::froude(2.0, h, zero_depth), 0.0);
  EXPECT_GT(physics::sigma(2.0, h, zero_depth), 0.0);
  EXPECT_GT(physics::mu(2.0, 3.0, h, zero_depth), 0.0);
}

TEST(Pointwise, CelerityIsTheRootOfGravityTimesDepth) {
  EXPECT_DOUBLE_EQ(physics::celerity(k, zero_depth), 1.0);
  EXPECT_DOUBLE_EQ(physics::celerity(9.0 * k, zero_depth), 3.0);
}

TEST(Pointwise, TheFroudeNumberKeepsTheSignOfTheDischarge) {
  // Velocity 6 m/s over a celerity of 2 m/s.
  EXPECT_DOUBLE_EQ(physics::froude(24.0 * k, 4.0 * k, zero_depth), 3.0);
  EXPECT_DOUBLE_EQ(physics::froude(-24.0 * k, 4.0 * k, zero_depth), -3.0);
}

TEST(Pointwise, TheMomentumFluxOfWaterAtRestIsTheHydrostaticThrust) {
  EXPECT_DOUBLE_EQ(physics::sigma(0.0, 2.0, zero_depth), 19.62);
}

TEST(Pointwise, TheMomentumFluxAddsAdvectionToTheThrust) {
  EXPECT_DOUBLE_EQ(physics::sigma(3.0, 2.0, zero_depth), 19.62 + 4.5);
  EXPECT_DOUBLE_EQ(physics::sigma(-3.0, 2.0, zero_depth), 19.62 + 4.5);
}

TEST(Pointwise, TheTangentialMomentumFluxIsCarriedByTheNormalVelocity) {
  EXPECT_DOUBLE_EQ(physics::mu(3.0, -5.0, 2.0, zero_depth), -7.5);
}

}  // namespace pointwise_test
