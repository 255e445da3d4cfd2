#include "interfaces/HydroBCWall.hpp"

#include <gtest/gtest.h>

#include "support/EdgePatch.hpp"
#include "support/RunGlobals.hpp"
#include "support/unit_wave.hpp"

namespace {

using support::EdgePatch;
using support::k;
using support::set_water;

/// An edge of length 5 with the outward normal (0.8, -0.6).
class HydroBCWallTest : public testing::Test {
 protected:
  HydroBCWallTest() { EdgePatch::attach(wall); }

  const HydraulicVariableSWE& slot() {
    wall.Flux();
    return patch.left().fluxes[0];
  }

  support::RunGlobals globals{1e-6};
  EdgePatch patch{{0.0, 0.0, 0.0}, {3.0, 4.0, 0.0}};
  HydroBCWall wall{&patch.left(), patch.a(), patch.b()};
};

TEST_F(HydroBCWallTest, ACellAtRestGetsTheThrustOfItsDepth) {
  set_water(patch.left(), 1.0, 2.0, 0.0, 0.0);
  EXPECT_EQ(slot().h, 0.0);
  EXPECT_DOUBLE_EQ(slot().qx, -5.0 * 4.905 * 4.0 * 0.8);
  EXPECT_DOUBLE_EQ(slot().qy, 5.0 * 4.905 * 4.0 * 0.6);
}

TEST_F(HydroBCWallTest, FlowTowardsTheWallAddsTheReflectedWave) {
  // Depth 4k, 1 m/s along the normal: thrust 8k, advection 4k, reflected wave 8k.
  set_water(patch.left(), 1.0, 4.0 * k, 3.2 * k, -2.4 * k);
  EXPECT_EQ(slot().h, 0.0);
  EXPECT_DOUBLE_EQ(slot().qx, -5.0 * 20.0 * k * 0.8);
  EXPECT_DOUBLE_EQ(slot().qy, 5.0 * 20.0 * k * 0.6);
}

TEST_F(HydroBCWallTest, FlowAwayFromTheWallLeavesTheThrustAlone) {
  set_water(patch.left(), 1.0, 4.0 * k, -3.2 * k, 2.4 * k);
  EXPECT_DOUBLE_EQ(slot().qx, -5.0 * 8.0 * k * 0.8);
  EXPECT_DOUBLE_EQ(slot().qy, 5.0 * 8.0 * k * 0.6);
}

TEST_F(HydroBCWallTest, ADryCellGetsZerosOverAnOldSlot) {
  set_water(patch.left(), 1.0, 1e-6, 3.0, 4.0);
  patch.left().fluxes[0].set_values(7.0, 7.0, 7.0);
  EXPECT_EQ(slot().h, 0.0);
  EXPECT_EQ(slot().qx, 0.0);
  EXPECT_EQ(slot().qy, 0.0);
}

TEST_F(HydroBCWallTest, HasNoRightCell) { EXPECT_EQ(wall.cell_right, nullptr); }

}  // namespace
