#include "fields/flow_survey.hpp"

#include <gtest/gtest.h>

#include <limits>

#include "fields/ObjectsFlow.hpp"
#include "support/PlanMesh.hpp"

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

TEST(FlowSurvey, NamesTheLostCellInTheMiddle) {
  const auto model = three_cells();
  const fields::ObjectsFlow flow(*model);
  EXPECT_EQ(flow.survey().a_cell_not_finite, -1);
  for (const auto& cell : model->cells) cell->U.h = nan;
  EXPECT_EQ(flow.survey().not_finite, 3);
  EXPECT_EQ(flow.survey().a_cell_not_finite, 1);
}

TEST(FlowSurvey, NamesALostCellWhereTheCoordinatesHaveNoMiddle) {
  const auto model = three_cells();
  const fields::ObjectsFlow flow(*model);
  for (std::size_t i : {std::size_t{1}, std::size_t{2}}) {
    model->cells[i]->center = MeshNode(1e308, 1e308, 0.0);
    model->cells[i]->U.h = nan;
  }
  EXPECT_EQ(flow.survey().not_finite, 2);
  EXPECT_EQ(flow.survey().a_cell_not_finite, 1);
}

}  // namespace
