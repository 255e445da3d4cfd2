#include "physics/boundary_wall.hpp"

#include <gtest/gtest.h>

#include "support/edge_side.hpp"
#include "support/unit_wave.hpp"

namespace boundary_wall_test {

using support::k;
constexpr double zero_depth = 1e-6;

physics::BoundaryFlux wall(double h, double un, double ut = 0.0) {
  return physics::boundary_wall(support::edge_side(0.0, h, un, ut, zero_depth), zero_depth);
}

// Depth 4k: celerity 2 m/s, thrust 8k.

TEST(BoundaryWall, WaterAtRestPushesWithItsThrust) {
  EXPECT_FLUX_NEAR(wall(4.0 * k, 0.0), 0.0, 8.0 * k, 0.0, 1e-14);
}

TEST(BoundaryWall, WaterMovingTowardsItAddsAdvectionAndTheReflectedWave) {
  // Advection 4k, reflected wave c qn = 2 * 4k.
  EXPECT_FLUX_NEAR(wall(4.0 * k, 1.0, 3.0), 0.0, 20.0 * k, 0.0, 1e-14);
}

TEST(BoundaryWall, WaterMovingAwayPushesWithItsThrustAlone) {
  EXPECT_FLUX_NEAR(wall(4.0 * k, -1.0, 3.0), 0.0, 8.0 * k, 0.0, 1e-14);
}

TEST(BoundaryWall, MassAndTangentialMomentumAreExactlyZero) {
  EXPECT_EQ(wall(4.0 * k, 1.0, 3.0).mass, 0.0);
  EXPECT_EQ(wall(4.0 * k, 1.0, 3.0).tangential, 0.0);
}

TEST(BoundaryWall, ADryCellFeelsNothing) {
  EXPECT_EQ(wall(zero_depth, 5.0).normal, 0.0);
  EXPECT_EQ(wall(-1.0, 5.0).normal, 0.0);
}

}  // namespace boundary_wall_test
