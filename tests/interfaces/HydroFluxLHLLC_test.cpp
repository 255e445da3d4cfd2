#include "interfaces/HydroFluxLHLLC.hpp"

#include <gtest/gtest.h>

#include "support/EdgePatch.hpp"
#include "support/RunGlobals.hpp"
#include "support/unit_wave.hpp"

namespace {

using support::EdgePatch;
using support::k;
using support::set_water;

/// An edge of length 2 along y, its normal along x.
class HydroFluxLHLLCTest : public testing::Test {
 protected:
  HydroFluxLHLLCTest() { EdgePatch::attach(flux, 1); }

  support::RunGlobals globals{1e-6};
  EdgePatch patch{{0.0, 0.0, 0.0}, {0.0, 2.0, 0.0}};
  HydroFluxLHLLC flux{&patch.left(), &patch.right(), patch.a(), patch.b()};
};

TEST_F(HydroFluxLHLLCTest, WritesTheWorkedExampleIntoItsOwnSlots) {
  // Waves between -1 and 3 m/s, step k: Fh = 4.5k, Fn = 12.75k and 10.25k, velocity 2 along y.
  set_water(patch.left(), 0.0, 4.0 * k, 4.0 * k, 8.0 * k);
  set_water(patch.right(), k, k, 0.0, 0.0);
  flux.Flux();
  const HydraulicVariableSWE& left = patch.left().fluxes[1];
  EXPECT_DOUBLE_EQ(left.h, -9.0 * k);
  EXPECT_DOUBLE_EQ(left.qx, -25.5 * k);
  EXPECT_DOUBLE_EQ(left.qy, -18.0 * k);
  const HydraulicVariableSWE& right = patch.right().fluxes[1];
  EXPECT_DOUBLE_EQ(right.h, 9.0 * k);
  EXPECT_DOUBLE_EQ(right.qx, 20.5 * k);
  EXPECT_DOUBLE_EQ(right.qy, 18.0 * k);
  EXPECT_EQ(patch.left().fluxes[0].h, 0.0);
  EXPECT_EQ(patch.right().fluxes[0].h, 0.0);
}

TEST_F(HydroFluxLHLLCTest, OverwritesWhatAnEarlierStepLeft) {
  set_water(patch.left(), 0.0, 1.0, 0.0, 0.0);
  set_water(patch.right(), 0.0, 1.0, 0.0, 0.0);
  patch.left().fluxes[1].set_values(7.0, 7.0, 7.0);
  patch.right().fluxes[1].set_values(7.0, 7.0, 7.0);
  flux.Flux();
  EXPECT_EQ(patch.left().fluxes[1].h, 0.0);
  EXPECT_DOUBLE_EQ(patch.left().fluxes[1].qx, -9.81);
  EXPECT_EQ(patch.left().fluxes[1].qy, 0.0);
  EXPECT_DOUBLE_EQ(patch.right().fluxes[1].qx, 9.81);
}

TEST_F(HydroFluxLHLLCTest, TwoDryCellsGetExactZerosOverOldSlots) {
  set_water(patch.left(), 0.0, 1e-6, 3.0, 4.0);
  set_water(patch.right(), 5.0, 0.0, 3.0, 4.0);
  patch.left().fluxes[1].set_values(7.0, 7.0, 7.0);
  patch.right().fluxes[1].set_values(7.0, 7.0, 7.0);
  flux.Flux();
  for (const ComputationalCell* cell : {&patch.left(), &patch.right()}) {
    EXPECT_EQ(cell->fluxes[1].h, 0.0);
    EXPECT_EQ(cell->fluxes[1].qx, 0.0);
    EXPECT_EQ(cell->fluxes[1].qy, 0.0);
  }
}

TEST_F(HydroFluxLHLLCTest, ReadsTheBedRockAndTheStoredFreeSurface) {
  set_water(patch.left(), 0.0, k, 0.0, 0.0);
  set_water(patch.right(), 0.0, k, 0.0, 0.0);
  patch.right().set_hs(100.0);                // sediment over the bed rock does not count
  patch.left().free_surface_level = 3.0 * k;  // nor does bed plus depth
  flux.Flux();
  // Waves between -1 and 1 m/s: Fh = (3k - k) / 2.
  EXPECT_DOUBLE_EQ(patch.right().fluxes[1].h, 2.0 * k);
}

TEST_F(HydroFluxLHLLCTest, DoesNotChangeTheStates) {
  set_water(patch.left(), 0.0, 4.0 * k, 4.0 * k, 8.0 * k);
  set_water(patch.right(), k, k, 0.0, 0.0);
  flux.Flux();
  EXPECT_EQ(patch.left().U.h, 4.0 * k);
  EXPECT_EQ(patch.left().U.qx, 4.0 * k);
  EXPECT_EQ(patch.right().U.h, k);
}

}  // namespace
