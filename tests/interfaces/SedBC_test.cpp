// The boundary conditions of the model with sediments, next to their hydrodynamic twins.
#include <gtest/gtest.h>

#include "interfaces/HydroBCDischarge.hpp"
#include "interfaces/HydroBCTransmissive.hpp"
#include "interfaces/HydroBCWall.hpp"
#include "interfaces/HydroBCWaterLevel.hpp"
#include "interfaces/SedBCDischarge.hpp"
#include "interfaces/SedBCTransmissive.hpp"
#include "interfaces/SedBCWall.hpp"
#include "interfaces/SedBCWaterLevel.hpp"
#include "support/EdgePatch.hpp"
#include "support/RunGlobals.hpp"

namespace {

constexpr double zero_depth = 1e-3;
constexpr double porosity = 0.4;

class SedBC : public testing::Test {
 protected:
  SedBC() : patch_({0.0, 0.0, 0.0}, {-0.8, 0.6, 0.0}) {  // normal (0.6, 0.8), length 1
    Globals_Sed::g_sedimentsPorosity = porosity;
    wet(1.0, 1.1, 0.3);
  }
  ~SedBC() override { Globals_Sed::g_sedimentsPorosity = 0.0; }

  ComputationalCell& cell() { return patch_.left(); }
  void wet(double h, double qx, double qy) {
    support::set_water(cell(), 0.0, h, qx, qy);
    cell().U.hs = 0.5;
    cell().U.qsx = 2e-3;
    cell().U.qsy = -1e-3;
  }
  double bed_load_out() { return 2e-3 * 0.6 - 1e-3 * 0.8; }

  template <class BC, class... Value>
  HydraulicVariableSWE slot(Value... value) {
    BC bc(&cell(), patch_.a(), patch_.b(), value...);
    cell().fluxes.clear();
    cell().interfaces.clear();
    support::EdgePatch::attach(bc);
    bc.Flux();
    return cell().fluxes[0];
  }

  void expect_same_water(const HydraulicVariableSWE& a, const HydraulicVariableSWE& b) {
    EXPECT_EQ(a.h, b.h);
    EXPECT_EQ(a.qx, b.qx);
    EXPECT_EQ(a.qy, b.qy);
    EXPECT_EQ(a.qsx, 0.0);
    EXPECT_EQ(a.qsy, 0.0);
  }

 private:
  support::RunGlobals globals_{zero_depth};
  support::EdgePatch patch_;
};

}  // namespace

TEST_F(SedBC, AWallNeverChangesTheBed) {
  for (const double h : {0.0, 1.0}) {
    wet(h, 1.1, 0.3);
    const auto sediment = slot<SedBCWall>();
    expect_same_water(sediment, slot<HydroBCWall>());
    EXPECT_EQ(sediment.hs, 0.0);
  }
}

TEST_F(SedBC, SedimentLeavesThroughAFreeOutflowAtTheCellsOwnRateInBothRegimes) {
  for (const double qx : {1.1, 9.0}) {
    wet(1.0, qx, 0.3);
    const auto sediment = slot<SedBCTransmissive>();
    expect_same_water(sediment, slot<HydroBCTransmissive>());
    EXPECT_NEAR(sediment.hs, -bed_load_out() / (1.0 - porosity), 1e-17);
  }
}

TEST_F(SedBC, SedimentLeavesThroughAnImposedLevelAtTheCellsOwnRate) {
  const auto sediment = slot<SedBCWaterLevel>(1.1);
  expect_same_water(sediment, slot<HydroBCWaterLevel>(1.1));
  EXPECT_NEAR(sediment.hs, -bed_load_out() / (1.0 - porosity), 1e-17);
}

TEST_F(SedBC, WithoutTransportNoSedimentCrossesAnOpenBoundary) {
  cell().U.qsx = cell().U.qsy = 0.0;
  EXPECT_EQ(slot<SedBCTransmissive>().hs, 0.0);
  EXPECT_EQ(slot<SedBCWaterLevel>(1.1).hs, 0.0);
}

TEST_F(SedBC, ADryCellExchangesNoSedimentWhateverItsTransport) {
  wet(0.5 * zero_depth, 0.0, 0.0);
  EXPECT_EQ(slot<SedBCTransmissive>().hs, 0.0);
  EXPECT_EQ(slot<SedBCWaterLevel>(1.1).hs, 0.0);
  EXPECT_EQ(slot<SedBCDischarge>(-1.0, 0.1).hs, 0.0);
  EXPECT_EQ(slot<SedBCDischarge>(-1.0, 0.1).h, 1.0);  // the water is delivered all the same
}

TEST_F(SedBC, AnImposedLevelCountsFromTheBedRock) {
  cell().bed_level = cell().bed_rock_level + cell().U.hs;
  SedBCWaterLevel bc(&cell(), *cell().get_node(0), *cell().get_node(1), 1.1);
  cell().fluxes.clear();
  cell().interfaces.clear();
  support::EdgePatch::attach(bc);
  bc.Flux();
  EXPECT_EQ(bc.h_imposed, 1.1 - cell().bed_rock_level);
}

TEST_F(SedBC, AnImposedDischargeWithoutSedimentIsTheHydrodynamicOne) {
  for (const double qx : {1.1, 9.0}) {
    wet(1.0, qx, 0.3);
    const auto sediment = slot<SedBCDischarge>(-0.7, 0.0);
    expect_same_water(sediment, slot<HydroBCDischarge>(-0.7));
    EXPECT_EQ(sediment.hs, 0.0);
  }
}

TEST_F(SedBC, AnImposedBedLoadIsEnlargedByThePores) {
  EXPECT_DOUBLE_EQ(slot<SedBCDischarge>(-0.7, -3e-3).hs, 3e-3 / (1.0 - porosity));
}
