// State of a cell: initial values, levels, sources, stable step.
#include <gtest/gtest.h>

#include "model/ComputationalCell.hpp"
#include "sources/SourceTerm.hpp"
#include "support/RunGlobals.hpp"
#include "support/unit_wave.hpp"

namespace {

using support::k;

/// A right triangle with legs of 2 m, its bed rock at 10 m.
class CellStateTest : public testing::Test {
 protected:
  support::RunGlobals globals{0.01};
  std::vector<MeshNode> nodes{{0.0, 0.0, 10.0}, {2.0, 0.0, 10.0}, {0.0, 2.0, 10.0}};
  ComputationalCell cell{{&nodes[0], &nodes[1], &nodes[2]}};
};

TEST_F(CellStateTest, TheDepthIsCountedFromTheBed) {
  cell.set_hydrodynamic_values(12.5, 3.0, 4.0);
  EXPECT_EQ(cell.U.h, 2.5);
  EXPECT_EQ(cell.U.qx, 3.0);
  EXPECT_EQ(cell.U.qy, 4.0);
  EXPECT_EQ(cell.free_surface_level, 12.5);
  EXPECT_EQ(&cell.UVal(), &cell.U);
}

TEST_F(CellStateTest, ALevelBelowTheBedGivesADryCellThatKeepsTheLevel) {
  cell.set_hydrodynamic_values(8.0, 3.0, 4.0);
  EXPECT_EQ(cell.U.h, 0.0);
  EXPECT_EQ(cell.U.qx, 0.0);
  EXPECT_EQ(cell.U.qy, 0.0);
  EXPECT_EQ(cell.free_surface_level, 8.0);
}

TEST_F(CellStateTest, AFilmKeepsItsDepthAndLosesItsDischarges) {
  cell.set_bed_rock_level(0.0);
  cell.set_hydrodynamic_values(0.005, 3.0, 4.0);
  EXPECT_EQ(cell.U.h, 0.005);
  EXPECT_EQ(cell.U.qx, 0.0);
  EXPECT_EQ(cell.U.qy, 0.0);
}

TEST_F(CellStateTest, ADepthAtTheThresholdKeepsItsDischargesAndBoundsNoStep) {
  cell.set_bed_rock_level(0.0);
  cell.set_hydrodynamic_values(0.01, 3.0, 4.0);
  EXPECT_EQ(cell.U.qx, 3.0);
  EXPECT_EQ(cell.U.qy, 4.0);
  EXPECT_EQ(cell.dtMin(), 1e20);
}

TEST_F(CellStateTest, InitialValuesLeaveTheSedimentAlone) {
  cell.U.set_values(0.0, 0.0, 0.0, 0.5, 6.0, 7.0);
  cell.set_hydrodynamic_values(12.5, 3.0, 4.0);
  EXPECT_EQ(cell.U.hs, 0.5);
  EXPECT_EQ(cell.U.qsx, 6.0);
  EXPECT_EQ(cell.U.qsy, 7.0);
}

TEST_F(CellStateTest, SedimentRaisesTheBedUnderTheWater) {
  cell.set_bed_rock_level(10.0);
  cell.set_hs(0.5);
  EXPECT_EQ(cell.bed_level, 10.5);
  EXPECT_EQ(cell.bed_rock_level, 10.0);
  cell.set_hydrodynamic_values(11.0, 0.0, 0.0);
  EXPECT_EQ(cell.U.h, 0.5);
}

TEST_F(CellStateTest, ANewBedRockDropsTheSedimentFromTheBedOnly) {
  cell.set_hs(0.5);
  cell.set_bed_rock_level(3.0);
  EXPECT_EQ(cell.bed_level, 3.0);
  EXPECT_EQ(cell.bed_rock_level, 3.0);
  EXPECT_EQ(cell.U.hs, 0.5);
}

TEST_F(CellStateTest, TheStableStepIsThatOfItsFastestWave) {
  // |u| = 5 m/s, celerity 2 m/s.
  cell.U.set_values(4.0 * k, 12.0 * k, 16.0 * k);
  EXPECT_DOUBLE_EQ(cell.dtMin(), cell.char_length / 7.0);
}

TEST_F(CellStateTest, KeepsItsFriction) {
  cell.set_friction(0.03);
  EXPECT_EQ(cell.friction, 0.03);
}

/// Writes down what it is given, and doubles the source.
class Recorder : public SourceTerm {
 public:
  void compute_source_term(double t, HydraulicVariableSWE& source, HydraulicVariableSWE& state,
                           ParamCell& param) override {
    time = t;
    depth = state.h;
    source.h = 2.0 * source.h + add;
    param.infiltration_step += 1.0;
  }
  double add = 0.0;
  double time = -1.0;
  double depth = -1.0;
};

TEST_F(CellStateTest, SourceTermsWriteInTheOrderOfTheirAttachment) {
  Recorder first, second;
  first.add = 1.0;
  second.add = 5.0;
  cell.add_source_term(&first);
  cell.add_source_term(&second);
  cell.U.h = 3.0;
  Globals::t = 42.0;
  cell.compute_source();
  EXPECT_EQ(cell.S.h, 7.0);  // 2 (2 * 0 + 1) + 5
  EXPECT_EQ(first.time, 42.0);
  EXPECT_EQ(second.depth, 3.0);
  EXPECT_EQ(cell.param.infiltration_step, 2.0);
}

}  // namespace
