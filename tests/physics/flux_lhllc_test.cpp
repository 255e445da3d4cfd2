#include "physics/flux_lhllc.hpp"

#include <gtest/gtest.h>

#include "support/unit_wave.hpp"

namespace flux_lhllc_test {

using support::k;
constexpr double zero_depth = 1e-6;
constexpr physics::Edge along_y{1.0, 0.0, 2.0};
constexpr physics::Edge oblique{0.6, 0.8, 2.0};

physics::CellWater water(double zb, double h, double u = 0.0, double v = 0.0) {
  return {h, h * u, h * v, zb, zb + h};
}

void expect_zero(const physics::WaterSlot& slot) {
  EXPECT_EQ(slot.h, 0.0);
  EXPECT_EQ(slot.qx, 0.0);
  EXPECT_EQ(slot.qy, 0.0);
}

TEST(WaterWaveBounds, TakeTheSlowestAndTheFastestWaveOfBothSides) {
  const auto L = physics::to_edge_frame(water(0.0, 4.0 * k, 1.0), along_y, zero_depth);
  const auto R = physics::to_edge_frame(water(0.0, k, -3.0), along_y, zero_depth);
  const physics::WaveBounds waves = physics::water_wave_bounds(L, R);
  EXPECT_DOUBLE_EQ(waves.SL, -4.0);  // of -1 and -4
  EXPECT_DOUBLE_EQ(waves.SR, 3.0);   // of 3 and -2
}

TEST(WaterWaveBounds, EncloseZeroWhenAllWavesRunOneWay) {
  const auto fast = physics::to_edge_frame(water(0.0, k, 5.0), along_y, zero_depth);
  EXPECT_EQ(physics::water_wave_bounds(fast, fast).SL, 0.0);
  EXPECT_DOUBLE_EQ(physics::water_wave_bounds(fast, fast).SR, 6.0);
  const auto back = physics::to_edge_frame(water(0.0, k, -5.0), along_y, zero_depth);
  EXPECT_DOUBLE_EQ(physics::water_wave_bounds(back, back).SL, -6.0);
  EXPECT_EQ(physics::water_wave_bounds(back, back).SR, 0.0);
}

TEST(FluxLhllc, LakeAtRestOverABedStepMovesNoWater) {
  const double level = 10.0;
  for (const double zR : {2.0, 7.5, 9.9}) {
    const double hL = level - 4.0;
    const double hR = level - zR;
    const auto slots = physics::flux_lhllc({hL, 0.0, 0.0, 4.0, level}, {hR, 0.0, 0.0, zR, level},
                                           oblique, zero_depth);
    const double thrustL = 4.905 * hL * hL;
    const double thrustR = 4.905 * hR * hR;
    EXPECT_EQ(slots.left.h, 0.0);
    EXPECT_NEAR(slots.left.qx, -2.0 * thrustL * 0.6, 1e-12 * thrustL);
    EXPECT_NEAR(slots.left.qy, -2.0 * thrustL * 0.8, 1e-12 * thrustL);
    EXPECT_EQ(slots.right.h, 0.0);
    EXPECT_NEAR(slots.right.qx, 2.0 * thrustR * 0.6, 1e-12 * thrustL);
    EXPECT_NEAR(slots.right.qy, 2.0 * thrustR * 0.8, 1e-12 * thrustL);
  }
}

TEST(FluxLhllc, SlotsAreTheWorkedExampleOverAFlatBed) {
  // Waves between -1 and 3 m/s: Fh = 5.25k, Fn = 12.125k, and 2 m/s along the edge go with it.
  const auto slots = physics::flux_lhllc(water(0.0, 4.0 * k, 1.0, 2.0), water(0.0, k, 0.0, -7.0),
                                         along_y, zero_depth);
  EXPECT_DOUBLE_EQ(slots.left.h, -10.5 * k);
  EXPECT_DOUBLE_EQ(slots.left.qx, -24.25 * k);
  EXPECT_DOUBLE_EQ(slots.left.qy, -21.0 * k);
  EXPECT_DOUBLE_EQ(slots.right.h, 10.5 * k);
  EXPECT_DOUBLE_EQ(slots.right.qx, 24.25 * k);
  EXPECT_DOUBLE_EQ(slots.right.qy, 21.0 * k);
}

TEST(FluxLhllc, EachSideOfABedStepGetsItsOwnNormalMomentum) {
  const auto slots =
      physics::flux_lhllc(water(0.0, 4.0 * k, 1.0), water(k, k), along_y, zero_depth);
  EXPECT_DOUBLE_EQ(slots.left.qx, -2.0 * 12.75 * k);
  EXPECT_DOUBLE_EQ(slots.right.qx, 2.0 * 10.25 * k);
}

TEST(FluxLhllc, TwoDrySidesExchangeExactlyNothing) {
  const physics::CellWater left{zero_depth, 3.0, 4.0, 0.0, 9.0};
  const physics::CellWater right{-1.0, 5.0, -2.0, 1.0, 0.0};
  const auto slots = physics::flux_lhllc(left, right, oblique, zero_depth);
  expect_zero(slots.left);
  expect_zero(slots.right);
}

TEST(FluxLhllc, ADryBankAboveTheWaterGetsNoMassButIsPushed) {
  const auto slots =
      physics::flux_lhllc(water(0.0, 4.0 * k, 1.0), water(5.0 * k, 0.0), along_y, zero_depth);
  EXPECT_EQ(slots.left.h, 0.0);
  EXPECT_EQ(slots.right.h, 0.0);
  // Fn = (3 * 12 + 3 * 4) / 4 = 12, minus 3 (1/2) 5 * 4 / 4 = 7.5 on the right.
  EXPECT_DOUBLE_EQ(slots.right.qx, 2.0 * 4.5 * k);
}

TEST(FluxLhllc, WaterRunsDownIntoADryCell) {
  // The dry side stands in with waves of speed 0: waves between -1 and 3 m/s.
  const auto slots =
      physics::flux_lhllc(water(2.0 * k, 4.0 * k, 1.0), water(0.0, 0.0), along_y, zero_depth);
  EXPECT_DOUBLE_EQ(slots.right.h, 2.0 * 7.5 * k);    // (3 * 4 + 3 * 6) / 4
  EXPECT_DOUBLE_EQ(slots.left.qx, -2.0 * 11.0 * k);  // 12 + 1 (1/2) (-2) 4 / 4
  EXPECT_DOUBLE_EQ(slots.right.qx, 2.0 * 12.0 * k);  // capped by a depth of 0
}

TEST(FluxLhllc, AFilmOnADrySideBelongsToTheBedStep) {
  // The right depth k/2 is at the threshold: no celerity, no thrust, yet part of hL + hR.
  const double film = 0.5 * k;
  const auto slots =
      physics::flux_lhllc(water(0.0, 4.0 * k, 1.0), water(k, film, 8.0), along_y, film);
  EXPECT_DOUBLE_EQ(slots.right.h, 2.0 * 4.875 * k);     // (3 * 4 + 3 * 2.5) / 4
  EXPECT_DOUBLE_EQ(slots.left.qx, -2.0 * 12.5625 * k);  // 12 + 1 (1/2) 4.5 / 4
  EXPECT_DOUBLE_EQ(slots.right.qx, 2.0 * (12.0 - 1.6875) * k);
}

TEST(FluxLhllc, SupercriticalFlowCarriesTheUpstreamFlux) {
  // 5 m/s at a celerity of 1 m/s; the level on the right does not matter.
  const auto slots =
      physics::flux_lhllc(water(0.0, k, 5.0, 2.0), water(0.0, 4.0 * k, 5.0), along_y, zero_depth);
  EXPECT_DOUBLE_EQ(slots.right.h, 2.0 * 5.0 * k);
  EXPECT_DOUBLE_EQ(slots.right.qx, 2.0 * 25.5 * k);
  EXPECT_DOUBLE_EQ(slots.right.qy, 2.0 * 10.0 * k);
}

}  // namespace flux_lhllc_test
