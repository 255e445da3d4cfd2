#include "model/CellSWE_Exner.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "support/RunGlobals.hpp"

namespace {

class ExnerCellTest : public testing::Test {
 protected:
  ExnerCellTest() : cell_({&nodes_[0], &nodes_[1], &nodes_[2]}) {
    Globals_Sed::g_d50 = 0.001;
    Globals_Sed::g_sedimentsDensity = 2.65;
    cell_.fluxes.resize(3);
    cell_.friction = 0.03;
    cell_.set_bed_rock_level(10.0);
    cell_.set_hs(0.5);
    cell_.U.h = 1.0;
  }
  ~ExnerCellTest() override { Globals_Sed::g_d50 = Globals_Sed::g_sedimentsDensity = 0.0; }

  support::RunGlobals globals_{1e-3, 0.1};
  std::array<MeshNode, 3> nodes_ = {MeshNode(0, 0, 0), MeshNode(2, 0, 3), MeshNode(0, 1, 0)};
  CellSWE_Exner cell_;
};

}  // namespace

TEST_F(ExnerCellTest, TheWorkedExampleOfTransport) {
  cell_.U.qx = 2.0;
  cell_.compute_qs_MPM();
  EXPECT_NEAR(cell_.U.qsx, 0.003175, 5e-7);
  EXPECT_LT(cell_.dqs_dh, 0.0);
}

TEST_F(ExnerCellTest, BelowTheThresholdOfMotionTheLastBedLoadPersists) {
  cell_.U.qsx = 7.0;
  cell_.U.qsy = 8.0;
  cell_.dqs_dh = -1.0;
  cell_.U.qx = 1e-3;
  cell_.Update();
  EXPECT_EQ(cell_.U.qsx, 7.0);
  EXPECT_EQ(cell_.U.qsy, 8.0);
  EXPECT_EQ(cell_.dqs_dh, 0.0);
}

TEST_F(ExnerCellTest, WithoutSedimentTheLastBedLoadPersistsUntilTheCellDries) {
  cell_.U.hs = 0.0;
  cell_.U.qx = 2.0;
  cell_.U.qsx = 7.0;
  cell_.Update();
  EXPECT_EQ(cell_.U.qsx, 7.0);
  cell_.U.h = 0.0;
  cell_.Update();
  EXPECT_EQ(cell_.U.qsx, 0.0);
}

TEST_F(ExnerCellTest, AFluxBeyondTheLayerLeavesTheBareRock) {
  cell_.fluxes[0].hs = -1e3;
  cell_.Update();
  EXPECT_EQ(cell_.U.hs, 0.0);
  EXPECT_EQ(cell_.bed_level, cell_.bed_rock_level);
  EXPECT_EQ(cell_.free_surface_level, cell_.bed_level + cell_.U.h);
}

TEST_F(ExnerCellTest, AFourthSlotDoesNotCount) {
  cell_.fluxes.resize(4);
  cell_.fluxes[3].set_values(1, 1, 1, 1, 0, 0);
  cell_.Update();
  EXPECT_EQ(cell_.U.h, 1.0);
  EXPECT_EQ(cell_.U.hs, 0.5);
}

TEST_F(ExnerCellTest, WaterBelowTheHighestVertexKeepsItsMomentum) {
  cell_.max_node_level = 100.0;
  cell_.U.qx = 0.2;
  cell_.Update();
  EXPECT_EQ(cell_.U.qx, 0.2);
}

TEST_F(ExnerCellTest, InfiltrationIsIgnored) {
  cell_.param.infiltration_step = 0.4;
  cell_.Update();
  EXPECT_EQ(cell_.U.h, 1.0);
  EXPECT_EQ(cell_.param.infiltrated_depth, 0.0);
}

TEST_F(ExnerCellTest, TheLargestVelocityCountsBeforeTheRuleThatStopsADischarge) {
  cell_.U.qx = 0.1;
  cell_.S.qx = -10.0;  // times g h dt: -9.81
  cell_.Update();
  EXPECT_EQ(cell_.U.qx, 0.0);
  EXPECT_NEAR(cell_.max_values.qx, 0.1 - 9.81, 1e-12);
}

TEST_F(ExnerCellTest, TheSourcesAreEmptied) {
  cell_.S.set_values(0.1, 0.1, 0.1, 0.0, 0.0, 0.0);
  cell_.Update();
  EXPECT_EQ(cell_.S.h, 0.0);
  EXPECT_EQ(cell_.S.qx, 0.0);
  EXPECT_EQ(cell_.S.qy, 0.0);
}
