#include "physics/hll_bed_flux.hpp"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/hll_random.hpp"

namespace hll_bed_flux_test {

using physics::HllBed;
using physics::HllEdgeState;

constexpr physics::Edge eastward = {1.0, 0.0, 2.0};
constexpr double plenty = 1e6;

/// Water on a bed at level 0, moving east.
HllEdgeState water(double h, double u, double bed = 0.0) { return {h, bed + h, u, 0.0, 1e9}; }
/// A bed whose load goes with the cube of the discharge.
HllBed sand(double per_discharge, double reserve = plenty, double hs = 1.0) {
  return {per_discharge, 3.0 * per_discharge, reserve, hs};
}

double flux(const HllEdgeState& l, const HllBed& bed_left, const HllEdgeState& r,
            const HllBed& bed_right) {
  const double passing = 0.5 * (l.h * l.u + r.h * r.u);
  return physics::hll_bed_flux(l, bed_left, r, bed_right, eastward, passing);
}

TEST(BedWave, RunsWithSlowWaterAndAgainstFast) {
  EXPECT_NEAR(physics::bed_wave(1.0, 0.5, 1e-3).from_left, 1.0, 1e-2);
  EXPECT_NEAR(physics::bed_wave(1.0, -0.5, 1e-3).from_left, -1.0, 1e-2);
  EXPECT_NEAR(physics::bed_wave(1.0, 6.0, 1e-3).from_left, -1.0, 1e-2);
  EXPECT_NEAR(physics::bed_wave(1.0, -6.0, 1e-3).from_left, 1.0, 1e-2);
  EXPECT_NEAR(physics::bed_wave(1.0, std::sqrt(9.81), 1e-3).from_left, 0.0, 1e-9);
}

TEST(BedWave, DampsAtCriticalFlowAlone) {
  const double change = 1e-3, critical = std::sqrt(9.81);
  // There both speeds are +-sqrt(g h change / (2 c)).
  EXPECT_NEAR(physics::bed_wave(1.0, critical, change).damping,
              0.5 * std::sqrt(9.81 * change / (2.0 * critical)), 1e-12);
  EXPECT_LT(physics::bed_wave(1.0, 0.5 * critical, change).damping, 1e-5);
  EXPECT_LT(physics::bed_wave(1.0, 2.0 * critical, change).damping, 1e-5);
}

TEST(BedWave, StandsStillWithoutALoad) {
  const physics::BedWave wave = physics::bed_wave(1.0, std::sqrt(9.81), 0.0);
  EXPECT_EQ(wave.from_left, 0.0);
  EXPECT_EQ(wave.damping, 0.0);
  EXPECT_EQ(physics::bed_wave(0.0, 0.0, 0.0).damping, 0.0);
}

TEST(HllBedFlux, OfUniformFlowIsItsLoadWhateverTheBedDoes) {
  for (const double u : {0.8, 3.0, 7.0}) {
    const HllEdgeState l = water(1.0, u, 0.0), r = water(1.0, u, -0.3);
    EXPECT_NEAR(flux(l, sand(0.01, plenty, 0.2), r, sand(0.01, plenty, 0.7)), 0.01 * u, 1e-15);
  }
}

TEST(HllBedFlux, TakesTheLoadOfTheSideThatTheBedWaveComesFrom) {
  const auto between = [](double u) {
    return flux(water(1.0, u), sand(1e-4), water(1.0, u), sand(3e-4)) / u;
  };
  EXPECT_NEAR(between(1.0), 1e-4, 1e-6);
  EXPECT_NEAR(between(7.0), 3e-4, 1e-6);
  EXPECT_NEAR(between(-1.0), 3e-4, 1e-6);
}

TEST(HllBedFlux, IsThatOfTheWaterThatPassesNotOfCellsThatScatter) {
  // Loads with the cube of discharges of 1 % more and less than what passes.
  const double u = 1.0, c = 1e-4;
  const HllEdgeState l = water(1.0, 1.01 * u), r = water(1.0, 0.99 * u);
  const HllBed bed_left = sand(c * 1.01 * 1.01), bed_right = sand(c * 0.99 * 0.99);
  EXPECT_NEAR(flux(l, bed_left, r, bed_right), c * u, 1e-3 * c);
  EXPECT_GT(bed_left.per_discharge * 1.01, 1.03 * c);
}

TEST(HllBedFlux, IsNotBeyondTheLoadsOfBothSides) {
  const HllEdgeState l = water(1.0, 1.0), r = water(1.0, 1.0);
  for (const double passing : {-50.0, 50.0}) {
    const double F = physics::hll_bed_flux(l, sand(1e-4), r, sand(2e-4), eastward, passing);
    EXPECT_GE(F, 1e-4);
    EXPECT_LE(F, 2e-4);
  }
}

TEST(HllBedFlux, NoSideGivesMoreThanItsReserve) {
  const HllEdgeState l = water(1.0, 1.0), r = water(1.0, 7.0);
  EXPECT_EQ(flux(l, sand(1e-4, 0.0), r, sand(1e-2)), 0.0);
  EXPECT_NEAR(flux(l, sand(1e-4, 0.25), r, sand(1e-2)), 0.25e-4, 1e-18);
}

TEST(HllBedFlux, NothingGoesWhereWaterDoesNot) {
  const HllEdgeState l = water(1.0, 1.0), bank = {0.0, 1.5, 0.0, 0.0, 1e9};
  EXPECT_EQ(flux(l, sand(1e-3), bank, sand(0.0)), 0.0);
  const HllEdgeState low = {0.0, -1.5, 0.0, 0.0, 1e9};
  EXPECT_GT(flux(water(1.0, 1.0), sand(1e-3), low, sand(0.0)), 0.0);
  EXPECT_EQ(flux(low, sand(0.0), low, sand(0.0)), 0.0);
}

TEST(HllBedFlux, MirrorsWithItsSides) {
  hll_random::Source random;
  for (int k = 0; k < 2000; ++k) {
    const HllEdgeState l = random.edge_state(), r = random.edge_state();
    const auto bed = [&] {
      return HllBed{random.between(0.0, 0.1), random.between(0.0, 0.5), random.between(0.0, 50.0),
                    random.between(0.0, 1.0)};
    };
    const HllBed bed_left = bed(), bed_right = bed();
    const physics::Edge edge = random.edge();
    const double passing = random.between(-3.0, 3.0);
    const double F = physics::hll_bed_flux(l, bed_left, r, bed_right, edge, passing);
    const double mirrored = physics::hll_bed_flux(r, bed_right, l, bed_left,
                                                  {-edge.nx, -edge.ny, edge.length}, -passing);
    EXPECT_NEAR(F, -mirrored, 1e-12 * (1.0 + std::fabs(F)));
    // Bounded by what each side has to give.
    EXPECT_LE(F, physics::bed_to_give(l, bed_left, edge));
    EXPECT_GE(F, -physics::bed_to_give(r, bed_right, {-edge.nx, -edge.ny, edge.length}));
  }
}

TEST(HllBedFluxOfABoundary, GoesWithTheWaterThatPasses) {
  const HllEdgeState l = water(1.0, 1.0);
  EXPECT_NEAR(physics::hll_bed_flux_open(l, sand(1e-3), eastward, 0.8), 0.8e-3, 1e-18);
  EXPECT_NEAR(physics::hll_bed_flux_open(l, sand(1e-3), eastward, -0.8), -0.8e-3, 1e-18);
  EXPECT_EQ(physics::hll_bed_flux_open(l, sand(1e-3), eastward, 0.0), 0.0);
  EXPECT_NEAR(physics::hll_bed_flux_open(l, sand(1e-3, 0.5), eastward, 0.8), 0.5e-3, 1e-18);
}

TEST(HllBedFluxOfABoundary, IsWhatIsImposedOnAWetEdge) {
  const double p = 0.4, zero_depth = hll_random::zero_depth;
  const auto imposed = [&](double h, double qs, double reserve = plenty) {
    return physics::hll_bed_flux_imposed(water(h, 1.0), sand(1e-3, reserve), eastward, qs, p,
                                         zero_depth);
  };
  EXPECT_EQ(imposed(1.0, -6e-4), -6e-4 / 0.6);
  EXPECT_EQ(imposed(1.0, 6e-4), 6e-4 / 0.6);
  EXPECT_NEAR(imposed(1.0, 6e-4, 0.1), 1e-4, 1e-18);
  EXPECT_EQ(imposed(0.5 * zero_depth, -6e-4), 0.0);
}

}  // namespace hll_bed_flux_test
