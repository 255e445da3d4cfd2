#include "case/Mesh.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace {

/// A square of 2 m, cut in two triangles; its north-eastern corner is 3 m high.
cases::Mesh square() {
  cases::Mesh mesh;
  mesh.x = {0.0, 2.0, 2.0, 0.0};
  mesh.y = {0.0, 0.0, 2.0, 2.0};
  mesh.z = {0.0, 0.0, 3.0, 0.0};
  return mesh;
}

std::vector<cases::Number> nodes(const cases::Mesh& mesh, cases::Number cell) {
  const auto found = mesh.nodes_of(cell);
  return {found.begin(), found.end()};
}

}  // namespace

TEST(Mesh, NumbersTheNodesOfTriangles) {
  cases::Mesh mesh = square();
  mesh.add_cell(std::array{0, 1, 2});
  mesh.add_cell(std::array{0, 2, 3});
  EXPECT_EQ(mesh.n_cells(), 2);
  EXPECT_TRUE(mesh.first_node.empty());
  EXPECT_EQ(nodes(mesh, 1), (std::vector<cases::Number>{0, 2, 3}));
}

TEST(Mesh, HoldsCellsOfAnyNumberOfNodes) {
  cases::Mesh mesh = square();
  mesh.add_cell(std::array{0, 1, 2});
  mesh.add_cell(std::array{0, 1, 2, 3});
  mesh.add_cell(std::array{0, 2, 3});
  EXPECT_EQ(mesh.n_cells(), 3);
  EXPECT_EQ(nodes(mesh, 0), (std::vector<cases::Number>{0, 1, 2}));
  EXPECT_EQ(nodes(mesh, 1), (std::vector<cases::Number>{0, 1, 2, 3}));
  EXPECT_EQ(nodes(mesh, 2), (std::vector<cases::Number>{0, 2, 3}));
}

TEST(Mesh, AFirstCellMayHaveFourNodes) {
  cases::Mesh mesh = square();
  mesh.add_cell(std::array{0, 1, 2, 3});
  EXPECT_EQ(mesh.n_cells(), 1);
  EXPECT_EQ(nodes(mesh, 0).size(), 4U);
}

TEST(Mesh, KnowsTheGeometryOfItsCells) {
  cases::Mesh mesh = square();
  mesh.add_cell(std::array{0, 1, 2});
  const cases::CellGeometry cell = mesh.geometry_of(0);
  EXPECT_DOUBLE_EQ(cell.center.x, 4.0 / 3.0);
  EXPECT_DOUBLE_EQ(cell.center.y, 2.0 / 3.0);
  EXPECT_DOUBLE_EQ(cell.center.z, 1.0);
  EXPECT_DOUBLE_EQ(cell.area, 2.0);
  EXPECT_EQ(mesh.areas(), std::vector<double>{cell.area});
  EXPECT_DOUBLE_EQ(cell.perimeter, 4.0 + std::sqrt(8.0));
  EXPECT_EQ(cell.highest_node, 3.0);
  EXPECT_DOUBLE_EQ(mesh.accurate_area_of(0), 2.0);
}

TEST(Mesh, TheNormalOfAnEdgeIsToTheRightOfItsDirection) {
  cases::Mesh mesh = square();
  mesh.node1 = {0};
  mesh.node2 = {1};
  const physics::Edge edge = mesh.edge_of(0);
  EXPECT_EQ(edge.nx, 0.0);
  EXPECT_EQ(edge.ny, -1.0);
  EXPECT_EQ(edge.length, 2.0);
}

TEST(Mesh, FindsTheBoundaryOnAnEdge) {
  cases::Mesh mesh = square();
  mesh.boundaries = {{1, -5, 0.0, -1}, {4, -3, 0.5, -1}};
  EXPECT_EQ(mesh.boundary_on(0), nullptr);
  EXPECT_EQ(mesh.boundary_on(5), nullptr);
  ASSERT_NE(mesh.boundary_on(4), nullptr);
  EXPECT_EQ(mesh.boundary_on(4)->value, 0.5);
}
