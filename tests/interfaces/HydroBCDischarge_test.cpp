#include "interfaces/HydroBCDischarge.hpp"

#include <gtest/gtest.h>

#include "support/EdgePatch.hpp"
#include "support/RunGlobals.hpp"
#include "support/unit_wave.hpp"

namespace {

using support::EdgePatch;
using support::k;
using support::set_water;

/// An edge of length 2 with the outward normal along x, through which 6k m2/s enter.
class HydroBCDischargeTest : public testing::Test {
 protected:
  HydroBCDischargeTest() { EdgePatch::attach(inflow); }

  const HydraulicVariableSWE& slot() {
    inflow.Flux();
    return patch.left().fluxes[0];
  }

  support::RunGlobals globals{1e-6};
  EdgePatch patch{{0.0, 0.0, 0.0}, {0.0, 2.0, 0.0}};
  HydroBCDischarge inflow{&patch.left(), patch.a(), patch.b(), -6.0 * k};
};

TEST_F(HydroBCDischargeTest, AnInflowOntoADryCellBringsWaterAndNoMomentum) {
  set_water(patch.left(), 0.0, 1e-6, 3.0, 4.0);
  patch.left().fluxes[0].set_values(7.0, 7.0, 7.0);
  EXPECT_EQ(slot().h, 12.0 * k);
  EXPECT_EQ(slot().qx, 0.0);
  EXPECT_EQ(slot().qy, 0.0);
}

TEST_F(HydroBCDischargeTest, SubcriticalWaterGetsTheWorkedExample) {
  // Depth 4k, 1 m/s, 2 m/s along the edge: Fn = 18k, Ft = (-20 + 20 / 3) k.
  set_water(patch.left(), 0.0, 4.0 * k, 4.0 * k, 8.0 * k);
  EXPECT_EQ(slot().h, 12.0 * k);
  EXPECT_NEAR(slot().qx, -36.0 * k, 1e-14);
  EXPECT_NEAR(slot().qy, -2.0 * (-20.0 + 20.0 / 3.0) * k, 1e-14);
}

TEST_F(HydroBCDischargeTest, NoTangentialDischargeIsImposed) {
  EXPECT_EQ(inflow.q_imposed, -6.0 * k);
  EXPECT_EQ(inflow.qt_imposed, 0.0);
}

TEST_F(HydroBCDischargeTest, AnOutflowIsWithdrawnEvenFromADryCell) {
  HydroBCDischarge outflow(&patch.left(), patch.a(), patch.b(), 5.0);
  EdgePatch::attach(outflow);
  set_water(patch.left(), 0.0, 0.0, 0.0, 0.0);
  outflow.Flux();
  EXPECT_EQ(patch.left().fluxes[0].h, -10.0);
}

}  // namespace
