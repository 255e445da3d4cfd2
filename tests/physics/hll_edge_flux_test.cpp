// What holds of the flux between two edge states, on random ones and on known solutions.
#include "physics/hll_edge_flux.hpp"

#include <gtest/gtest.h>

#include "support/hll_random.hpp"

namespace hll_edge_flux_test {

using hll_random::Source;
using hll_random::zero_depth;
using physics::Edge;
using physics::HllEdgeState;
using physics::SlotPair;
using physics::WaterSlot;

constexpr int trials = 2000;
constexpr double no_cap = 1e9;

TEST(HllEdgeFlux, EqualStatesGiveThePhysicalFluxLessTheirThrust) {
  Source random;
  for (int i = 0; i < trials; ++i) {
    const HllEdgeState w = random.edge_state();
    if (w.h <= zero_depth) continue;
    const Edge e = random.edge();
    const double q = w.h * (w.u * e.nx + w.v * e.ny);
    const SlotPair slots = physics::hll_edge_flux(w, w, e, zero_depth);
    const WaterSlot out{e.length * q, e.length * q * w.u, e.length * q * w.v};
    EXPECT_NEAR(slots.left.h, -out.h, 1e-10);
    EXPECT_NEAR(slots.left.qx, -out.qx, 1e-9);
    EXPECT_NEAR(slots.left.qy, -out.qy, 1e-9);
    EXPECT_NEAR(slots.right.qx, out.qx, 1e-9);
    EXPECT_NEAR(slots.right.qy, out.qy, 1e-9);
  }
}

TEST(HllEdgeFlux, GivesTheOneSideWhatItTakesFromTheOther) {
  Source random;
  int flowing = 0;
  for (int i = 0; i < trials; ++i) {
    const SlotPair slots =
        physics::hll_edge_flux(random.edge_state(), random.edge_state(), random.edge(), zero_depth);
    EXPECT_EQ(slots.left.h, -slots.right.h);
    flowing += slots.left.h != 0.0;
  }
  EXPECT_GT(flowing, trials / 2);
}

TEST(HllEdgeFlux, ExchangesMomentumOverALevelBedWithoutLoss) {
  Source random;
  for (int i = 0; i < trials; ++i) {
    HllEdgeState l = random.edge_state(), r = random.edge_state();
    l.e = l.h;
    r.e = r.h;
    const Edge e = random.edge();
    const SlotPair slots = physics::hll_edge_flux(l, r, e, zero_depth);
    if (std::max(l.h, r.h) <= zero_depth) continue;
    const double thrusts = e.length * 4.905 * (r.h * r.h - l.h * l.h);
    EXPECT_NEAR(slots.left.qx + slots.right.qx, -thrusts * e.nx, 1e-9);
    EXPECT_NEAR(slots.left.qy + slots.right.qy, -thrusts * e.ny, 1e-9);
  }
}

TEST(HllEdgeFlux, DoesNotKnowWhichSideIsNamedFirst) {
  Source random;
  for (int i = 0; i < trials; ++i) {
    const HllEdgeState l = random.edge_state(), r = random.edge_state();
    const Edge e = random.edge();
    const SlotPair a = physics::hll_edge_flux(l, r, e, zero_depth);
    const SlotPair b = physics::hll_edge_flux(r, l, reversed(e), zero_depth);
    EXPECT_NEAR(a.left.h, b.right.h, 1e-12 * (1.0 + std::fabs(a.left.h)));
    EXPECT_NEAR(a.left.qx, b.right.qx, 1e-11 * (10.0 + std::fabs(a.left.qx)));
    EXPECT_NEAR(a.left.qy, b.right.qy, 1e-11 * (10.0 + std::fabs(a.left.qy)));
  }
}

TEST(HllEdgeFlux, ALakeAtRestOverAStepOfTheBedMovesNothing) {
  Source random;
  for (int i = 0; i < trials; ++i) {
    const auto lake = [&] {
      const double bed = random.between(-3.0, 1.0), h = bed < 0.0 ? -bed : 0.0;
      return HllEdgeState{h, h > 0.0 ? 0.0 : bed, 0.0, 0.0, no_cap};
    };
    const HllEdgeState l = lake(), r = lake();
    const SlotPair slots = physics::hll_edge_flux(l, r, random.edge(), zero_depth);
    for (const WaterSlot& slot : {slots.left, slots.right}) {
      EXPECT_EQ(slot.h, 0.0);
      EXPECT_EQ(slot.qx, 0.0);
      EXPECT_EQ(slot.qy, 0.0);
    }
  }
}

TEST(HllEdgeFlux, NothingPassesBetweenDrySides) {
  const HllEdgeState film{0.9 * zero_depth, 2.0, 0.0, 0.0, no_cap};
  const HllEdgeState dry{0.0, 1.0, 0.0, 0.0, no_cap};
  const SlotPair slots = physics::hll_edge_flux(film, dry, {1.0, 0.0, 2.0}, zero_depth);
  for (const WaterSlot& slot : {slots.left, slots.right}) {
    EXPECT_EQ(slot.h, 0.0);
    EXPECT_EQ(slot.qx, 0.0);
    EXPECT_EQ(slot.qy, 0.0);
  }
}

TEST(HllEdgeFlux, NoSideGivesMoreThanItCanSpare) {
  Source random;
  int bound = 0;
  for (int i = 0; i < trials; ++i) {
    HllEdgeState l = random.edge_state(), r = random.edge_state();
    l.cap = random.between(0.0, 1.0) * l.h;
    r.cap = random.between(0.0, 1.0) * r.h;
    const SlotPair slots = physics::hll_edge_flux(l, r, random.edge(), zero_depth);
    EXPECT_LE(slots.right.h, l.cap * (1.0 + 1e-15));
    EXPECT_LE(slots.left.h, r.cap * (1.0 + 1e-15));
    bound += slots.right.h > 0.0 && slots.right.h > 0.999999 * l.cap;
  }
  EXPECT_GT(bound, trials / 20);
}

TEST(HllEdgeFlux, AFrontOntoDryGroundRunsAtTwiceItsCelerity) {
  const physics::FrontSpeeds right = physics::front_speeds(4.0, 0.0, 0.5, 0.0);
  EXPECT_DOUBLE_EQ(right.SR, 0.5 + 2.0 * std::sqrt(9.81 * 4.0));
  EXPECT_DOUBLE_EQ(right.SL, 0.5 - std::sqrt(9.81 * 4.0));
  const physics::FrontSpeeds left = physics::front_speeds(0.0, 4.0, 0.0, -0.5);
  EXPECT_DOUBLE_EQ(left.SL, -right.SR);
  EXPECT_DOUBLE_EQ(left.SR, -right.SL);
}

TEST(HllEdgeFlux, BetweenDrySidesNothingRuns) {
  const physics::FrontSpeeds speeds = physics::front_speeds(0.0, 0.0, 0.0, 0.0);
  EXPECT_EQ(speeds.SL, 0.0);
  EXPECT_EQ(speeds.SR, 0.0);
}

TEST(HllEdgeFlux, WaterStandsAtABankThatIsHigherThanItsLevel) {
  const HllEdgeState water{1.0, 1.0, 0.3, 0.0, no_cap}, bank{0.0, 1.5, 0.0, 0.0, no_cap};
  const SlotPair slots = physics::hll_edge_flux(water, bank, {1.0, 0.0, 2.0}, zero_depth);
  EXPECT_EQ(slots.left.h, 0.0);
  EXPECT_EQ(slots.right.h, 0.0);
}

TEST(HllEdgeFlux, AFilmFeelsTheWholeStepBelowIt) {
  // The step of 1 m is far higher than the film: its pull is g h times the part that the film
  // covers, not g h^2 / 2 of a wall.
  const HllEdgeState film{0.01, 1.01, 0.0, 0.0, no_cap}, below{0.01, 0.01, 0.0, 0.0, no_cap};
  const physics::ReconstructedDepths d = physics::reconstructed_depths(film, below);
  EXPECT_DOUBLE_EQ(d.bed, 0.01);
  EXPECT_DOUBLE_EQ(d.a, 0.01);
  EXPECT_EQ(d.b, 0.0);
  const SlotPair slots = physics::hll_edge_flux(film, below, {1.0, 0.0, 1.0}, zero_depth);
  EXPECT_LT(slots.left.h, 0.0);
  EXPECT_GT(slots.left.qx, 9.81 * 0.01 * 0.5);
}

}  // namespace hll_edge_flux_test
