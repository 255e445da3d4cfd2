#include "physics/cell_geometry.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace cell_geometry_test {

using physics::PlanPoint;

/// A right triangle with sides of `size` along the axes, its corner at (x, y).
struct RightTriangle {
  double x, y, size;

  PlanPoint operator()(int i) const {
    return {x + (i == 1 ? size : 0.0), y + (i == 2 ? size : 0.0)};
  }
  PlanPoint center() const { return {x + size / 3.0, y + size / 3.0}; }
  double area() const { return physics::cell_area(3, center(), *this); }
};

TEST(TriangleArea, IsTheSameEitherWayRound) {
  EXPECT_EQ(physics::triangle_area({0, 0}, {2, 0}, {0, 2}), 2.0);
  EXPECT_EQ(physics::triangle_area({0, 0}, {0, 2}, {2, 0}), 2.0);
}

TEST(CellArea, AgreesWithThatFromDifferencesNearTheOrigin) {
  const RightTriangle near{0.5, -0.25, 2.0};
  EXPECT_DOUBLE_EQ(near.area(), 2.0);
  EXPECT_DOUBLE_EQ(physics::cell_area_of_differences(3, near), 2.0);
}

TEST(CellArea, LosesDigitsFarFromTheOriginAndThatFromDifferencesDoesNot) {
  const RightTriangle far{262144.0, 4194304.0, 0.125};  // coordinates without rounding
  constexpr double exact = 0.125 * 0.125 / 2.0;
  EXPECT_EQ(physics::cell_area_of_differences(3, far), exact);
  EXPECT_GT(physics::area_loss(far.area(), exact), 1e-6);
}

TEST(CellArea, OfAHollowPolygonIsTheSameSumOfItsFanFromDifferences) {
  const std::vector<PlanPoint> hollow = {{0, 0}, {4, 0}, {1, 1}, {0, 4}};
  const auto node_at = [&](int i) { return hollow[static_cast<std::size_t>(i)]; };
  EXPECT_DOUBLE_EQ(physics::cell_area(4, {1.25, 1.25}, node_at), 6.0);
  EXPECT_DOUBLE_EQ(physics::cell_area_of_differences(4, node_at), 6.0);
}

TEST(SignedCellArea, IsThatOfThePolygonAndNegativeWhereItRunsClockwise) {
  const std::vector<PlanPoint> hollow = {{0, 0}, {4, 0}, {1, 1}, {0, 4}};
  const auto node_at = [&](int i) { return hollow[static_cast<std::size_t>(i)]; };
  const auto backwards = [&](int i) { return hollow[static_cast<std::size_t>(3 - i)]; };
  EXPECT_EQ(physics::twice_signed_cell_area(4, node_at), 8.0);
  EXPECT_EQ(physics::twice_signed_cell_area(4, backwards), -8.0);
}

TEST(AreaLoss, IsRelativeToTheAccurateAreaAndNothingWhereBothAreZero) {
  EXPECT_DOUBLE_EQ(physics::area_loss(1.5, 2.0), 0.25);
  EXPECT_DOUBLE_EQ(physics::area_loss(2.5, 2.0), 0.25);
  EXPECT_EQ(physics::area_loss(0.0, 0.0), 0.0);
}

}  // namespace cell_geometry_test
