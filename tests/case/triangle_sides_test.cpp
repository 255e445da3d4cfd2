#include "case/triangle_sides.hpp"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "support/TriangleGrid.hpp"
#include "support/polygon_mesh.hpp"

namespace {

using cases::Mesh;
using cases::Number;
using cases::TriangleSide;

std::string refusal_of(const Mesh& mesh) {
  try {
    cases::sides_of_triangles(mesh, "HLL2");
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "";
}

/// Two triangles over a unit square: the second one runs clockwise.
Mesh two_triangles() {
  Mesh mesh;
  mesh.x = {0.0, 1.0, 1.0, 0.0};
  mesh.y = {0.0, 0.0, 1.0, 1.0};
  mesh.z = {0.0, 0.0, 0.0, 0.0};
  mesh.add_cell(std::vector<Number>{0, 1, 2});
  mesh.add_cell(std::vector<Number>{0, 3, 2});
  const Number edges[][4] = {
      {0, -1, 0, 1}, {0, -1, 1, 2}, {1, 0, 0, 2}, {1, -1, 2, 3}, {1, -1, 3, 0}};
  for (const auto& [left, right, a, b] : edges) {
    if (right < 0) mesh.boundaries.push_back({mesh.n_edges(), edge_code::wall, 0.0, -1});
    mesh.left.push_back(left);
    mesh.right.push_back(right);
    mesh.node1.push_back(a);
    mesh.node2.push_back(b);
  }
  return mesh;
}

TEST(TriangleSides, RunCounterClockwiseFromTheFirstNode) {
  const Mesh mesh = two_triangles();
  EXPECT_EQ(cases::nodes_counter_clockwise(mesh, 0), (std::array<Number, 3>{0, 1, 2}));
  EXPECT_EQ(cases::nodes_counter_clockwise(mesh, 1), (std::array<Number, 3>{0, 2, 3}));
}

TEST(TriangleSides, KnowTheirEdgeAndWhatLiesAcross) {
  const auto sides = cases::sides_of_triangles(two_triangles(), "HLL2");
  EXPECT_EQ(sides[0][0].edge, 0);
  EXPECT_EQ(sides[0][1].edge, 1);
  EXPECT_EQ(sides[0][2].edge, 2);
  EXPECT_EQ(sides[0][0].neighbour, -1);
  EXPECT_EQ(sides[0][2].neighbour, 1);
  EXPECT_EQ(sides[0][2].neighbour_side, 0);
  EXPECT_EQ(sides[1][0].edge, 2);
  EXPECT_EQ(sides[1][0].neighbour, 0);
  EXPECT_EQ(sides[1][0].neighbour_side, 2);
  EXPECT_EQ(sides[1][1].edge, 3);
}

TEST(TriangleSides, TellAtWhichAnEdgeLies) {
  const auto sides = cases::sides_of_triangles(two_triangles(), "HLL2");
  EXPECT_EQ(cases::side_at_edge(sides[0], 1), 1);
  EXPECT_EQ(cases::side_at_edge(sides[0], 2), 2);
  EXPECT_EQ(cases::side_at_edge(sides[1], 2), 0);
}

TEST(TriangleSides, ABoundaryWithARightCellHasNoNeighbour) {
  Mesh mesh = two_triangles();
  mesh.boundaries.insert(mesh.boundaries.begin() + 2, {2, edge_code::wall, 0.0, -1});
  const auto sides = cases::sides_of_triangles(mesh, "HLL2");
  EXPECT_EQ(sides[1][0].edge, 2);
  EXPECT_EQ(sides[1][0].neighbour, -1);
  EXPECT_EQ(sides[0][2].edge, -1);
}

TEST(TriangleSides, RefusePolygons) {
  EXPECT_EQ(refusal_of(support::polygon_mesh(5)),
            "Error. The flux scheme HLL2 takes triangles alone, and cell 0 (counted from 0) has 5 "
            "nodes.");
}

TEST(TriangleSides, RefuseACellWithoutArea) {
  Mesh mesh = two_triangles();
  mesh.x[3] = 0.5;
  mesh.y[3] = 0.5;
  EXPECT_EQ(refusal_of(mesh),
            "Error. The flux scheme HLL2 cannot take cell 1 (counted from 0), which has no area.");
}

TEST(TriangleSides, RefuseAnEdgeThatIsNoSideOfItsCell) {
  Mesh mesh = two_triangles();
  mesh.node2[0] = 3;
  EXPECT_EQ(refusal_of(mesh),
            "Error. The flux scheme HLL2 cannot take edge 0 and cell 0 (counted from 0): the edge "
            "is no side of the cell.");
}

TEST(TriangleSides, RefuseTwoEdgesAtOneSide) {
  Mesh mesh = two_triangles();
  mesh.node1[1] = 0;
  mesh.node2[1] = 1;
  EXPECT_EQ(refusal_of(mesh),
            "Error. The flux scheme HLL2 cannot take edge 1 and cell 0 (counted from 0): edge 0 "
            "lies at the same side.");
}

}  // namespace
