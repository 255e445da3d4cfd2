#include "physics/boundary_transmissive.hpp"

#include <gtest/gtest.h>

#include "support/edge_side.hpp"
#include "support/unit_wave.hpp"

namespace boundary_transmissive_test {

using support::k;
constexpr double zero_depth = 1e-6;

physics::BoundaryFlux outflow(double h, double un, double ut = 0.0) {
  return physics::boundary_transmissive(support::edge_side(0.0, h, un, ut, zero_depth), zero_depth);
}

TEST(CriticalDepth, IsWhereTheVelocityEqualsTheCelerity) {
  // q = h c(h) at h = 4k: 8k.
  EXPECT_NEAR(physics::critical_depth(8.0 * k), 4.0 * k, 1e-15);
  EXPECT_NEAR(physics::critical_depth(-8.0 * k), 4.0 * k, 1e-15);
  EXPECT_EQ(physics::critical_depth(0.0), 0.0);
}

// Depth 4k: celerity 2 m/s, thrust 8k. The discharge k has the critical depth k.

TEST(BoundaryTransmissive, SubcriticalOutflowIsDrawnToTheCriticalDepth) {
  // un - c = -1.75, hc - h = -3k; sigma = 8.25k.
  EXPECT_FLUX_NEAR(outflow(4.0 * k, 0.25, 2.0), 6.25 * k, (8.25 - 9.1875) * k,
                   (2.0 + 2.0 * 5.25) * k, 1e-14);
}

TEST(BoundaryTransmissive, SubcriticalInflowTakesTheSameBranch) {
  // un - c = -2.25.
  EXPECT_FLUX_NEAR(outflow(4.0 * k, -0.25, 2.0), 5.75 * k, (8.25 - 15.1875) * k,
                   (-2.0 + 2.0 * 6.75) * k, 1e-14);
}

TEST(BoundaryTransmissive, SupercriticalWaterLeavesWithItsOwnFlux) {
  EXPECT_FLUX_NEAR(outflow(4.0 * k, 3.0, 2.0), 12.0 * k, 44.0 * k, 24.0 * k, 1e-13);
}

TEST(BoundaryTransmissive, SupercriticalInflowKeepsItsOwnFluxToo) {
  EXPECT_FLUX_NEAR(outflow(4.0 * k, -3.0, 2.0), -12.0 * k, 44.0 * k, -24.0 * k, 1e-13);
}

TEST(BoundaryTransmissive, AFroudeNumberOfExactlyOneTakesTheCriticalDepth) {
  // There both branches differ only by the rounding of the critical depth; take inflows where it
  // shows.
  int shown = 0;
  for (double h = 0.5; h < 2.5; h += 0.001) {
    const double c = std::sqrt(9.81 * h);
    const double qn = -(h * c);
    const auto side = physics::to_edge_frame({h, qn, 0.0, 0.0, h}, {1.0, 0.0, 1.0}, zero_depth);
    ASSERT_EQ(physics::froude(side.qn, h, zero_depth), -1.0);
    const double hc = physics::critical_depth(qn);
    const double Fh = qn + (qn / h - c) * (hc - h);
    if (Fh == qn) continue;
    EXPECT_EQ(physics::boundary_transmissive(side, zero_depth).mass, Fh) << h;
    ++shown;
  }
  EXPECT_GT(shown, 10);
}

TEST(BoundaryTransmissive, ADryCellLetsNothingThrough) {
  const physics::BoundaryFlux flux = outflow(zero_depth, 5.0, 2.0);
  EXPECT_EQ(flux.mass, 0.0);
  EXPECT_EQ(flux.normal, 0.0);
  EXPECT_EQ(flux.tangential, 0.0);
}

}  // namespace boundary_transmissive_test
