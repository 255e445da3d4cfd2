#include "fields/ObjectsFlow.hpp"

#include <gtest/gtest.h>

#include "model/SWE_Exner.hpp"
#include "support/RectangleMesh.hpp"
#include "support/RunGlobals.hpp"

namespace {

using fields::Field;

class ObjectsFlowTest : public testing::Test {
 protected:
  double value(Field field, cases::Number cell) const {
    double value = 0.0;
    flow.read(field, {&cell, 1}, {&value, 1});
    return value;
  }

  support::RunGlobals globals{1e-3};
  std::unique_ptr<SWE_Exner> model =
      support::build_rectangle<SWE_Exner>({2, 1, 2.0, 1.0, {-3, -0.5}});
  fields::ObjectsFlow flow{*model};
};

TEST_F(ObjectsFlowTest, ReadsEveryFieldOfACell) {
  ComputationalCell& cell = *model->cells[2];
  cell.U.set_values(1.0, 2.0, 3.0, 4.0, 5.0, 6.0);
  cell.max_values.h = 7.0;
  cell.param.infiltrated_depth = 8.0;
  cell.bed_level = 9.0;
  EXPECT_EQ(value(Field::depth, 2), 1.0);
  EXPECT_EQ(value(Field::discharge_x, 2), 2.0);
  EXPECT_EQ(value(Field::discharge_y, 2), 3.0);
  EXPECT_EQ(value(Field::sediment_thickness, 2), 4.0);
  EXPECT_EQ(value(Field::bed_load_x, 2), 5.0);
  EXPECT_EQ(value(Field::bed_load_y, 2), 6.0);
  EXPECT_EQ(value(Field::largest_depth, 2), 7.0);
  EXPECT_EQ(value(Field::infiltrated_depth, 2), 8.0);
  EXPECT_EQ(value(Field::bed_level, 2), 9.0);
}

TEST_F(ObjectsFlowTest, ReadsCellsInTheirOrderOrInTheOneAskedFor) {
  for (const auto& cell : model->cells) cell->U.h = 10.0 + cell->id;
  std::vector<double> all(4), some(3);
  flow.read(Field::depth, all);
  EXPECT_EQ(all, (std::vector<double>{10.0, 11.0, 12.0, 13.0}));
  const std::vector<cases::Number> cells = {3, 0, 3};
  flow.read(Field::depth, cells, some);
  EXPECT_EQ(some, (std::vector<double>{13.0, 10.0, 13.0}));
}

TEST_F(ObjectsFlowTest, TellsAllThatTheNextStepMakesOfACell) {
  ComputationalCell& cell = *model->cells[1];
  cell.U.set_values(1.0, 2.0, 3.0, 4.0, 5.0, 6.0);
  cell.dqs_dh = 7.0;
  cell.bed_level = 8.0;
  cell.free_surface_level = 9.0;
  const fields::CellState state = flow.state(1);
  EXPECT_EQ(state.qsy, 6.0);
  EXPECT_EQ(state.dqs_dh, 7.0);
  EXPECT_EQ(state.bed_level, 8.0);
  EXPECT_EQ(state.water_level, 9.0);
}

TEST_F(ObjectsFlowTest, StepsAtTheClockThatItIsGiven) {
  support::fill(*model, [](double, double) { return 1.0; });
  const double before = support::volume_of(*model);
  EXPECT_EQ(flow.stable_step(0.0), model->dtMin());
  const double step = flow.advance({3.0, 2.0, 8.0, 0.01});
  EXPECT_EQ(Globals::t, 3.0);
  EXPECT_EQ(Globals_Params::tStart, 2.0);
  EXPECT_EQ(Globals_Params::tEnd, 8.0);
  EXPECT_EQ(step, model->dtMin());
  EXPECT_NEAR(support::volume_of(*model), before + 0.5 * 0.01, 1e-15);
}

TEST_F(ObjectsFlowTest, TellsWhatEnteredThroughABoundaryByItsNumber) {
  support::fill(*model, [](double, double) { return 1.0; });
  flow.watch();
  flow.advance({0.0, 0.0, 1.0, 0.01});
  double inflow = 0.0;
  for (int boundary = 0; boundary < 6; ++boundary) inflow += flow.boundary_inflow(boundary).water;
  EXPECT_NEAR(inflow, 0.5, 1e-15);
}

TEST_F(ObjectsFlowTest, LeavesItsModelUnwatched) {
  {
    fields::ObjectsFlow watched(*model);
    watched.watch();
    EXPECT_NE(model->observer, nullptr);
  }
  EXPECT_EQ(model->observer, nullptr);
}

}  // namespace
