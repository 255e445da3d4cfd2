#include "fields/HllFlow.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "support/TriangleGrid.hpp"

namespace {

using cases::Number;
using fields::Field;
using fields::HllFlow;
using support::TriangleGrid;

std::vector<double> values_of(const HllFlow& flow, Field field, const cases::Case& contents) {
  std::vector<double> values(cases::at(contents.mesh.n_cells()));
  flow.read(field, values);
  return values;
}

}  // namespace

TEST(HllFlow, ShowsEveryFieldByTheNumberOfTheCell) {
  TriangleGrid grid;
  grid.bed = [](double x, double y) { return 0.01 * x + 0.02 * y; };
  grid.qx = [](double x, double) { return 0.1 * x; };
  cases::Case contents = grid.make();
  contents.fields.infiltrated.assign(cases::at(contents.mesh.n_cells()), 0.25);
  const HllFlow flow(contents);
  const Number cell = 17;
  const physics::SpacePoint center = contents.mesh.center_of(cell);
  const fields::CellState state = flow.state(cell);
  EXPECT_EQ(state.bed_level, center.z);
  EXPECT_EQ(state.h, 1.0 - center.z);
  EXPECT_EQ(state.qx, 0.1 * center.x);
  EXPECT_EQ(state.water_level, state.bed_level + state.h);
  EXPECT_EQ(values_of(flow, Field::depth, contents)[17], state.h);
  EXPECT_EQ(values_of(flow, Field::discharge_x, contents)[17], state.qx);
  EXPECT_EQ(values_of(flow, Field::discharge_y, contents)[17], 0.0);
  EXPECT_EQ(values_of(flow, Field::bed_level, contents)[17], state.bed_level);
  EXPECT_EQ(values_of(flow, Field::infiltrated_depth, contents)[17], 0.25);
  EXPECT_EQ(values_of(flow, Field::largest_depth, contents)[17], 0.0);
  EXPECT_EQ(values_of(flow, Field::sediment_thickness, contents)[17], 0.0);
  double of_one = 0.0;
  flow.read(Field::depth, {&cell, 1}, {&of_one, 1});
  EXPECT_EQ(of_one, state.h);
}

TEST(HllFlow, KeepsTheLargestDepthOfAllSteps) {
  TriangleGrid grid;
  grid.level = [](double x, double) { return x < 2.0 ? 2.0 : 0.5; };
  const cases::Case contents = grid.make();
  HllFlow flow(contents);
  std::vector<double> largest(cases::at(contents.mesh.n_cells()), 0.0);
  double t = 0.0;
  for (int step = 0; step < 30; ++step) {
    const double dt = 0.5 * flow.advance({t, 0.0, 1e9, 0.01});
    t += dt;
    const std::vector<double> h = values_of(flow, Field::depth, contents);
    for (std::size_t i = 0; i < h.size(); ++i) largest[i] = std::max(largest[i], h[i]);
  }
  EXPECT_EQ(values_of(flow, Field::largest_depth, contents), largest);
}

TEST(HllFlow, NotesTheFastestWaterAndTheCellThatBoundsTheStep) {
  TriangleGrid grid;
  grid.level = [](double x, double) { return x < 2.0 ? 2.0 : 0.5; };
  const cases::Case contents = grid.make();
  HllFlow flow(contents);
  flow.watch();
  EXPECT_EQ(flow.notes().speed_squared.cell, -1);
  EXPECT_LT(contents.mesh.center_of(flow.notes().limiting_cell).x, 2.0);
  flow.advance({0.0, 0.0, 1e9, 0.05});
  const physics::FlowRecord fastest = flow.notes().speed_squared;
  const fields::CellState state = flow.state(fastest.cell);
  EXPECT_NEAR(std::sqrt(fastest.value), std::hypot(state.qx, state.qy) / state.h, 1e-12);
  EXPECT_NEAR(contents.mesh.center_of(fastest.cell).x, 2.0, 1.0);
  EXPECT_NEAR(flow.looks(contents)->survey().largest_speed, std::sqrt(fastest.value), 1e-12);
  EXPECT_EQ(flow.looks(contents)->survey().wet_cells, contents.mesh.n_cells());
  EXPECT_EQ(flow.looks(contents)->survey().a_cell_not_finite, -1);
}

TEST(HllFlow, FindsTheCellsWhoseStateIsNoNumber) {
  TriangleGrid grid;
  grid.qx = [](double x, double) { return x < 4.0 ? 0.0 : 1e200; };
  const cases::Case contents = grid.make();
  HllFlow flow(contents);
  flow.watch();
  flow.advance({0.0, 0.0, 1e9, 0.01});
  EXPECT_GT(flow.notes().not_finite, 0);
  EXPECT_GE(flow.looks(contents)->survey().a_cell_not_finite, 0);
}
