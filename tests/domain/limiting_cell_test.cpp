#include "domain/limiting_cell.hpp"

#include <gtest/gtest.h>

#include <limits>

#include "fields/ObjectsFlow.hpp"
#include "support/RectangleMesh.hpp"
#include "support/RunGlobals.hpp"
#include "support/case_of.hpp"
#include "support/unit_wave.hpp"

namespace {

using support::k;

/// Four triangles of squares of 1 m, with a dry-depth threshold of 0.01 m.
class LimitingCell : public testing::Test {
 protected:
  void set_depths(double h0, double h1, double h2, double h3) {
    const double depths[] = {h0, h1, h2, h3};
    for (std::size_t i = 0; i < 4; ++i) model->cells[i]->U.set_values(depths[i], 0.0, 0.0);
    model->findH0();
    model->calculateCharLengthMin();
  }
  cases::Number limiting() const {
    return limiting_cell(fields::ObjectsFlow(*model), support::case_of(*model));
  }

  support::RunGlobals globals{0.01};
  std::unique_ptr<SWE> model = support::build_rectangle({2, 1, 2.0, 1.0});
};

TEST_F(LimitingCell, IsTheOneWithTheSmallestStep) {
  set_depths(k, 4.0 * k, 9.0 * k, k);
  EXPECT_EQ(limiting(), 2);
}

TEST_F(LimitingCell, IsOneThatIsNotFiniteFirstOfAll) {
  set_depths(k, 4.0 * k, 9.0 * k, k);
  model->cells[3]->U.qx = std::numeric_limits<double>::infinity();
  EXPECT_EQ(limiting(), 3);
  model->cells[1]->U.h = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(limiting(), 1);
}

TEST_F(LimitingCell, OfADryDomainIsTheSmallest) {
  // The node between the squares on the southern side moves east: cell 2 shrinks.
  set_depths(0.0, 0.0, 0.0, 0.0);
  cases::Case contents = support::case_of(*model);
  contents.mesh.x[1] = 1.5;
  EXPECT_EQ(limiting_cell(fields::ObjectsFlow(*model), contents), 2);
}

TEST_F(LimitingCell, IsTheSmallestWhereDryCellsSetTheStep) {
  set_depths(9.0 * k, k, 0.0, k);
  cases::Case contents = support::case_of(*model);
  EXPECT_EQ(limiting_cell(fields::ObjectsFlow(*model), contents), 0);
  model->h0 = 100.0 * k;  // deeper than anything now
  contents.mesh.x[1] = 1.5;
  EXPECT_EQ(limiting_cell(fields::ObjectsFlow(*model), contents), 2);
}

TEST(EmptyModel, HasNoLimitingCell) {
  SWE model;
  EXPECT_EQ(limiting_cell(fields::ObjectsFlow(model), cases::Case()), -1);
}

}  // namespace
