#include "interfaces/HydroBCWaterLevel.hpp"

#include <gtest/gtest.h>

#include "support/EdgePatch.hpp"
#include "support/RunGlobals.hpp"
#include "support/unit_wave.hpp"

namespace {

using support::EdgePatch;
using support::k;
using support::set_water;

/// An edge of length 2 with the outward normal along x, where the level stands at 5k.
class HydroBCWaterLevelTest : public testing::Test {
 protected:
  HydroBCWaterLevelTest() { EdgePatch::attach(level); }

  const HydraulicVariableSWE& slot() {
    level.Flux();
    return patch.left().fluxes[0];
  }

  support::RunGlobals globals{1e-6};
  EdgePatch patch{{0.0, 0.0, 0.0}, {0.0, 2.0, 0.0}};
  HydroBCWaterLevel level{&patch.left(), patch.a(), patch.b(), 5.0 * k};
};

TEST_F(HydroBCWaterLevelTest, TheDepthIsCountedFromTheBedRock) {
  set_water(patch.left(), 4.0 * k, 4.0 * k, 4.0 * k, 0.0);
  patch.left().set_hs(100.0);
  slot();
  EXPECT_NEAR(level.h_imposed, k, 1e-16);
  EXPECT_DOUBLE_EQ(level.c_imposed, 1.0);
}

TEST_F(HydroBCWaterLevelTest, OutflowCarriesTheWorkedExample) {
  // Depth 4k, 1 m/s, 5 m/s along the edge, imposed depth k: Fh = 3k, Fn = 9.5k, Ft = 15k.
  set_water(patch.left(), 4.0 * k, 4.0 * k, 4.0 * k, 20.0 * k);
  EXPECT_NEAR(slot().h, -6.0 * k, 1e-14);
  EXPECT_NEAR(slot().qx, -19.0 * k, 1e-14);
  EXPECT_NEAR(slot().qy, -30.0 * k, 1e-14);
}

TEST_F(HydroBCWaterLevelTest, InflowBringsNoTangentialMomentum) {
  // Depth k, -1 m/s, imposed depth 4k: Fh = -12k, Fn = 44k.
  set_water(patch.left(), k, k, -k, 5.0 * k);
  EXPECT_NEAR(slot().h, 24.0 * k, 1e-14);
  EXPECT_NEAR(slot().qx, -88.0 * k, 1e-13);
  EXPECT_EQ(slot().qy, 0.0);
}

TEST_F(HydroBCWaterLevelTest, ALakeAtTheImposedLevelStaysAtRest) {
  set_water(patch.left(), -3.0 * k, level.level_imposed + 3.0 * k, 0.0, 0.0);
  const double h = patch.left().U.h;
  EXPECT_EQ(slot().h, 0.0);
  EXPECT_DOUBLE_EQ(slot().qx, -2.0 * 4.905 * h * h);
  EXPECT_EQ(slot().qy, 0.0);
}

TEST_F(HydroBCWaterLevelTest, ALevelBelowTheBedDrawsANegativeDischargeWithoutThrust) {
  // Imposed depth -2k, so c* = 0 and the velocity is 1 + 4 = 5 m/s.
  set_water(patch.left(), 7.0 * k, 4.0 * k, 4.0 * k, 0.0);
  EXPECT_NEAR(slot().h, 20.0 * k, 1e-14);
  EXPECT_EQ(slot().qx, 0.0);
  EXPECT_NEAR(level.h_imposed, -2.0 * k, 1e-15);
  EXPECT_EQ(level.c_imposed, 0.0);
}

TEST_F(HydroBCWaterLevelTest, ADryCellIsFilledWithoutMomentum) {
  set_water(patch.left(), k, 0.0, 0.0, 0.0);
  EXPECT_NEAR(slot().h, 2.0 * 2.0 * 4.0 * k, 1e-14);
  EXPECT_EQ(slot().qx, 0.0);
  EXPECT_EQ(slot().qy, 0.0);
}

TEST_F(HydroBCWaterLevelTest, ADryCellAboveTheLevelGetsNothing) {
  set_water(patch.left(), 6.0 * k, 0.0, 0.0, 0.0);
  patch.left().fluxes[0].set_values(7.0, 7.0, 7.0);
  EXPECT_EQ(slot().h, 0.0);
  EXPECT_EQ(slot().qx, 0.0);
  EXPECT_EQ(slot().qy, 0.0);
}

}  // namespace
