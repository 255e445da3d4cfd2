#include "case/hll_cell.hpp"

#include <gtest/gtest.h>

#include "support/TriangleGrid.hpp"

namespace {

using cases::HllCellOfCase;
using cases::Number;
using support::TriangleGrid;

std::vector<HllCellOfCase> cells_of(const cases::Case& contents) {
  const auto sides = cases::sides_of_triangles(contents.mesh, "HLL2");
  std::vector<HllCellOfCase> cells;
  for (Number i = 0; i < contents.mesh.n_cells(); ++i) {
    cells.push_back(cases::hll_cell_of(contents, sides, i));
  }
  return cells;
}

TriangleGrid tilted(bool by_file) {
  TriangleGrid grid;
  grid.seed = 1;
  grid.bed = [](double x, double y) { return 0.25 * x - 0.5 * y; };
  grid.bed_by_file = by_file;
  return grid;
}

bool is_inside(const physics::SpacePoint& p) {
  return p.x > 2.0 && p.x < 6.0 && p.y > 2.0 && p.y < 6.0;
}

TEST(HllCellOfCase, HasTheSlopeOfItsNodes) {
  for (const HllCellOfCase& cell : cells_of(tilted(false).make())) {
    EXPECT_NEAR(cell.cell.bed_slope.x, 0.25, 1e-12);
    EXPECT_NEAR(cell.cell.bed_slope.y, -0.5, 1e-12);
  }
}

TEST(HllCellOfCase, HasASlopeOfTheBedFileThatStaysBetweenTheNeighbours) {
  const cases::Case contents = tilted(true).make();
  const std::vector<HllCellOfCase> cells = cells_of(contents);
  const auto sides = cases::sides_of_triangles(contents.mesh, "HLL2");
  int full = 0, inside = 0;
  for (Number i = 0; i < contents.mesh.n_cells(); ++i) {
    const HllCellOfCase& cell = cells[cases::at(i)];
    EXPECT_EQ(cell.bed, contents.fields.bed[cases::at(i)]);
    const physics::EdgeValues m = physics::at_midpoints(cell.cell.shape, cell.cell.bed_slope);
    double most = 0.0;
    for (const cases::TriangleSide& side : sides[cases::at(i)]) {
      if (side.neighbour >= 0) {
        most = std::max(most, contents.fields.bed[cases::at(side.neighbour)] - cell.bed);
      }
    }
    EXPECT_LE(physics::largest_of(m), most + 1e-12);
    if (!is_inside(contents.mesh.center_of(i))) continue;
    ++inside;
    full += std::fabs(cell.cell.bed_slope.x - 0.25) < 1e-6;
  }
  EXPECT_GT(full, inside / 3);
}

TEST(HllCellOfCase, IsAsLongAsTheShortestOfItsNeighbours) {
  cases::Case contents = TriangleGrid{}.make();
  const double regular = contents.mesh.geometry_of(0).char_length();
  // The node between the squares 3 and 4 of row 4 moves: its cells get shorter and longer.
  contents.mesh.x[4 * 9 + 4] += 0.4;
  const auto sides = cases::sides_of_triangles(contents.mesh, "HLL2");
  int shortened = 0;
  for (Number i = 0; i < contents.mesh.n_cells(); ++i) {
    double shortest = contents.mesh.geometry_of(i).char_length();
    for (const cases::TriangleSide& side : sides[cases::at(i)]) {
      if (side.neighbour < 0) continue;
      shortest = std::min(shortest, contents.mesh.geometry_of(side.neighbour).char_length());
    }
    EXPECT_EQ(cases::hll_cell_of(contents, sides, i).reciprocal_length, 1.0 / shortest);
    shortened += shortest < 0.99 * regular;
  }
  EXPECT_GT(shortened, 4);
}

TEST(HllCellOfCase, KnowsTheResistanceOfItsBed) {
  cases::Case contents = TriangleGrid{}.make();
  EXPECT_EQ(cells_of(contents)[0].resistance, 0.0);
  contents.fields.manning.assign(cases::at(contents.mesh.n_cells()), 0.03);
  EXPECT_EQ(cells_of(contents)[0].resistance, 9.81 * 0.03 * 0.03);
}

TEST(HllCellOfCase, WallsAndImposedDischargesCountAsAMirrorAndOpenBoundariesNotAtAll) {
  TriangleGrid grid;
  const float mirrored = cells_of(grid.make())[0].weights.y0;
  EXPECT_NE(mirrored, 0.0f);
  grid.south = {edge_code::discharge, 0.5};
  EXPECT_EQ(cells_of(grid.make())[0].weights.y0, mirrored);
  grid.south = {edge_code::transmissive};
  const physics::SlopeWeights open = cells_of(grid.make())[0].weights;
  EXPECT_EQ(open.x0, 0.0f);
  EXPECT_EQ(open.y0, 0.0f);
}

TEST(EdgeAtSide, LeadsOutOfTheCellWhicheverWayTheFileHasIt) {
  const cases::Case contents = tilted(false).make();
  for (Number i = 0; i < contents.mesh.n_cells(); ++i) {
    const HllCellOfCase cell = cells_of(contents)[cases::at(i)];
    const physics::Edge edge = cases::edge_at_side(contents.mesh, i, 0);
    EXPECT_GT(edge.nx * cell.cell.shape.r0.x + edge.ny * cell.cell.shape.r0.y, 0.0);
    const physics::PlanVector n = physics::outward_normals(cell.cell.shape).k0;
    EXPECT_NEAR(edge.length * edge.nx, n.x, 1e-12);
    EXPECT_NEAR(edge.length * edge.ny, n.y, 1e-12);
  }
}

}  // namespace
