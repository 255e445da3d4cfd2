#include "physics/boundary_water_level.hpp"

#include <gtest/gtest.h>

#include "support/edge_side.hpp"
#include "support/unit_wave.hpp"

namespace boundary_water_level_test {

using support::k;
constexpr double zero_depth = 1e-6;

physics::BoundaryFlux imposed(double h, double un, double ut, double h_imposed) {
  return physics::boundary_water_level(support::edge_side(0.0, h, un, ut, zero_depth), h_imposed,
                                       zero_depth);
}

TEST(BoundaryWaterLevel, TheOutgoingInvariantGivesTheVelocity) {
  // h = 4k (c = 2) to k (c = 1): un* = 1 + 2 = 3, qn* = 3k, sigma = k/2 + 9k.
  EXPECT_FLUX_NEAR(imposed(4.0 * k, 1.0, 5.0, k), 3.0 * k, 9.5 * k, 15.0 * k, 1e-14);
}

TEST(BoundaryWaterLevel, InflowBringsNoTangentialMomentum) {
  // un* = -1 + 2 (1 - 2) = -3 at the depth 4k: qn* = -12k, sigma = 8k + 36k.
  const physics::BoundaryFlux flux = imposed(k, -1.0, 5.0, 4.0 * k);
  EXPECT_FLUX_NEAR(flux, -12.0 * k, 44.0 * k, 0.0, 1e-14);
  EXPECT_EQ(flux.tangential, 0.0);
}

TEST(BoundaryWaterLevel, TheVelocityOfTheCellTellsOutflowFromInflow) {
  // un* = 1 + 2 (1 - 2) = -1 at the depth 4k, yet the cell's water moves out.
  EXPECT_NEAR(imposed(k, 1.0, 5.0, 4.0 * k).tangential, 5.0 * -4.0 * k, 1e-14);
  // un* = -1 + 2 (2 - 1) = 1 at the depth k, yet the cell's water moves in.
  EXPECT_EQ(imposed(4.0 * k, -1.0, 5.0, k).tangential, 0.0);
  // The cell's water does not cross the edge.
  EXPECT_EQ(imposed(4.0 * k, 0.0, 5.0, k).tangential, 0.0);
}

TEST(BoundaryWaterLevel, ALakeAtRestAtTheImposedLevelStays) {
  const double h = 1.7;
  const physics::BoundaryFlux flux = imposed(h, 0.0, 0.0, h);
  EXPECT_EQ(flux.mass, 0.0);
  EXPECT_DOUBLE_EQ(flux.normal, 4.905 * h * h);
  EXPECT_EQ(flux.tangential, 0.0);
}

TEST(BoundaryWaterLevel, SupercriticalWaterIsTreatedAlike) {
  // h = k, un = 5: un* = 5 + 2 (1 - 2) = 3 at the depth 4k.
  EXPECT_FLUX_NEAR(imposed(k, 5.0, 0.0, 4.0 * k), 12.0 * k, 44.0 * k, 0.0, 1e-14);
}

TEST(BoundaryWaterLevel, ALevelBelowTheBedGivesANegativeDischargeWithoutThrust) {
  // h* = -2k: c* = 0, un* = 1 + 4 = 5.
  EXPECT_FLUX_NEAR(imposed(4.0 * k, 1.0, 0.0, -2.0 * k), -10.0 * k, 0.0, 0.0, 1e-14);
}

TEST(BoundaryWaterLevel, ADryCellIsFilledAtTheCelerity) {
  EXPECT_FLUX_NEAR(imposed(zero_depth, 3.0, 2.0, 4.0 * k), -8.0 * k, 0.0, 0.0, 1e-14);
}

TEST(BoundaryWaterLevel, ADryCellGetsNothingFromALevelAtTheThresholdOrBelow) {
  for (const double h_imposed : {zero_depth, 0.0, -3.0}) {
    const physics::BoundaryFlux flux = imposed(zero_depth, 3.0, 2.0, h_imposed);
    EXPECT_EQ(flux.mass, 0.0) << h_imposed;
    EXPECT_EQ(flux.normal, 0.0) << h_imposed;
    EXPECT_EQ(flux.tangential, 0.0) << h_imposed;
  }
}

}  // namespace boundary_water_level_test
