// What holds of the flux whatever the states, on random ones.
#include <gtest/gtest.h>

#include <random>

#include "physics/flux_lhllc.hpp"

namespace flux_lhllc_properties_test {

constexpr double zero_depth = 1e-3;
constexpr double pi = 3.14159265358979323846;
constexpr int trials = 2000;

class RandomStates {
 public:
  double between(double low, double high) {
    return low + (high - low) * std::generate_canonical<double, 53>(generator_);
  }
  physics::CellWater water(double zb) {
    const double h = between(0.0, 1.0) < 0.2 ? 0.0 : between(0.1, 3.0);
    return {h, h * between(-6.0, 6.0), h * between(-6.0, 6.0), zb, zb + h};
  }
  physics::CellWater water() { return water(between(-2.0, 2.0)); }
  /// Water deep enough to cover every bed between -2 and 2 m.
  physics::CellWater deep_water() {
    const double zb = between(-2.0, 2.0);
    const double h = between(2.1, 5.0) - zb;
    return {h, h * between(-6.0, 6.0), h * between(-6.0, 6.0), zb, zb + h};
  }
  physics::Edge edge() {
    const double angle = between(-pi, pi);
    return {std::cos(angle), std::sin(angle), between(0.5, 3.0)};
  }

 private:
  std::mt19937_64 generator_{20240229};
};

void expect_near(const physics::WaterSlot& slot, const physics::WaterSlot& expected,
                 double tolerance) {
  EXPECT_NEAR(slot.h, expected.h, tolerance);
  EXPECT_NEAR(slot.qx, expected.qx, tolerance);
  EXPECT_NEAR(slot.qy, expected.qy, tolerance);
}

TEST(FluxLhllcProperties, EqualStatesGiveThePhysicalFlux) {
  RandomStates random;
  for (int i = 0; i < trials; ++i) {
    const physics::CellWater w = random.deep_water();
    const physics::Edge e = random.edge();
    const double un = (w.qx * e.nx + w.qy * e.ny) / w.h;
    const double thrust = 0.5 * 9.81 * w.h * w.h;
    const physics::WaterSlot out{e.length * w.h * un, e.length * (w.qx * un + thrust * e.nx),
                                 e.length * (w.qy * un + thrust * e.ny)};
    const physics::SlotPair slots = physics::flux_lhllc(w, w, e, zero_depth);
    expect_near(slots.right, out, 1e-10);
    expect_near(slots.left, {-out.h, -out.qx, -out.qy}, 1e-10);
  }
}

TEST(FluxLhllcProperties, WhatOneCellLosesTheOtherGains) {
  RandomStates random;
  int flowing = 0;
  for (int i = 0; i < trials; ++i) {
    const physics::SlotPair slots =
        physics::flux_lhllc(random.water(), random.water(), random.edge(), zero_depth);
    EXPECT_EQ(slots.left.h, -slots.right.h);
    flowing += slots.left.h != 0.0 ? 1 : 0;
  }
  EXPECT_GT(flowing, trials / 2);
}

TEST(FluxLhllcProperties, MomentumAlongTheEdgeIsConserved) {
  RandomStates random;
  for (int i = 0; i < trials; ++i) {
    const physics::Edge e = random.edge();
    const physics::SlotPair slots =
        physics::flux_lhllc(random.water(), random.water(), e, zero_depth);
    const double gained = slots.right.qy * e.nx - slots.right.qx * e.ny;
    const double lost = slots.left.qy * e.nx - slots.left.qx * e.ny;
    EXPECT_NEAR(gained, -lost, 1e-10);
  }
}

TEST(FluxLhllcProperties, OverAFlatBedMomentumIsConserved) {
  RandomStates random;
  for (int i = 0; i < trials; ++i) {
    const physics::SlotPair slots =
        physics::flux_lhllc(random.water(1.0), random.water(1.0), random.edge(), zero_depth);
    EXPECT_EQ(slots.left.qx, -slots.right.qx);
    EXPECT_EQ(slots.left.qy, -slots.right.qy);
  }
}

TEST(FluxLhllcProperties, TheOrderOfTheCellsDoesNotMatterWhereNoStepIsCapped) {
  RandomStates random;
  for (int i = 0; i < trials; ++i) {
    const physics::CellWater a = random.deep_water();
    const physics::CellWater b = random.deep_water();
    const physics::Edge e = random.edge();
    const physics::SlotPair ab = physics::flux_lhllc(a, b, e, zero_depth);
    const physics::SlotPair ba = physics::flux_lhllc(b, a, reversed(e), zero_depth);
    expect_near(ab.left, ba.right, 1e-10);
    expect_near(ab.right, ba.left, 1e-10);
  }
}

TEST(FluxLhllcProperties, TheOrderOfTheCellsMattersWhereAStepIsCapped) {
  const physics::CellWater high{1.0, 0.0, 0.0, 5.0, 6.0};
  const physics::CellWater low{2.0, 0.0, 0.0, 0.0, 2.0};
  const physics::Edge e{1.0, 0.0, 1.0};
  const physics::SlotPair high_left = physics::flux_lhllc(high, low, e, zero_depth);
  const physics::SlotPair low_left = physics::flux_lhllc(low, high, reversed(e), zero_depth);
  EXPECT_DOUBLE_EQ(high_left.left.h, low_left.right.h);
  // Bounds -+ c of the deeper side. The low cell gets -(1/2) g hR (hL + hR) / 2 where it is the
  // right one, and the opposite where it is the left one.
  const double thrust = 0.5 * 9.81 * 2.0 * 3.0;
  EXPECT_NEAR(low_left.left.qx - high_left.right.qx, thrust, 1e-10);
}

TEST(FluxLhllcProperties, TwoDrySidesExchangeExactlyNothing) {
  RandomStates random;
  for (int i = 0; i < trials; ++i) {
    const auto film = [&random] {
      const double zb = random.between(-2.0, 2.0);
      const double h = random.between(-1.0, zero_depth);
      return physics::CellWater{h, random.between(-3.0, 3.0), random.between(-3.0, 3.0), zb,
                                zb + h};
    };
    const physics::SlotPair slots = physics::flux_lhllc(film(), film(), random.edge(), zero_depth);
    for (const physics::WaterSlot& slot : {slots.left, slots.right}) {
      EXPECT_EQ(slot.h, 0.0);
      EXPECT_EQ(slot.qx, 0.0);
      EXPECT_EQ(slot.qy, 0.0);
    }
  }
}

struct Rotation {
  double cosine, sine;
  physics::CellWater operator()(const physics::CellWater& w) const {
    return {w.h, cosine * w.qx - sine * w.qy, sine * w.qx + cosine * w.qy, w.zb, w.eta};
  }
  physics::Edge operator()(const physics::Edge& e) const {
    return {cosine * e.nx - sine * e.ny, sine * e.nx + cosine * e.ny, e.length};
  }
  physics::WaterSlot operator()(const physics::WaterSlot& s) const {
    return {s.h, cosine * s.qx - sine * s.qy, sine * s.qx + cosine * s.qy};
  }
};

TEST(FluxLhllcProperties, SlotsTurnWithTheEdgeAndTheFlow) {
  RandomStates random;
  for (int i = 0; i < trials; ++i) {
    const double angle = random.between(-pi, pi);
    const Rotation turned{std::cos(angle), std::sin(angle)};
    const physics::CellWater a = random.water();
    const physics::CellWater b = random.water();
    const physics::Edge e = random.edge();
    const physics::SlotPair slots = physics::flux_lhllc(a, b, e, zero_depth);
    const physics::SlotPair after =
        physics::flux_lhllc(turned(a), turned(b), turned(e), zero_depth);
    expect_near(after.left, turned(slots.left), 1e-9);
    expect_near(after.right, turned(slots.right), 1e-9);
  }
}

}  // namespace flux_lhllc_properties_test
