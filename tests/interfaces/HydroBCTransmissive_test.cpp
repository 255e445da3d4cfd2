#include "interfaces/HydroBCTransmissive.hpp"

#include <gtest/gtest.h>

#include "support/EdgePatch.hpp"
#include "support/RunGlobals.hpp"
#include "support/unit_wave.hpp"

namespace {

using support::EdgePatch;
using support::k;
using support::set_water;

/// An edge of length 2 with the outward normal along x.
class HydroBCTransmissiveTest : public testing::Test {
 protected:
  HydroBCTransmissiveTest() { EdgePatch::attach(outflow); }

  const HydraulicVariableSWE& slot() {
    outflow.Flux();
    return patch.left().fluxes[0];
  }

  support::RunGlobals globals{1e-6};
  EdgePatch patch{{0.0, 0.0, 0.0}, {0.0, 2.0, 0.0}};
  HydroBCTransmissive outflow{&patch.left(), patch.a(), patch.b()};
};

TEST_F(HydroBCTransmissiveTest, SubcriticalWaterIsDrawnToItsCriticalDepth) {
  // Depth 4k, 1/4 m/s, 2 m/s along the edge: hc = k, Fh = 6.25k, Fn = -0.9375k, Ft = 12.5k.
  set_water(patch.left(), 0.0, 4.0 * k, k, 8.0 * k);
  EXPECT_NEAR(slot().h, -12.5 * k, 1e-14);
  EXPECT_NEAR(slot().qx, 1.875 * k, 1e-14);
  EXPECT_NEAR(slot().qy, -25.0 * k, 1e-14);
}

TEST_F(HydroBCTransmissiveTest, SupercriticalWaterLeavesUnchanged) {
  // 3 m/s at a celerity of 2 m/s.
  set_water(patch.left(), 0.0, 4.0 * k, 12.0 * k, 8.0 * k);
  EXPECT_NEAR(slot().h, -24.0 * k, 1e-13);
  EXPECT_NEAR(slot().qx, -88.0 * k, 1e-13);
  EXPECT_NEAR(slot().qy, -48.0 * k, 1e-13);
}

TEST_F(HydroBCTransmissiveTest, ADryCellGetsZerosOverAnOldSlot) {
  set_water(patch.left(), 0.0, 1e-6, 3.0, 4.0);
  patch.left().fluxes[0].set_values(7.0, 7.0, 7.0);
  EXPECT_EQ(slot().h, 0.0);
  EXPECT_EQ(slot().qx, 0.0);
  EXPECT_EQ(slot().qy, 0.0);
}

}  // namespace
