#include "physics/hll_boundary.hpp"

#include <gtest/gtest.h>

#include "support/hll_random.hpp"

namespace hll_boundary_test {

using hll_random::Source;
using hll_random::zero_depth;
using physics::BoundaryFlux;
using physics::HllBoundarySide;

constexpr int trials = 2000;
constexpr double g = 9.81;
const physics::Edge east{1.0, 0.0, 2.0};

/// Water of depth h over a bed at 1 m that moves at un to the boundary and ut along it.
HllBoundarySide side_of(double h, double un, double ut = 0.0) {
  return physics::hll_boundary_side({h, 1.0 + h, un, ut, 1e9}, east, zero_depth);
}
HllBoundarySide random_side(Source& random) {
  return physics::hll_boundary_side(random.edge_state(), random.edge(), zero_depth);
}

/// Depth at the boundary from the normal momentum of a flux: q^2/h + g h^2/2 less the own thrust.
double depth_of(const HllBoundarySide& s, const BoundaryFlux& flux, double guess) {
  const double total = flux.normal + 0.5 * g * s.h * s.h;
  double h = guess;
  for (int i = 0; i < 50; ++i) {
    const double f = flux.mass * flux.mass / h + 0.5 * g * h * h - total;
    h -= f / (g * h - flux.mass * flux.mass / (h * h));
  }
  return h;
}

TEST(HllBoundarySide, TurnsTheVelocityToTheEdge) {
  const HllBoundarySide s =
      physics::hll_boundary_side({4.0, 5.0, 3.0, -2.0, 7.0}, {0.0, 1.0, 2.0}, zero_depth);
  EXPECT_TRUE(s.wet);
  EXPECT_EQ(s.bed, 1.0);
  EXPECT_EQ(s.un, -2.0);
  EXPECT_EQ(s.ut, -3.0);
  EXPECT_EQ(s.cap, 7.0);
  EXPECT_DOUBLE_EQ(s.R, -2.0 + 2.0 * std::sqrt(g * 4.0));
}

TEST(HllBoundary, WaterAtRestFeelsNothingOfAWallOrOfItsOwnLevel) {
  const HllBoundarySide s = side_of(0.75, 0.0);
  for (const BoundaryFlux& flux : {physics::hll_wall(s), physics::hll_discharge(s, 0.0)}) {
    EXPECT_EQ(flux.mass, 0.0);
    EXPECT_NEAR(flux.normal, 0.0, 1e-15);
    EXPECT_EQ(flux.tangential, 0.0);
  }
  const BoundaryFlux level = physics::hll_water_level(s, 1.75);
  EXPECT_NEAR(level.mass, 0.0, 1e-14);
  EXPECT_NEAR(level.normal, 0.0, 1e-14);
}

TEST(HllBoundary, AFilmAtTheLevelImposedStaysThoughItCountsAsDry) {
  const HllBoundarySide s = side_of(0.5 * zero_depth, 0.0);
  EXPECT_NEAR(physics::hll_water_level(s, 1.0 + 0.5 * zero_depth).mass, 0.0, 1e-14);
  EXPECT_EQ(physics::hll_water_level(s, 0.0).mass, 0.0);
}

TEST(HllWall, ReflectsWhatMovesTowardsIt) {
  const double h = 2.0, un = 0.5, c = std::sqrt(g * h);
  const BoundaryFlux towards = physics::hll_wall(side_of(h, un, 3.0));
  EXPECT_EQ(towards.mass, 0.0);
  EXPECT_EQ(towards.tangential, 0.0);
  EXPECT_NEAR(towards.normal, h * un * (un + c), 1e-12);
  EXPECT_EQ(physics::hll_wall(side_of(h, -un)).normal, 0.0);
}

TEST(HllFreeOutflow, SubcriticalWaterLeavesAtItsCriticalState) {
  const HllBoundarySide s = side_of(1.0, 0.5, 2.0);
  const double c = s.R / 3.0, h = c * c / g;
  const BoundaryFlux flux = physics::hll_free_outflow(s);
  EXPECT_NEAR(flux.mass, h * c, 1e-12);
  EXPECT_NEAR(depth_of(s, flux, 1.5 * h), h, 1e-6);
  EXPECT_NEAR(flux.tangential, 2.0 * h * c, 1e-12);
}

TEST(HllFreeOutflow, FastWaterLeavesAsItIs) {
  const HllBoundarySide s = side_of(0.1, 3.0, -1.0);
  const BoundaryFlux flux = physics::hll_free_outflow(s);
  EXPECT_DOUBLE_EQ(flux.mass, 0.3);
  EXPECT_DOUBLE_EQ(flux.normal, 0.9);
  EXPECT_DOUBLE_EQ(flux.tangential, -0.3);
}

TEST(HllFreeOutflow, NeverLetsIn) {
  Source random;
  for (int i = 0; i < trials; ++i) {
    EXPECT_GE(physics::hll_free_outflow(random_side(random)).mass, 0.0);
  }
}

TEST(HllWaterLevel, ImposesItsDepthAndMeetsTheOutgoingInvariant) {
  const HllBoundarySide s = side_of(1.0, 0.25);
  const double depth = 1.2, un = s.R - 2.0 * std::sqrt(g * depth);
  const BoundaryFlux flux = physics::hll_water_level(s, 1.0 + depth);
  EXPECT_NEAR(flux.mass, un * depth, 1e-12);
  EXPECT_NEAR(flux.normal, un * un * depth + 0.5 * g * (depth * depth - 1.0), 1e-12);
}

TEST(HllWaterLevel, NeitherDrawsNorFillsFasterThanCriticalFlow) {
  Source random;
  for (int i = 0; i < trials; ++i) {
    const HllBoundarySide s = random_side(random);
    const double level = s.bed + random.between(-3.0, 3.0);
    const BoundaryFlux flux = physics::hll_water_level(s, level);
    const double depth = std::max(level - s.bed, 0.0);
    const double critical_in = std::max(depth, std::pow(std::max(s.R, 0.0) / 3.0, 2) / g);
    EXPECT_GE(flux.mass, -critical_in * std::sqrt(g * critical_in) * (1 + 1e-12) - 1e-12);
    if (s.un <= s.c && s.wet) {
      const double critical = std::pow(std::max(s.R, 0.0) / 3.0, 3) / g;
      EXPECT_LE(flux.mass, critical * (1 + 1e-12) + 1e-12);
    }
  }
}

TEST(HllWaterLevel, FillsDryGroundAtItsCriticalSpeed) {
  const BoundaryFlux flux = physics::hll_water_level(side_of(0.0, 0.0), 1.4);
  EXPECT_NEAR(flux.mass, -0.4 * std::sqrt(g * 0.4), 1e-12);
}

TEST(HllDischarge, PassesExactlyWhatIsImposedWhereItEnters) {
  Source random;
  for (int i = 0; i < trials; ++i) {
    const double q = -random.between(0.0, 20.0);
    EXPECT_EQ(physics::hll_discharge(random_side(random), q).mass, q);
  }
}

TEST(HllDischarge, EntersAtTheDepthThatMeetsTheOutgoingInvariant) {
  Source random;
  int subcritical = 0;
  for (int i = 0; i < trials; ++i) {
    const HllBoundarySide s = side_of(random.between(0.1, 3.0), random.between(-3.0, 3.0));
    const double q = -random.between(1e-6, 5.0);
    const double R = std::max(s.R, 0.0);
    const double c = physics::celerity_of_inflow(R, q);
    const double critical = std::cbrt(-g * q);
    EXPECT_GE(c, critical * (1.0 - 1e-14));
    if (c > critical * (1.0 + 1e-9)) {
      ++subcritical;
      EXPECT_NEAR(q * g / (c * c) + 2.0 * c, R, 1e-8 * (1.0 + R)) << "q " << q;
    }
  }
  EXPECT_GT(subcritical, trials / 4);
}

TEST(HllDischarge, LeavesAtTheDeeperRootOrCritically) {
  Source random;
  int rooted = 0;
  for (int i = 0; i < trials; ++i) {
    const HllBoundarySide s = side_of(random.between(0.1, 3.0), random.between(-1.0, 1.0));
    const double q = random.between(0.0, 5.0);
    const BoundaryFlux flux = physics::hll_discharge(s, q);
    const double R = std::max(s.R, 0.0), most = R * R * R / (27.0 * g);
    EXPECT_DOUBLE_EQ(flux.mass, std::min(q, most));
    const double c = physics::celerity_of_outflow(R, flux.mass);
    EXPECT_GE(c, R / 3.0);
    if (q < 0.98 * most) {
      ++rooted;
      EXPECT_NEAR(flux.mass * g / (c * c) + 2.0 * c, R, 1e-9 * (1.0 + R));
    }
  }
  EXPECT_GT(rooted, trials / 4);
}

TEST(HllDischarge, FastWaterThatMayNotLeaveFeelsTheThrustOfAWall) {
  const HllBoundarySide film = side_of(0.06, 16.0, 2.0);
  const BoundaryFlux closed = physics::hll_discharge(film, 0.0);
  EXPECT_EQ(closed.mass, 0.0);
  EXPECT_NEAR(closed.normal, physics::hll_wall(film).normal, 1e-12);
  const BoundaryFlux half = physics::hll_discharge(film, 0.48);
  EXPECT_EQ(half.mass, 0.48);
  EXPECT_NEAR(half.normal, 0.96 * 16.0 + film.c * 0.48, 1e-12);
  EXPECT_DOUBLE_EQ(half.tangential, 0.96);
  // It cannot be drawn faster than it arrives.
  const BoundaryFlux drawn = physics::hll_discharge(film, 5.0);
  EXPECT_DOUBLE_EQ(drawn.mass, 0.96);
  EXPECT_DOUBLE_EQ(drawn.normal, 0.96 * 16.0);
}

TEST(HllDischarge, OfCriticalWaterIsAlikeByEitherRule) {
  const double c = std::sqrt(g * 0.5);
  for (const double q : {-0.5, 0.0, 0.5}) {
    const double slower = physics::hll_discharge(side_of(0.5, c * (1 - 1e-9)), q).normal;
    const double faster = physics::hll_discharge(side_of(0.5, c * (1 + 1e-9)), q).normal;
    EXPECT_NEAR(slower, faster, 0.15 * faster) << q;
  }
}

TEST(HllWaterLevel, ADeepLevelIsNotHeldOffByAFilm) {
  const HllBoundarySide film = side_of(0.05, 2.0);
  EXPECT_DOUBLE_EQ(physics::hll_water_level(film, 1.1).mass, 0.1);
  EXPECT_NEAR(physics::hll_water_level(film, 3.0).mass, -2.0 * std::sqrt(g * 2.0), 1e-12);
}

TEST(HllDischarge, NothingIsDrawnFromADryEdge) {
  const BoundaryFlux flux = physics::hll_discharge(side_of(0.5 * zero_depth, 0.0), 3.0);
  EXPECT_EQ(flux.mass, 0.0);
  EXPECT_EQ(flux.normal, 0.0);
}

TEST(HllDischarge, EntersDryGroundAtItsCriticalDepth) {
  const HllBoundarySide s = side_of(0.0, 0.0);
  const BoundaryFlux flux = physics::hll_discharge(s, -2.0);
  const double h = std::cbrt(4.0 / g);
  EXPECT_EQ(flux.mass, -2.0);
  EXPECT_NEAR(flux.normal, 4.0 / h + 0.5 * g * h * h, 1e-12);
}

TEST(HllBoundarySlot, GivesNoMoreThanTheCellCanSpare) {
  HllBoundarySide s = side_of(1.0, 0.0);
  s.cap = 1.0;
  const physics::WaterSlot slot = physics::hll_boundary_slot(s, east, {4.0, 2.0, -1.0});
  EXPECT_DOUBLE_EQ(slot.h, -1.0);
  EXPECT_DOUBLE_EQ(slot.qx, -2.0 * 2.0 / 8.0);
  EXPECT_DOUBLE_EQ(slot.qy, 2.0 * 1.0 / 8.0);
  EXPECT_DOUBLE_EQ(physics::hll_boundary_slot(s, east, {-4.0, 2.0, 0.0}).h, 8.0);
}

TEST(HllBoundary, BoundsTheStepByTheWavesThatItMaySendIn) {
  EXPECT_NEAR(physics::wave_speed_of_discharge(-2.0), 2.0 * std::cbrt(g * 2.0), 1e-12);
  EXPECT_EQ(physics::wave_speed_of_discharge(0.0), 0.0);
  EXPECT_NEAR(physics::wave_speed_of_level(3.0, 1.0), 2.0 * std::sqrt(g * 2.0), 1e-12);
  EXPECT_EQ(physics::wave_speed_of_level(1.0, 3.0), 0.0);
}

}  // namespace hll_boundary_test
