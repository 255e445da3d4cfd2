#include "physics/hll_water.hpp"

#include <gtest/gtest.h>

#include <limits>

#include "support/edge_side.hpp"
#include "support/unit_wave.hpp"

namespace hll_water_test {

using support::k;
constexpr double zero_depth = 1e-6;

/// One side of an edge along y.
physics::EdgeSide side(double zb, double h, double un = 0.0, double ut = 0.0) {
  return support::edge_side(zb, h, un, ut, zero_depth);
}

// The wave bounds of water of depth 4k at 1 m/s beside water of depth k at rest.
constexpr physics::WaveBounds waves{-1.0, 3.0};

TEST(HllWater, AveragesTheFluxesOfBothSides) {
  // Over a flat bed, in units of k: sigma 12 and 1/2.
  const physics::WaterFlux F = physics::hll_water(side(0.0, 4.0 * k, 1.0), side(0.0, k), waves);
  EXPECT_DOUBLE_EQ(F.Fh, 5.25 * k);     // (3 * 4 + 3 * 3) / 4
  EXPECT_DOUBLE_EQ(F.FnL, 12.125 * k);  // (3 * 12 + 1/2 + 3 * 4) / 4
  EXPECT_DOUBLE_EQ(F.FnR, 12.125 * k);
}

TEST(HllWater, ABedStepPushesEachSideByItsShareOfTheThrust) {
  // Step k, thrust of the step (1/2) g k (4k + k) = 2.5 k.
  const physics::WaterFlux F = physics::hll_water(side(0.0, 4.0 * k, 1.0), side(k, k), waves);
  EXPECT_DOUBLE_EQ(F.Fh, 4.5 * k);                // (3 * 4 + 3 * 2) / 4
  EXPECT_DOUBLE_EQ(F.FnL, (12.125 + 0.625) * k);  // + 1 * 2.5 / 4
  EXPECT_DOUBLE_EQ(F.FnR, (12.125 - 1.875) * k);  // - 3 * 2.5 / 4
}

TEST(HllWater, AStepAboveTheLeftWaterCountsAsHighAsThatWater) {
  // Step 5k, but the left water is 4k deep: thrust (1/2) g 4k 5k = 10k on the left, 12.5k right.
  const physics::WaterFlux F = physics::hll_water(side(0.0, 4.0 * k, 1.0), side(5.0 * k, k), waves);
  EXPECT_DOUBLE_EQ(F.Fh, 1.5 * k);                // (3 * 4 - 3 * 2) / 4
  EXPECT_DOUBLE_EQ(F.FnL, (12.125 + 2.5) * k);    // + 1 * 10 / 4
  EXPECT_DOUBLE_EQ(F.FnR, (12.125 - 9.375) * k);  // - 3 * 12.5 / 4
}

TEST(HllWater, ADropBelowTheLeftBedCountsAsTheRightDepthWithPositiveSign) {
  // Step -6k, right water below the left bed: -15k on the left, and +(1/2) g k 5k = 2.5k right.
  const physics::WaterFlux F = physics::hll_water(side(6.0 * k, 4.0 * k, 1.0), side(0.0, k), waves);
  EXPECT_DOUBLE_EQ(F.Fh, 9.75 * k);               // (3 * 4 + 3 * 9) / 4
  EXPECT_DOUBLE_EQ(F.FnL, (12.125 - 3.75) * k);   // + 1 * -15 / 4
  EXPECT_DOUBLE_EQ(F.FnR, (12.125 - 1.875) * k);  // - 3 * 2.5 / 4
}

TEST(HllWater, ALeftSurfaceExactlyAtTheRightBedIsNotCapped) {
  // A depth of 2k under a surface at 4k, so that the cap would show; thrust (1/2) g 4k 3k = 6k.
  const physics::EdgeSide L{true, 2.0 * k, 0.0, 4.0 * k, 0.0, 0.0, 0.0, 0.0, std::sqrt(2.0)};
  const physics::WaterFlux F = physics::hll_water(L, side(4.0 * k, k), {-1.0, 1.0});
  EXPECT_DOUBLE_EQ(F.FnL, (1.25 + 3.0) * k);  // (2 + 1/2) / 2 + 1 * 6 / 2
}

TEST(HllWater, ARightSurfaceExactlyAtTheLeftBedIsNotCapped) {
  // The step is -k; capped it would count as +k. Thrust (1/2) g k 3k = 1.5k.
  const physics::EdgeSide R{true, k, 3.0 * k, 4.0 * k, 0.0, 0.0, 0.0, 0.0, 1.0};
  const physics::WaterFlux F = physics::hll_water(side(4.0 * k, 2.0 * k), R, {-1.0, 1.0});
  EXPECT_DOUBLE_EQ(F.FnR, (1.25 + 0.75) * k);  // (2 + 1/2) / 2 + 1 * 1.5 / 2
}

TEST(HllWater, WaterAtTheLevelOfADryBankFlows) {
  const physics::EdgeSide L = side(0.0, 4.0 * k, 1.0);
  const physics::WaterFlux F = physics::hll_water(L, side(L.eta, 0.0), waves);
  EXPECT_DOUBLE_EQ(F.Fh, 3.0 * k);  // 3 * 4 / 4
}

TEST(HllWater, WaterBelowADryBankIsCutOffAndStillPushes) {
  const physics::EdgeSide L = side(0.0, 4.0 * k, 1.0, 5.0);
  const double above = std::nextafter(L.eta, 1.0);
  const physics::WaterFlux F = physics::hll_water(L, side(above, 0.0), waves);
  EXPECT_EQ(F.Fh, 0.0);
  EXPECT_EQ(F.Ft, 0.0);
  EXPECT_DOUBLE_EQ(F.FnL, 14.0 * k);  // (3 * 12 + 3 * 4) / 4 + 1 * (1/2) g 4k 4k / 4
}

TEST(HllWater, ADryBankOnTheLeftCutsOffToo) {
  const physics::EdgeSide R = side(0.0, 4.0 * k, -1.0);
  const double above = std::nextafter(R.eta, 1.0);
  EXPECT_EQ(physics::hll_water(side(above, 0.0), R, {-3.0, 1.0}).Fh, 0.0);
  EXPECT_DOUBLE_EQ(physics::hll_water(side(R.eta, 0.0), R, {-3.0, 1.0}).Fh, -3.0 * k);
}

TEST(HllWater, TangentialVelocityComesFromTheSideTheWaterLeaves) {
  const auto flux = [](double level_left, double level_right) {
    return physics::hll_water(side(0.0, level_left, 0.0, 2.0), side(0.0, level_right, 0.0, -7.0),
                              {-2.0, 2.0});
  };
  // Fh = -S_L S_R (difference of levels) / 4 = 3k from the deeper side.
  EXPECT_DOUBLE_EQ(flux(4.0 * k, k).Ft, 2.0 * 3.0 * k);
  EXPECT_DOUBLE_EQ(flux(k, 4.0 * k).Ft, -7.0 * -3.0 * k);
  EXPECT_EQ(flux(k, k).Fh, 0.0);
  EXPECT_EQ(flux(k, k).Ft, 0.0);
}

TEST(HllWater, WithoutASpreadOfWavesNothingFlows) {
  const physics::WaterFlux F =
      physics::hll_water(side(0.0, 4.0 * k, 1.0), side(0.0, k), {0.0, 0.0});
  EXPECT_EQ(F.Fh, 0.0);
  EXPECT_EQ(F.FnL, 0.0);
  EXPECT_EQ(F.FnR, 0.0);
  EXPECT_EQ(F.Ft, 0.0);
}

TEST(HllWater, WaveBoundsThatAreNotNumbersLetNothingFlow) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const physics::WaterFlux F =
      physics::hll_water(side(0.0, 4.0 * k, 1.0), side(0.0, k), {nan, nan});
  EXPECT_EQ(F.Fh, 0.0);
  EXPECT_EQ(F.FnL, 0.0);
  EXPECT_EQ(F.FnR, 0.0);
  EXPECT_EQ(F.Ft, 0.0);
}

}  // namespace hll_water_test
