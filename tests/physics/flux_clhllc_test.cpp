#include "physics/flux_clhllc.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "physics/flux_lhllc.hpp"

namespace flux_clhllc_test {

namespace {

constexpr double zero_depth = 1e-3;
constexpr double porosity = 0.4;
const physics::Edge edge = {0.6, 0.8, 2.0};

physics::CellWater water(double zb, double h, double qx, double qy) {
  return {h, qx, qy, zb, zb + h};
}

physics::CoupledSlotPair flux(const physics::CellWater& l, const physics::CellSediment& bl,
                              const physics::CellWater& r, const physics::CellSediment& br) {
  return flux_clhllc(l, bl, r, br, edge, porosity, zero_depth);
}

void expect_no_exchange(const physics::CoupledSlot& slot) {
  EXPECT_EQ(slot.water.h, 0.0);
  EXPECT_EQ(slot.water.qx, 0.0);
  EXPECT_EQ(slot.water.qy, 0.0);
  EXPECT_EQ(slot.hs, 0.0);
}

}  // namespace

TEST(FluxClhllc, TwoDryCellsExchangeNothing) {
  const auto slots = flux(water(0.0, 0.0, 1.0, 1.0), {1.0, 0.1, 0.1, -1.0},
                          water(1.0, zero_depth, 1.0, 1.0), {0.5, 0.1, 0.1, -1.0});
  expect_no_exchange(slots.left);
  expect_no_exchange(slots.right);
}

TEST(FluxClhllc, ADryBankAboveTheWaterStopsWaterAndSediment) {
  const auto slots = flux(water(0.0, 1.0, 0.5, 0.5), {1.0, 0.01, 0.01, -0.1},
                          water(1.5, 0.0, 0.0, 0.0), {0.2, 0.0, 0.0, 0.0});
  EXPECT_EQ(slots.left.water.h, 0.0);
  EXPECT_EQ(slots.left.hs, 0.0);
  EXPECT_EQ(slots.right.hs, 0.0);
}

TEST(FluxClhllc, StillWaterOverAnEvenLayerMovesNoSediment) {
  const auto slots = flux(water(0.0, 1.0, 0.0, 0.0), {0.4, 0.0, 0.0, 0.0},
                          water(0.3, 0.7, 0.0, 0.0), {0.4, 0.0, 0.0, 0.0});
  EXPECT_EQ(slots.left.hs, 0.0);
  EXPECT_EQ(slots.right.hs, 0.0);
  EXPECT_EQ(slots.left.water.h, 0.0);
}

TEST(FluxClhllc, WithoutTransportForwardWaterIsThatOfTheFixedBed) {
  const auto l = water(0.1, 1.2, 0.6, 0.9), r = water(0.2, 0.8, 0.3, 0.5);
  const auto coupled = flux(l, {0.5, 0.0, 0.0, 0.0}, r, {0.5, 0.0, 0.0, 0.0});
  const auto fixed = physics::flux_lhllc(l, r, edge, zero_depth);
  EXPECT_NEAR(coupled.left.water.h, fixed.left.h, 1e-13);
  EXPECT_NEAR(coupled.left.water.qx, fixed.left.qx, 1e-13);
  EXPECT_NEAR(coupled.right.water.qy, fixed.right.qy, 1e-13);
}

TEST(FluxClhllc, WhatSedimentLeavesOneCellEntersTheOther) {
  const auto slots = flux(water(0.1, 1.2, 0.6, 0.9), {0.5, 1e-3, 2e-3, -1e-3},
                          water(0.2, 0.8, 0.3, 0.5), {0.7, 2e-3, 1e-3, -2e-3});
  EXPECT_NE(slots.left.hs, 0.0);
  EXPECT_EQ(slots.left.hs, -slots.right.hs);
}

TEST(FluxClhllc, EqualSidesCarryTheirOwnBedLoadEnlargedByThePores) {
  const auto w = water(0.1, 1.2, 0.6, 0.9);
  const physics::CellSediment bed = {0.5, 1e-3, 2e-3, -1e-3};
  const auto slots = flux(w, bed, w, bed);
  const double qsn = 1e-3 * 0.6 + 2e-3 * 0.8;
  EXPECT_NEAR(slots.right.hs, edge.length * qsn / (1.0 - porosity), 1e-15);
}

TEST(FluxClhllc, TheSedimentFluxIsTheHllAverageBetweenTheBoundsOfTheBedWave) {
  const auto l = water(0.0, 1.0, 1.2, 1.6), r = water(0.0, 0.9, 1.2, 1.6);  // qn = 2, qt = 0
  const double dqs_dh = -0.02;
  const auto slots = flux(l, {0.5, 6e-4, 8e-4, dqs_dh}, r, {0.6, 3e-4, 4e-4, dqs_dh});

  double s1[2], s2[2];
  const double depth[2] = {1.0, 0.9};
  for (int k = 0; k < 2; ++k) {
    const double h = depth[k], u = 2.0 / h, c = std::sqrt(9.81 * h);
    const double lambda = std::sqrt((u - c) * (u - c) - 4.0 * 9.81 * h * dqs_dh / (0.6 * (u + c)));
    s1[k] = 0.5 * (u - c - lambda);
    s2[k] = 0.5 * (u - c + lambda);
  }
  const double SL = std::min({s1[0], s1[1], 0.0});
  const double SR = std::max({s2[0], s2[1], 0.0});
  const double Fs =
      (SR * 1e-3 - SL * 5e-4 + SL * SR * (0.6 - 0.5)) / ((SR - SL) * (1.0 - porosity));
  EXPECT_NEAR(slots.right.hs, edge.length * Fs, 1e-13);
}

TEST(FluxClhllc, ADrySideBringsNoBedLoad) {
  const auto l = water(0.0, 1.0, 0.6, 0.8);
  const auto with =
      flux(l, {0.5, 1e-3, 1e-3, 0.0}, water(0.0, 0.0, 0.0, 0.0), {0.5, 1.0, 1.0, 0.0});
  const auto without =
      flux(l, {0.5, 1e-3, 1e-3, 0.0}, water(0.0, 0.0, 0.0, 0.0), {0.5, 0.0, 0.0, 0.0});
  EXPECT_EQ(with.left.hs, without.left.hs);
}

TEST(FluxClhllc, StillWaterRunsOntoADryBedOnItsLeftAndMovesNoSediment) {
  // Between waves at -c and c, with c^2 = 9.81 h, the mass flux is -c h / 2.
  const auto slots = flux(water(0.0, 0.0, 0.0, 0.0), {0.5, 1.0, 1.0, 0.0},
                          water(0.0, 1.0, 0.0, 0.0), {0.7, 0.0, 0.0, 0.0});
  EXPECT_DOUBLE_EQ(slots.left.water.h, edge.length * std::sqrt(9.81) / 2.0);
  EXPECT_EQ(slots.right.water.h, -slots.left.water.h);
  EXPECT_EQ(slots.left.hs, 0.0);
  EXPECT_EQ(slots.right.hs, 0.0);
}

TEST(FluxClhllc, ABedWaveThatStandsStillMovesNoSediment) {
  // Critical flow over a bed that cannot move: both bounds of the bed wave are 0, and only the wave
  // downstream, at 2 m/s, is left. The water passes as it is.
  const physics::EdgeSide critical = {.wet = true,
                                      .h = 0.5,
                                      .zb = 0.0,
                                      .eta = 0.5,
                                      .qn = 0.5,
                                      .qt = 0.0,
                                      .un = 1.0,
                                      .ut = 0.0,
                                      .c = 1.0};
  const auto slots = flux_clhllc(critical, {0.5, 0.0, 0.0, 0.0}, critical, {0.9, 0.0, 0.0, 0.0},
                                 edge, porosity, zero_depth);
  EXPECT_EQ(slots.left.hs, 0.0);
  EXPECT_EQ(slots.right.hs, 0.0);
  EXPECT_EQ(slots.left.water.h, -edge.length * 0.5);
  EXPECT_EQ(slots.right.water.h, edge.length * 0.5);
}

TEST(FluxClhllc, TellsWhichSideIsNotHyperbolic) {
  const auto w = water(0.0, 1.0, 0.6, 0.8);
  const auto slots = flux(w, {0.5, 0.0, 0.0, 0.0}, w, {0.5, 0.0, 0.0, 100.0});
  EXPECT_GE(slots.left_radicand, 0.0);
  EXPECT_LT(slots.right_radicand, 0.0);
  EXPECT_TRUE(std::isfinite(slots.left.water.h + slots.left.hs));
}

}  // namespace flux_clhllc_test
