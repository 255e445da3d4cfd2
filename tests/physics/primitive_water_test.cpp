#include "physics/primitive_water.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace primitive_water_test {

constexpr double zero_depth = 1e-3;

TEST(PrimitiveWater, HasTheVelocityOfItsDischarge) {
  const auto w = physics::primitive_water<false>(2.0, 3.0, -5.0, 0.0, zero_depth);
  EXPECT_EQ(w.h, 2.0);
  EXPECT_EQ(w.u, 1.5);
  EXPECT_EQ(w.v, -2.5);
  EXPECT_EQ(w.drag, 0.0);
}

TEST(PrimitiveWater, StandsWhereItIsNotDeeperThanTheThreshold) {
  const auto w = physics::primitive_water<true>(zero_depth, 3.0, -5.0, 1.0, zero_depth);
  EXPECT_EQ(w.h, zero_depth);
  EXPECT_EQ(w.u, 0.0);
  EXPECT_EQ(w.v, 0.0);
  EXPECT_EQ(w.drag, 0.0);
}

TEST(PrimitiveWater, IsSlowedDownAsManningSays) {
  const double n = 0.03, h = 0.5, qx = 0.6, qy = -0.8;
  const auto w =
      physics::primitive_water<true>(h, qx, qy, physics::manning_resistance(n), zero_depth);
  EXPECT_NEAR(w.drag, 9.81 * n * n * (1.0 / h) / std::pow(h, 4.0 / 3.0), 1e-15);
}

TEST(PrimitiveWater, OfNextToNoDepthOverAThresholdOfZeroIsFinite) {
  const auto w = physics::primitive_water<true>(1e-300, 1e-300, 0.0, 0.01, 0.0);
  EXPECT_TRUE(std::isfinite(w.u));
  EXPECT_TRUE(std::isfinite(w.drag));
}

TEST(CrossingRate, IsThatOfTheFastestWave) {
  const physics::PrimitiveWater w{0.981, 3.0, 4.0, 0.0};
  EXPECT_DOUBLE_EQ(physics::crossing_rate(w, 0.25, zero_depth), (5.0 + 9.81 * std::sqrt(0.1)) / 4);
}

TEST(CrossingRate, OfADryCellIsZero) {
  EXPECT_EQ(physics::crossing_rate({zero_depth, 0.0, 0.0, 0.0}, 0.25, zero_depth), 0.0);
}

}  // namespace primitive_water_test
