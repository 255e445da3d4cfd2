// What is seen of the states of all cells.
#include "fields/looks.hpp"

#include <gtest/gtest.h>

#include <limits>

#include "fields/ObjectsFlow.hpp"
#include "support/PlanMesh.hpp"
#include "support/case_of.hpp"

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// Three cells beside each other, without edges.
std::unique_ptr<SWE> three_cells() {
  support::Plan plan;
  for (const double x : {0.0, 10.0, 20.0}) {
    const int first = static_cast<int>(plan.points.size());
    plan.points.insert(plan.points.end(), {{x, 0.0, 0.0}, {x + 1.0, 0.0, 0.0}, {x, 1.0, 0.0}});
    plan.cells.push_back({{first, first + 1, first + 2}, 1.0, 0.0, 0.0});
  }
  return support::build(plan);
}

TEST(Looks, NameTheLostCellInTheMiddle) {
  const auto model = three_cells();
  const cases::Case contents = support::case_of(*model);
  const fields::ObjectsFlow flow(*model);
  const auto looks = flow.looks(contents);
  EXPECT_EQ(looks->survey().a_cell_not_finite, -1);
  EXPECT_EQ(looks->survey().wet_cells, 3);
  for (const auto& cell : model->cells) cell->U.h = nan;
  EXPECT_EQ(looks->survey().not_finite, 3);
  EXPECT_EQ(looks->survey().a_cell_not_finite, 1);
}

TEST(Looks, NameALostCellWhereTheCoordinatesHaveNoMiddle) {
  const auto model = three_cells();
  cases::Case contents = support::case_of(*model);
  const fields::ObjectsFlow flow(*model);
  for (const cases::Number cell : {1, 2}) {
    for (const cases::Number node : contents.mesh.nodes_of(cell)) {
      contents.mesh.x[cases::at(node)] = 1e308;
    }
    model->cells[cases::at(cell)]->U.h = nan;
  }
  const fields::FlowSurvey survey = flow.looks(contents)->survey();
  EXPECT_EQ(survey.not_finite, 2);
  EXPECT_EQ(survey.a_cell_not_finite, 1);
}

}  // namespace
