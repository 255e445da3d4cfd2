#include "model/SWE.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "interfaces/HydroBCDischarge.hpp"
#include "interfaces/HydroBCHydrograph.hpp"
#include "interfaces/HydroBCLimnigraph.hpp"
#include "interfaces/HydroBCTransmissive.hpp"
#include "interfaces/HydroBCWall.hpp"
#include "interfaces/HydroBCWaterLevel.hpp"
#include "interfaces/HydroFluxLHLLC.hpp"
#include "model/CellSWE.hpp"
#include "support/RectangleMesh.hpp"
#include "support/RunGlobals.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/fatal.hpp"

namespace {

constexpr int lhllc = 1;
constexpr int roe = 2;

/// Two triangles of a unit square, without interfaces.
class SWETest : public testing::Test {
 protected:
  SWETest() {
    model.mesh_nodes = {{0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {1.0, 1.0, 0.0}, {0.0, 1.0, 0.0}};
    model.build_cell(0, {&node(0), &node(1), &node(3)});
    model.build_cell(1, {&node(1), &node(2), &node(3)});
    model.n_cells = 2;
  }

  const MeshNode& node(std::size_t i) const { return model.mesh_nodes[i]; }
  ComputationalCell& cell(std::size_t i) { return *model.cells[i]; }

  /// A boundary edge of the first cell.
  template <class Interface>
  const Interface* boundary(int code, double value = 0.0, const std::string& file = "") {
    model.build_interface(lhllc, 0, 0, -1, node(0), node(1), code, value, file);
    return dynamic_cast<Interface*>(model.interfaces.back().get());
  }
  void interior(int scheme) {
    model.build_interface(scheme, 0, 0, 1, node(1), node(3), -1, 0.0, "");
  }

  support::RunGlobals globals{0.01};
  SWE model;
};

TEST_F(SWETest, BuildsHydrodynamicCellsInOrder) {
  ASSERT_EQ(model.cells.size(), 2u);
  EXPECT_NE(dynamic_cast<CellSWE*>(model.cells[1].get()), nullptr);
  EXPECT_EQ(cell(0).id, 0);
  EXPECT_EQ(cell(1).id, 1);
  EXPECT_EQ(cell(1).get_node(2), &node(3));
}

TEST_F(SWETest, AnInteriorEdgeIsAttachedToBothCellsLeftFirst) {
  boundary<HydroBCWall>(-5);
  model.build_interface(lhllc, 1, 1, 0, node(3), node(1), -1, 0.0, "");
  ASSERT_EQ(model.interfaces.size(), 2u);
  const auto* flux = dynamic_cast<HydroFluxLHLLC*>(model.interfaces[1].get());
  ASSERT_NE(flux, nullptr);
  EXPECT_EQ(flux->cell_left, &cell(1));
  EXPECT_EQ(flux->cell_right, &cell(0));
  EXPECT_EQ(flux->tag, 1);
  ASSERT_EQ(cell(1).interfaces.size(), 1u);
  ASSERT_EQ(cell(0).interfaces.size(), 2u);
  EXPECT_EQ(cell(1).interfaces[0], flux);
  EXPECT_EQ(cell(0).interfaces[1], flux);
}

TEST_F(SWETest, ABoundaryEdgeIsAttachedToItsOnlyCell) {
  const auto* wall = boundary<HydroBCWall>(-5);
  ASSERT_NE(wall, nullptr);
  EXPECT_EQ(wall->cell_left, &cell(0));
  EXPECT_EQ(wall->cell_right, nullptr);
  EXPECT_EQ(wall->nodes[0], &node(0));
  EXPECT_EQ(wall->nodes[1], &node(1));
  EXPECT_EQ(cell(0).interfaces.size(), 1u);
  EXPECT_TRUE(cell(1).interfaces.empty());
}

TEST_F(SWETest, EveryCodeHasItsBoundaryCondition) {
  EXPECT_NE(boundary<HydroBCTransmissive>(-2), nullptr);
  const auto* discharge = boundary<HydroBCDischarge>(-3, -2.5);
  ASSERT_NE(discharge, nullptr);
  EXPECT_EQ(discharge->q_imposed, -2.5);
  const auto* level = boundary<HydroBCWaterLevel>(-4, 7.5);
  ASSERT_NE(level, nullptr);
  EXPECT_EQ(level->level_imposed, 7.5);
}

TEST_F(SWETest, TheCodesOfTimeSeriesReadTheFileOfTheEdge) {
  const support::TemporaryFolder folder;
  const auto* hydrograph = boundary<HydroBCHydrograph>(-33, 0.0, folder.write("q", "2 0 1 9 2"));
  ASSERT_NE(hydrograph, nullptr);
  EXPECT_EQ(hydrograph->series->values.back(), 2.0);
  const auto* limnigraph = boundary<HydroBCLimnigraph>(-44, 0.0, folder.write("z", "2 0 3 9 4"));
  ASSERT_NE(limnigraph, nullptr);
  EXPECT_EQ(limnigraph->series->values.back(), 4.0);
}

TEST_F(SWETest, AnUnknownBoundaryCodeEndsTheRun) {
  EXPECT_FATAL(boundary<HydroBCWall>(7), 255,
               testing::Eq("Boundary condition of type 7 not defined!\n"));
}

TEST_F(SWETest, AnUnrecognisedSchemeEndsTheRunAtTheFirstInteriorEdge) {
  EXPECT_FATAL(interior(0), 255, testing::Eq("Boundary condition of type 0 not defined!\n"));
}

TEST_F(SWETest, TheRoeSchemeAnnouncesItselfAndEndsTheRun) {
  EXPECT_FATAL(interior(roe), 255,
               testing::Eq("Error. The flux scheme \"Roe\" (code 2, edge 0) is not available; use "
                           "\"LHLLC\".\n"));
  EXPECT_FATAL_OUTPUT(interior(roe), 255, testing::Eq("should be Roe scheme\n"));
}

/// Notes what it finds when it is asked for a source.
class Witness : public SourceTerm {
 public:
  explicit Witness(const ComputationalCell& cell) : cell_(cell) {}
  void compute_source_term(double, HydraulicVariableSWE& source, HydraulicVariableSWE& state,
                           ParamCell&) override {
    slot = std::abs(cell_.fluxes[0].qx) + std::abs(cell_.fluxes[0].qy);
    depth = state.h;
    source.h += 1.0;
  }
  double slot = 0.0;
  double depth = 0.0;

 private:
  const ComputationalCell& cell_;
};

TEST_F(SWETest, AStepTakesFluxesThenSourcesThenTheBalance) {
  const auto square = support::build_rectangle({1, 1, 1.0, 1.0});
  support::fill(*square, [](double, double) { return 2.0; });
  Globals::dt = 1e-3;
  ComputationalCell& first = *square->cells[0];
  Witness witness(first);
  first.add_source_term(&witness);
  square->computeFlowStep();
  EXPECT_GT(witness.slot, 0.0);   // slots filled before
  EXPECT_EQ(witness.depth, 2.0);  // state of the start of the step
  EXPECT_EQ(first.U.h, 3.0);      // source applied after
}

TEST_F(SWETest, AnObserverSeesTheSlotsBeforeTheSourcesAndTheSourcesBeforeTheBalance) {
  struct Observer : StepObserver {
    explicit Observer(const ComputationalCell& watched) : cell(watched) {}
    void sources_come_next() override {
      slot = std::abs(cell.fluxes[0].qx) + std::abs(cell.fluxes[0].qy);
      source_before = cell.S.h;
    }
    void balance_comes_next() override {
      source_after = cell.S.h;
      depth = cell.U.h;
    }
    const ComputationalCell& cell;
    double slot = 0.0, source_before = -1.0, source_after = -1.0, depth = 0.0;
  };
  const auto square = support::build_rectangle({1, 1, 1.0, 1.0});
  support::fill(*square, [](double, double) { return 2.0; });
  Globals::dt = 1e-3;
  ComputationalCell& first = *square->cells[0];
  Witness witness(first);
  first.add_source_term(&witness);
  Observer observer(first);
  square->observer = &observer;
  square->computeFlowStep();
  EXPECT_GT(observer.slot, 0.0);
  EXPECT_EQ(observer.source_before, 0.0);
  EXPECT_EQ(observer.source_after, 1.0);
  EXPECT_EQ(observer.depth, 2.0);
}

TEST_F(SWETest, AStepReturnsTheStableStepOfTheNewState) {
  const auto square = support::build_rectangle({1, 1, 1.0, 1.0});
  support::fill(*square, [](double, double) { return 2.0; });
  Globals::dt = 1e-3;
  for (const auto& c : square->cells) c->S.h = 2.0;
  const double length = 1.0 / (2.0 + std::sqrt(2.0));
  EXPECT_DOUBLE_EQ(square->computeFlowStep(), length / std::sqrt(9.81 * 4.0));
}

}  // namespace
