#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <memory>
#include <random>

#include "support/Case.hpp"
#include "support/QuietRun.hpp"

namespace {

class PointLocation : public testing::Test {
 protected:
  PointLocation() { c.x0 = 100.0; }
  ~PointLocation() override { std::filesystem::current_path(start_); }

  /// Sets the case up; paths in its data file are relative to its folder.
  void build() {
    c.write(folder_);
    std::filesystem::current_path(folder_.path());
    domain_ = std::make_unique<Domain>("data.json", run_.settings);
  }
  /// Index of the cell that contains a point; -1 if there is none.
  int cell_at(double x, double y) const { return domain_->CellWithPoint(x, y); }
  /// The cell of the mesh under a point off its lines, from the layout of the mesh.
  int expected_cell(double x, double y) const {
    const double u = (x - c.x0) / c.size;
    const double v = (y - c.y0) / c.size;
    const int i = static_cast<int>(std::floor(u));
    const int j = static_cast<int>(std::floor(v));
    return v - j < u - i ? c.lower(i, j) : c.upper(i, j);
  }
  void expect_random_points_in_their_cells() const {
    std::mt19937 random(5);
    std::uniform_real_distribution<double> along_x(c.x0, c.x0 + c.nx * c.size);
    std::uniform_real_distribution<double> along_y(c.y0, c.y0 + c.ny * c.size);
    for (int k = 0; k < 2000; ++k) {
      const double x = along_x(random);
      const double y = along_y(random);
      ASSERT_EQ(cell_at(x, y), expected_cell(x, y)) << x << ' ' << y;
    }
  }

  support::Case c;

 private:
  support::TemporaryFolder folder_;
  std::filesystem::path start_ = std::filesystem::current_path();
  support::QuietRun run_;
  std::unique_ptr<Domain> domain_;
};

TEST_F(PointLocation, FindsPointsInCellsThatRunCounterClockwise) {
  build();
  expect_random_points_in_their_cells();
}

TEST_F(PointLocation, FindsPointsInCellsThatRunClockwise) {
  c.clockwise = true;
  build();
  expect_random_points_in_their_cells();
}

TEST_F(PointLocation, FindsNoCellOutsideTheMesh) {
  for (const bool clockwise : {false, true}) {
    c.clockwise = clockwise;
    build();
    EXPECT_EQ(cell_at(99.999, 1.0), -1);
    EXPECT_EQ(cell_at(104.001, 1.0), -1);
    EXPECT_EQ(cell_at(102.0, -0.001), -1);
    EXPECT_EQ(cell_at(102.0, 3.001), -1);
    EXPECT_EQ(cell_at(-102.0, 1.5), -1);
    EXPECT_EQ(cell_at(1e6, 1e6), -1);
  }
}

// Coordinates in thirds of a metre, so that centres and sides are exact.
class ExactPointLocation : public PointLocation {
 protected:
  ExactPointLocation() {
    c.x0 = 0.0;
    c.size = 3.0;
  }
};

TEST_F(ExactPointLocation, DoesNotFindACellThatRunsCounterClockwiseAtItsCentre) {
  build();
  EXPECT_EQ(cell_at(5.0, 4.0), -1);  // of the lower cell of the second square of the second row
  EXPECT_EQ(cell_at(5.1, 4.0), c.lower(1, 1));
}

TEST_F(ExactPointLocation, FindsACellThatRunsClockwiseAtItsCentre) {
  c.clockwise = true;
  build();
  EXPECT_EQ(cell_at(5.0, 4.0), c.lower(1, 1));
  EXPECT_EQ(cell_at(4.0, 5.0), c.upper(1, 1));
}

TEST_F(ExactPointLocation, FindsNoCellOnASideBetweenCellsThatRunCounterClockwise) {
  build();
  EXPECT_EQ(cell_at(3.0, 1.0), -1);
  EXPECT_EQ(cell_at(1.5, 1.5), -1);
  EXPECT_EQ(cell_at(0.0, 1.0), -1);
}

TEST_F(ExactPointLocation, GivesASideBetweenCellsThatRunClockwiseToTheFirstOfThem) {
  c.clockwise = true;
  build();
  EXPECT_EQ(cell_at(1.5, 1.5), c.lower(0, 0));  // shared with the upper cell of the square
  EXPECT_EQ(cell_at(3.0, 1.0), c.lower(0, 0));  // shared with the upper cell of the next square
  EXPECT_EQ(cell_at(1.0, 3.0), c.upper(0, 0));  // shared with the lower cell of the next row
  EXPECT_EQ(cell_at(0.0, 1.0), c.upper(0, 0));  // on the boundary
}

TEST_F(ExactPointLocation, GivesAVertexToTheFirstCellThatRunsClockwiseAroundIt) {
  c.clockwise = true;
  build();
  EXPECT_EQ(cell_at(3.0, 3.0), c.lower(0, 0));
  EXPECT_EQ(cell_at(0.0, 0.0), c.lower(0, 0));
  EXPECT_EQ(cell_at(12.0, 9.0), c.lower(3, 2));
}

TEST_F(ExactPointLocation, FindsPointsInQuadrilaterals) {
  c.files["nodes.txt"] = "6\n0 0 0\n3 0 0\n6 0 0\n0 3 0\n3 3 0\n6 3 0\n";
  c.files["cells.txt"] = "2\n4 0 1 4 3\n4 1 4 5 2\n";  // the second runs clockwise
  c.files["edges.txt"] =
      "7\n0 1 1 4 -1\n0 -1 0 1 -5\n0 -1 4 3 -5\n0 -1 3 0 -5\n1 -1 1 2 -5\n1 -1 2 5 -5\n"
      "1 -1 5 4 -5\n";
  testing::internal::CaptureStderr();  // warnings: the scheme is written for triangles
  build();
  testing::internal::GetCapturedStderr();
  EXPECT_EQ(cell_at(1.0, 0.5), 0);
  EXPECT_EQ(cell_at(2.0, 2.5), 0);
  EXPECT_EQ(cell_at(2.75, 1.0), 0);
  EXPECT_EQ(cell_at(1.5, 1.5), -1);
  EXPECT_EQ(cell_at(4.5, 1.5), 1);
  EXPECT_EQ(cell_at(3.0, 1.0), 1);
  EXPECT_EQ(cell_at(5.75, 2.0), 1);
}

}  // namespace
