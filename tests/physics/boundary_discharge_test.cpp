#include "physics/boundary_discharge.hpp"

#include <gtest/gtest.h>

#include "support/edge_side.hpp"
#include "support/unit_wave.hpp"

namespace boundary_discharge_test {

using support::k;
constexpr double zero_depth = 1e-6;

physics::BoundaryFlux imposed(double h, double un, double ut, double q, double qt = 0.0) {
  return physics::boundary_discharge(support::edge_side(0.0, h, un, ut, zero_depth), q, qt,
                                     zero_depth);
}

TEST(BoundaryDischarge, SubcriticalWaterFollowsTheWorkedExample) {
  // h = 4k, un = 1, ut = 2: c = 2, Fr = 1/2, sigma = 12k, mu = 8k, D = |-6k| - 4k = 2k.
  // Fn = 12k + 2 * 1.5 * 2k; Ft = 8k + 2 (-10k) + 1 (0 - 8k) - (2 * 0.5 / 1.5) (-10k).
  EXPECT_FLUX_NEAR(imposed(4.0 * k, 1.0, 2.0, -6.0 * k), -6.0 * k, 18.0 * k,
                   (-20.0 + 20.0 / 3.0) * k, 1e-14);
}

TEST(BoundaryDischarge, TheSignOfTheImposedValueDoesNotEnterTheNormalMomentum) {
  EXPECT_DOUBLE_EQ(imposed(4.0 * k, 1.0, 0.0, 6.0 * k).normal,
                   imposed(4.0 * k, 1.0, 0.0, -6.0 * k).normal);
}

TEST(BoundaryDischarge, ATangentialDischargeTravelsWithTheNormalVelocity) {
  const double without = imposed(4.0 * k, 1.0, 2.0, -6.0 * k, 0.0).tangential;
  const double with = imposed(4.0 * k, 1.0, 2.0, -6.0 * k, 3.0 * k).tangential;
  EXPECT_NEAR(with - without, 3.0 * k, 1e-14);
}

TEST(BoundaryDischarge, SupercriticalWaterFollowsTheWorkedExample) {
  // h = 4k, un = 4, ut = 1: c = 2, Fr = 2, sigma = 72k, mu = 16k, D = 10k - 16k = -6k.
  // Fn = 72k + 8 (-6k) - (16 - 4) (-6k + 8k) / 6; Ft = 16k - 6k + 4 (-4k) - (2 / 3) (-6k).
  EXPECT_FLUX_NEAR(imposed(4.0 * k, 4.0, 1.0, 10.0 * k), 10.0 * k, 20.0 * k, -2.0 * k, 1e-13);
}

TEST(BoundaryDischarge, SupercriticalInflowTakesMagnitudes) {
  EXPECT_NEAR(imposed(4.0 * k, -4.0, 0.0, -10.0 * k).normal, 20.0 * k, 1e-13);
}

TEST(BoundaryDischarge, AFroudeNumberOfExactlyOneTakesTheSupercriticalFormula) {
  // There both formulas differ only by rounding; take depths where it shows.
  int shown = 0;
  for (double h = 0.5; h < 2.5; h += 0.001) {
    const double c = std::sqrt(9.81 * h);
    const auto side = physics::to_edge_frame({h, h * c, 0.0, 0.0, h}, {1.0, 0.0, 1.0}, zero_depth);
    ASSERT_EQ(physics::froude(side.qn, h, zero_depth), 1.0);
    const double sigma = 4.905 * h * h + side.qn * side.qn / h;
    const double un = side.un;
    const double D = 3.0 - side.qn;
    const double subcritical = sigma + c * 2.0 * D;
    const double supercritical = sigma + 2.0 * un * D - (un * un - c * c) * D / (1.5 * un);
    if (subcritical == supercritical) continue;
    EXPECT_EQ(physics::boundary_discharge(side, 3.0, 0.0, zero_depth).normal, supercritical) << h;
    ++shown;
  }
  EXPECT_GT(shown, 10);
}

TEST(BoundaryDischarge, WaterAtRestIsPushedByTheThrustAndTheWave) {
  // D = 6k: Fn = 8k + 2 * 6k.
  EXPECT_FLUX_NEAR(imposed(4.0 * k, 0.0, 0.0, -6.0 * k), -6.0 * k, 20.0 * k, 0.0, 1e-14);
}

TEST(BoundaryDischarge, ADryCellExchangesTheDischargeWithoutMomentum) {
  for (const double q : {-6.0, 6.0}) {
    const physics::BoundaryFlux flux = imposed(zero_depth, 3.0, 2.0, q, 1.0);
    EXPECT_EQ(flux.mass, q);
    EXPECT_EQ(flux.normal, 0.0);
    EXPECT_EQ(flux.tangential, 0.0);
  }
}

}  // namespace boundary_discharge_test
