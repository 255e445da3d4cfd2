// Squares over a mesh that ranks have in parts.
#include "ranks/Squares.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>

#include "case/PartCutter.hpp"
#include "model/SWE.hpp"
#include "ranks/cut_along_curve.hpp"
#include "ranks/on_ranks.hpp"
#include "ranks/values.hpp"
#include "support/RectangleMesh.hpp"
#include "support/RunGlobals.hpp"
#include "support/case_of.hpp"

namespace {

cases::Case rectangle(int across, int up) {
  const support::RunGlobals globals(1e-3, 1.0, 1.0);
  const auto model = support::build_rectangle<SWE>({across, up, 1.0 * across, 1.0 * up});
  support::fill(*model, [](double, double) { return 1.0; });
  return support::case_of(*model);
}

}  // namespace

TEST(Squares, HoldThePointsOfTheirExtent) {
  const ranks::Squares squares({12.0, 14.0, 16.0}, {-3.0, -1.0});
  EXPECT_EQ(squares.count(), 12);
  EXPECT_EQ(squares.at_point(10.0, -5.0), 0);
  EXPECT_EQ(squares.at_point(11.9, -3.1), 0);
  EXPECT_EQ(squares.at_point(12.1, -5.0), 1);
  EXPECT_EQ(squares.at_point(10.0, -2.9), 4);
  EXPECT_EQ(squares.at_point(18.0, 1.0), 11);  // the last corner belongs to the last square
}

TEST(Squares, HaveTheirCentersBetweenTheirLines) {
  const ranks::Squares squares({12.0, 14.0, 18.0}, {-3.0});
  const auto expect_center = [&](int square, double x, double y) {
    EXPECT_DOUBLE_EQ(squares.center(square).x, x) << square;
    EXPECT_DOUBLE_EQ(squares.center(square).y, y) << square;
  };
  expect_center(0, 11.0, -3.5);
  expect_center(1, 13.0, -3.5);
  expect_center(6, 16.0, -2.5);
  expect_center(7, 20.0, -2.5);
}

TEST(Squares, FollowEachOtherAlongTheirCurve) {
  const std::vector<double> lines = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
  const ranks::Squares squares(lines, lines);
  const std::vector<int> order = squares.along_curve();
  std::vector<int> sorted = order, all(256);
  std::sort(sorted.begin(), sorted.end());
  std::iota(all.begin(), all.end(), 0);
  EXPECT_EQ(sorted, all);
  for (std::size_t k = 1; k < order.size(); ++k) {
    const int columns = std::abs(order[k] % 16 - order[k - 1] % 16);
    const int rows = std::abs(order[k] / 16 - order[k - 1] / 16);
    EXPECT_EQ(columns + rows, 1) << k;
  }
}

TEST(Squares, OfAMeshAreTheSameOnAllRanksAndHoldSeveralCells) {
  const cases::Case contents = rectangle(60, 30);
  for (const int count : {1, 3, 4}) {
    const std::vector<ranks::Cells> cells = ranks::cut_along_curve(contents.mesh, count);
    test_ranks::on_ranks(count, [&](ranks::Group& group) {
      cases::PartCutter cutter(contents);
      const cases::Part part = cutter.part_of(cells[cases::at(group.rank())], 1);
      const ranks::Squares squares = ranks::squares_over(group, part);
      const double cells_of_square = 1.0 * contents.mesh.n_cells() / squares.count();
      EXPECT_GT(cells_of_square, 2.5);
      EXPECT_LT(cells_of_square, count > 1 ? 5.0 : 8.0);
      const std::vector<int> of_cells = ranks::squares_of(squares, part);
      ASSERT_EQ(of_cells.size(), part.cell_number.size());
      std::vector<int> counts(cases::at(squares.count()), 0);
      for (cases::Number k = 0; k < part.owned; ++k) ++counts[cases::at(of_cells[cases::at(k)])];
      ranks::add_up_on_first(group, counts);
      if (group.rank() != 0) return;
      std::vector<int> expected(counts.size(), 0);
      for (cases::Number cell = 0; cell < contents.mesh.n_cells(); ++cell) {
        const physics::SpacePoint center = contents.mesh.center_of(cell);
        ++expected[cases::at(squares.at_point(center.x, center.y))];
      }
      EXPECT_EQ(counts, expected);
    });
  }
}

TEST(Squares, AreNarrowWhereAMeshIsFine) {
  cases::Case contents = rectangle(60, 60);
  for (double& x : contents.mesh.x) x = 60.0 * std::pow(x / 60.0, 4.0);
  for (double& y : contents.mesh.y) y = 60.0 * std::pow(y / 60.0, 4.0);
  cases::PartCutter cutter(contents);
  const std::vector<ranks::Cells> all = ranks::cut_along_curve(contents.mesh, 1);
  const cases::Part part = cutter.part_of(all.front(), 1);
  test_ranks::on_ranks(1, [&](ranks::Group& group) {
    const ranks::Squares squares = ranks::squares_over(group, part);
    EXPECT_GT(squares.count(), 300);
    std::vector<int> counts(cases::at(squares.count()), 0);
    for (const int square : ranks::squares_of(squares, part)) ++counts[cases::at(square)];
    // Of 12 in the mean; 2,450 lie in a square of a 30th of the extent's width.
    EXPECT_LT(*std::max_element(counts.begin(), counts.end()), 60);
  });
}
