#include "physics/hll_bed_load.hpp"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/hll_random.hpp"

namespace hll_bed_load_test {

using physics::HllBed;
using physics::PrimitiveWater;

constexpr double zero_depth = hll_random::zero_depth, porosity = 0.4, n = 0.03;
constexpr physics::Grains sand = {0.001, 2.65};

physics::BedLoad carried_by(const PrimitiveWater& water) {
  return physics::bed_load_in_water(water, n, sand, zero_depth);
}

TEST(HllBedLoad, IsThatOfTheFormulaInWaterThatMovesGrains) {
  const PrimitiveWater water = {1.5, 1.2, -0.9, 0.0};
  const physics::BedLoad load = carried_by(water);
  const physics::BedLoad expected =
      physics::bed_load_mpm(1.5, 1.0 / 1.5, 1.5 * 1.2, -1.5 * 0.9, n, sand);
  EXPECT_TRUE(load.moves);
  EXPECT_EQ(load.qsx, expected.qsx);
  EXPECT_EQ(load.qsy, expected.qsy);
  EXPECT_EQ(load.dqs_dh, expected.dqs_dh);
}

TEST(HllBedLoad, IsNothingInDryCellsInSlowWaterAndOverRock) {
  const PrimitiveWater dry = {0.5 * zero_depth, 0.0, 0.0, 0.0}, slow = {1.0, 0.1, 0.0, 0.0};
  for (const PrimitiveWater& water : {dry, slow}) {
    const physics::BedLoad load = carried_by(water);
    EXPECT_FALSE(load.moves);
    EXPECT_EQ(load.qsx, 0.0);
    EXPECT_EQ(load.dqs_dh, 0.0);
  }
  const physics::BedLoad fast = carried_by({1.0, 3.0, 1.0, 0.0});
  ASSERT_TRUE(fast.moves);
  EXPECT_FALSE(physics::bed_load_of_sediment(fast, 0.0).moves);
  EXPECT_EQ(physics::bed_load_of_sediment(fast, 0.0).qsx, 0.0);
  EXPECT_EQ(physics::bed_load_of_sediment(fast, 1e-9).qsx, fast.qsx);
}

TEST(HllBedLoad, GrowsWithTheDischargeAsItsGainTells) {
  const double h = 0.8, u = 1.7, step = 1e-6;
  const auto size = [&](double q) { return carried_by({h, q / h, 0.0, 0.0}).qsx; };
  const double slope = (size(h * u + step) - size(h * u - step)) / (2.0 * step);
  EXPECT_NEAR(physics::gain_of_load(carried_by({h, u, 0.0, 0.0}), u), slope, 1e-6 * slope);
  EXPECT_EQ(physics::gain_of_load(carried_by({h, 0.0, 0.0, 0.0}), 0.0), 0.0);
}

/// What leaves through all edges of a cell at the cell's own load, times its reserve, m in a step.
double given(const HllBed& bed, const PrimitiveWater& water, const physics::HllCell& cell,
             double dt) {
  const physics::OutwardNormals normals = physics::outward_normals(cell.shape);
  double out = 0.0;
  for (const physics::PlanVector& k : {normals.k0, normals.k1, normals.k2}) {
    out += std::max(bed.per_discharge * water.h * (water.u * k.x + water.v * k.y), 0.0);
  }
  return bed.reserve * out * dt * cell.reciprocal_area;
}

TEST(HllBedLoad, ACellGivesWhatItHasAndNoMoreThanATenthOfItsDepth) {
  hll_random::Source random;
  int bound_by_sand = 0, bound_by_depth = 0;
  for (int k = 0; k < 2000; ++k) {
    const PrimitiveWater water = random.water();
    const physics::HllCell cell = random.cell();
    const double hs = random.once_in(4) ? 0.0 : random.between(0.0, 0.3);
    const double dt = random.between(1e-3, 1.0);
    const physics::BedLoad carried = carried_by(water);
    const HllBed bed = physics::hll_bed(water, carried, hs, porosity, cell, dt);
    const double most = std::min(hs, 0.1 * water.h), all = given(bed, water, cell, dt);
    EXPECT_LE(all, most);
    if (!carried.moves) {
      EXPECT_EQ(bed.per_discharge, 0.0);
      EXPECT_EQ(bed.gain, 0.0);
      continue;
    }
    EXPECT_NEAR(all, most, 1e-11 * most);
    (hs < 0.1 * water.h ? bound_by_sand : bound_by_depth) += 1;
  }
  EXPECT_GT(bound_by_sand, 100);
  EXPECT_GT(bound_by_depth, 100);
}

TEST(HllBedLoad, OnlyFilmsCarryLessThanTheFormulaHasThemCarry) {
  const physics::HllCell cell = hll_random::Source().cell();
  const auto share_of_formula = [&](double h) {
    const PrimitiveWater water = {h, 1.5, 0.5, 0.0};
    const physics::BedLoad load = carried_by(water);
    const HllBed bed = physics::hll_bed(water, load, 1.0, porosity, cell, 0.1);
    return bed.per_discharge * h * water.u * (1.0 - porosity) / load.qsx;
  };
  EXPECT_NEAR(share_of_formula(1.0), 1.0, 1e-14);
  EXPECT_LT(share_of_formula(0.001), 0.2);
}

TEST(HllBedLoad, WavesOfWaterAndBedBoundTheStepMoreThanThoseOfWater) {
  hll_random::Source random;
  for (int k = 0; k < 500; ++k) {
    const PrimitiveWater water = random.water();
    const physics::BedLoad load = carried_by(water);
    const double both = physics::crossing_rate_with_bed(water, load, porosity, 2.0);
    if (load.moves) {
      EXPECT_GT(both, physics::crossing_rate(water, 2.0, zero_depth));
    } else {
      EXPECT_EQ(both, 0.0);
    }
  }
}

/// The roots of the characteristic polynomial of water and bed, by its signs at the bound.
TEST(HllBedLoad, NoWaveIsFasterThanTheBoundOfTheStep) {
  for (const double u : {0.9, 2.0, 5.0}) {
    const double h = 0.7, c2 = 9.81 * h;
    const physics::BedLoad load = carried_by({h, u, 0.0, 0.0});
    ASSERT_TRUE(load.moves);
    const double gain = physics::gain_of_load(load, u) / (1.0 - porosity);
    const double by_depth = load.dqs_dh / (1.0 - porosity);
    const auto polynomial = [&](double s) {
      return s * ((u - s) * (u - s) - c2) - c2 * (by_depth + gain * s);
    };
    const double bound = physics::crossing_rate_with_bed({h, u, 0.0, 0.0}, load, porosity, 1.0);
    for (int k = 0; k < 100; ++k) {
      EXPECT_GT(polynomial(bound * (1.0 + 0.1 * k)), 0.0);
      EXPECT_LT(polynomial(-bound * (1.0 + 0.1 * k)), 0.0);
    }
  }
}

}  // namespace hll_bed_load_test
