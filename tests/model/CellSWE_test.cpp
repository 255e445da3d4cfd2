#include "model/CellSWE.hpp"

#include <gtest/gtest.h>

#include "sources/FrictionTerm.hpp"
#include "support/RunGlobals.hpp"

namespace {

/// A triangle of 2 m2 over a bed that rises from 10 to 13 m (mean 11), with three slots, under 3 m
/// of water flowing at (3, -4) m2/s; steps of 0.5 s.
class CellSWETest : public testing::Test {
 protected:
  CellSWETest() {
    cell.fluxes.resize(3);
    cell.U.set_values(3.0, 3.0, -4.0);
  }

  support::RunGlobals globals{0.01, 0.5};
  std::vector<MeshNode> nodes{{0.0, 0.0, 10.0}, {2.0, 0.0, 10.0}, {0.0, 2.0, 13.0}};
  CellSWE cell{7, {&nodes[0], &nodes[1], &nodes[2]}};
};

TEST_F(CellSWETest, AddsItsSlotsTimesTheStepOverItsArea) {
  cell.fluxes[0].set_values(1.0, 2.0, 4.0);
  cell.fluxes[1].set_values(2.0, 4.0, 8.0);
  cell.fluxes[2].set_values(1.0, 2.0, 4.0);
  cell.Update();
  EXPECT_DOUBLE_EQ(cell.U.h, 4.0);
  EXPECT_DOUBLE_EQ(cell.U.qx, 5.0);
  EXPECT_DOUBLE_EQ(cell.U.qy, 0.0);
  EXPECT_DOUBLE_EQ(cell.free_surface_level, 15.0);
}

TEST_F(CellSWETest, TakesTheFirstThreeSlotsOfAQuadrilateral) {
  const std::vector<MeshNode> corners{
      {0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {1.0, 1.0, 0.0}, {0.0, 1.0, 0.0}};
  CellSWE square({&corners[0], &corners[1], &corners[2], &corners[3]});
  square.fluxes.resize(4);
  square.fluxes[2].h = 2.0;
  square.fluxes[3].h = 100.0;
  square.Update();
  EXPECT_EQ(square.U.h, 1.0);
}

TEST_F(CellSWETest, ConsumesItsSources) {
  cell.S.set_values(0.5, 0.0625, 0.0);
  cell.Update();
  EXPECT_EQ(cell.U.h, 3.5);
  EXPECT_DOUBLE_EQ(cell.U.qx, 3.0 + 0.0625 * 0.5 * 9.81 * 3.5);
  EXPECT_EQ(cell.S.h, 0.0);
  EXPECT_EQ(cell.S.qx, 0.0);
  EXPECT_EQ(cell.S.qy, 0.0);
  cell.Update();
  EXPECT_EQ(cell.U.h, 3.5);
}

TEST_F(CellSWETest, ConsumesItsInfiltrationDemand) {
  cell.param.infiltrated_depth = 0.25;
  cell.param.infiltration_step = 0.5;
  cell.Update();
  EXPECT_EQ(cell.U.h, 2.5);
  EXPECT_EQ(cell.param.infiltrated_depth, 0.75);
  EXPECT_EQ(cell.param.infiltration_step, 0.0);
}

TEST_F(CellSWETest, ADemandBeyondTheDepthEmptiesTheCell) {
  cell.param.infiltration_step = 7.0;
  cell.Update();
  EXPECT_EQ(cell.U.h, 0.0);
  EXPECT_EQ(cell.U.qx, 0.0);
  EXPECT_EQ(cell.U.qy, 0.0);
  EXPECT_EQ(cell.param.infiltrated_depth, 3.0);
  EXPECT_EQ(cell.param.infiltration_step, 0.0);
}

TEST_F(CellSWETest, StrongFrictionStopsAComponentAndSparesTheOther) {
  // qx: the fluxes leave 0.01 of 3 m2/s, against which friction acts with its old strength.
  FrictionTerm friction(0.3);
  cell.add_source_term(&friction);
  cell.fluxes[0].set_values(0.0, -2.99 * 4.0, 0.0);
  cell.compute_source();
  cell.Update();
  EXPECT_EQ(cell.U.qx, 0.0);
  const double lost = 0.5 * 9.81 * 3.0 * 0.09 * 5.0 * 4.0 / std::pow(3.0, 10.0 / 3.0);
  EXPECT_LT(lost, 4.0);
  EXPECT_NEAR(cell.U.qy, -4.0 + lost, 1e-14);
}

TEST_F(CellSWETest, ShallowWaterOnASlopeStandsUntilItReachesTheHighestVertex) {
  cell.U.set_values(1.5, 3.0, -4.0);  // surface at 12.5 m, vertex at 13 m
  cell.Update();
  EXPECT_EQ(cell.U.h, 1.5);
  EXPECT_EQ(cell.U.qx, 0.0);
  EXPECT_EQ(cell.U.qy, 0.0);
  cell.U.set_values(2.0, 3.0, -4.0);
  cell.Update();
  EXPECT_EQ(cell.U.qx, 3.0);
}

TEST_F(CellSWETest, TheSurfaceIsCountedFromTheBedRock) {
  cell.set_hs(5.0);
  cell.Update();
  EXPECT_EQ(cell.free_surface_level, 14.0);
}

TEST_F(CellSWETest, MaximaNeverDecreaseAndHoldVelocities) {
  cell.Update();
  EXPECT_EQ(cell.max_values.h, 3.0);
  EXPECT_DOUBLE_EQ(cell.max_values.qx, 1.0);
  EXPECT_DOUBLE_EQ(cell.max_values.qy, -4.0 / 3.0);
  cell.U.set_values(2.5, 0.5, 0.0);
  cell.Update();
  EXPECT_EQ(cell.max_values.h, 3.0);
  EXPECT_DOUBLE_EQ(cell.max_values.qx, 1.0);
  cell.U.set_values(2.0, 0.0, 8.0);
  cell.Update();
  EXPECT_EQ(cell.max_values.h, 3.0);
  EXPECT_EQ(cell.max_values.qx, 0.0);
  EXPECT_EQ(cell.max_values.qy, 4.0);
}

TEST_F(CellSWETest, LeavesTheSedimentAlone) {
  cell.U.set_values(3.0, 3.0, -4.0, 0.5, 6.0, 7.0);
  cell.Update();
  EXPECT_EQ(cell.U.hs, 0.5);
  EXPECT_EQ(cell.U.qsx, 6.0);
  EXPECT_EQ(cell.U.qsy, 7.0);
}

}  // namespace
