// Geometry of a cell, and the order of its interfaces.
#include <gtest/gtest.h>

#include "interfaces/GenericInterface.hpp"
#include "model/ComputationalCell.hpp"
#include "support/RunGlobals.hpp"

namespace {

std::vector<const MeshNode*> pointers_to(const std::vector<MeshNode>& nodes) {
  std::vector<const MeshNode*> pointers;
  for (const MeshNode& node : nodes) pointers.push_back(&node);
  return pointers;
}

class SquareTest : public testing::TestWithParam<bool> {};

TEST_P(SquareTest, HasTheSameGeometryInEitherOrientation) {
  std::vector<MeshNode> nodes{{0.0, 0.0, 1.0}, {1.0, 0.0, 2.0}, {1.0, 1.0, 4.0}, {0.0, 1.0, 9.0}};
  if (GetParam()) std::swap(nodes[1], nodes[3]);
  const ComputationalCell square(pointers_to(nodes));
  EXPECT_EQ(square.center.x, 0.5);
  EXPECT_EQ(square.center.y, 0.5);
  EXPECT_EQ(square.center.z, 4.0);
  EXPECT_EQ(square.area, 1.0);
  EXPECT_EQ(square.perimeter, 4.0);
  EXPECT_EQ(square.char_length, 0.5);
  EXPECT_EQ(square.bed_rock_level, 4.0);
  EXPECT_EQ(square.bed_level, 4.0);
  EXPECT_EQ(square.max_node_level, 9.0);
  EXPECT_EQ(square.min_node_level, 1.0);
  EXPECT_EQ(square.number_of_nodes(), 4);
}

INSTANTIATE_TEST_SUITE_P(Orientations, SquareTest, testing::Bool());

class TriangleTest : public testing::Test {
 protected:
  std::vector<MeshNode> nodes{{0.0, 0.0, 7.0}, {2.0, 0.0, 7.0}, {0.0, 2.0, 7.0}};
  ComputationalCell triangle{5, pointers_to(nodes)};
};

TEST_F(TriangleTest, HasTheMeanOfItsVerticesAsItsCentre) {
  EXPECT_DOUBLE_EQ(triangle.center.x, 2.0 / 3.0);
  EXPECT_DOUBLE_EQ(triangle.center.y, 2.0 / 3.0);
  EXPECT_DOUBLE_EQ(triangle.area, 2.0);
  EXPECT_DOUBLE_EQ(triangle.perimeter, 4.0 + 2.0 * std::sqrt(2.0));
  EXPECT_DOUBLE_EQ(triangle.char_length, 4.0 / (4.0 + 2.0 * std::sqrt(2.0)));
}

TEST_F(TriangleTest, OverALevelBedHasOneLevel) {
  EXPECT_EQ(triangle.bed_rock_level, 7.0);
  EXPECT_EQ(triangle.max_node_level, 7.0);
  EXPECT_EQ(triangle.min_node_level, 7.0);
}

TEST_F(TriangleTest, NumbersItsVerticesInACircle) {
  EXPECT_EQ(triangle.next_node_index(0), 1);
  EXPECT_EQ(triangle.next_node_index(2), 0);
  EXPECT_EQ(triangle.previous_node_index(0), 2);
  EXPECT_EQ(triangle.previous_node_index(2), 1);
  EXPECT_EQ(triangle.next_node(2), &nodes[0]);
  EXPECT_EQ(triangle.previous_node(0), &nodes[2]);
  EXPECT_EQ(triangle.get_node(1), &nodes[1]);
}

TEST_F(TriangleTest, StartsEmpty) {
  EXPECT_EQ(triangle.id, 5);
  EXPECT_EQ(ComputationalCell(pointers_to(nodes)).id, 0);
  EXPECT_EQ(triangle.U.h, 0.0);
  EXPECT_EQ(triangle.S.h, 0.0);
  EXPECT_EQ(triangle.max_values.h, 0.0);
  EXPECT_EQ(triangle.free_surface_level, 0.0);
  EXPECT_EQ(triangle.friction, 0.0);
  EXPECT_EQ(triangle.dqs_dh, 0.0);
  EXPECT_TRUE(triangle.fluxes.empty());
  EXPECT_TRUE(triangle.interfaces.empty());
  EXPECT_TRUE(triangle.source_terms.empty());
}

TEST_F(TriangleTest, ItsBaseUpdateChangesNothing) {
  triangle.U.h = 3.0;
  triangle.S.h = 1.0;
  triangle.Update();
  EXPECT_EQ(triangle.U.h, 3.0);
  EXPECT_EQ(triangle.S.h, 1.0);
}

TEST(ParamCell, StartsWithTheRun) {
  const support::RunGlobals globals(0.01);
  Globals_Params::tStart = 120.0;
  const std::vector<MeshNode> nodes{{0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}};
  const ParamCell param = ComputationalCell(pointers_to(nodes)).param;
  EXPECT_EQ(param.last_update_time, 120.0);
  EXPECT_EQ(param.hyetogram_index, -1);
  EXPECT_EQ(param.infiltrated_depth, 0.0);
  EXPECT_EQ(param.infiltration_step, 0.0);
  EXPECT_EQ(param.rain_dt, 1e20);
}

TEST(CellArea, OfAHollowPolygonIsTheSumOfItsFan) {
  // An area of 4 with an inner corner at (1, 1), before which the mean of the vertices lies.
  const std::vector<MeshNode> dart{
      {0.0, 4.0, 0.0}, {1.0, 1.0, 0.0}, {4.0, 0.0, 0.0}, {0.0, 0.0, 0.0}};
  const ComputationalCell cell(pointers_to(dart));
  EXPECT_DOUBLE_EQ(cell.center.x, 1.25);
  // The fan has two triangles of 1/2 at the inner corner and two of 5/2 along the axes.
  EXPECT_DOUBLE_EQ(cell.area, 6.0);
}

/// Two triangles on either side of an edge, and a boundary edge of each.
class CellInterfacesTest : public testing::Test {
 protected:
  CellInterfacesTest() {
    shared.tag = 4;
    of_left.tag = 2;
    of_right.tag = 9;
    for (GenericInterface* interface : {&shared, &of_left}) left.add_interface(interface);
    for (GenericInterface* interface : {&of_right, &shared}) right.add_interface(interface);
  }

  std::vector<MeshNode> nodes{{0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {1.0, 1.0, 0.0}, {0.0, 1.0, 0.0}};
  ComputationalCell left{10, {&nodes[0], &nodes[1], &nodes[3]}};
  ComputationalCell right{11, {&nodes[1], &nodes[2], &nodes[3]}};
  GenericInterface shared{&left, &right, nodes[1], nodes[3]};
  GenericInterface of_left{&left, nullptr, nodes[0], nodes[1]};
  GenericInterface of_right{&right, nullptr, nodes[1], nodes[2]};
};

TEST_F(CellInterfacesTest, EveryInterfaceComesWithAnEmptySlot) {
  ASSERT_EQ(left.fluxes.size(), 2u);
  ASSERT_EQ(left.interfaces.size(), 2u);
  EXPECT_EQ(left.interfaces[0], &shared);
  EXPECT_EQ(left.fluxes[1].h, 0.0);
  EXPECT_EQ(left.fluxes[1].qy, 0.0);
}

TEST_F(CellInterfacesTest, AreSortedByEdge) {
  left.sort_interfaces_by_tag();
  right.sort_interfaces_by_tag();
  EXPECT_EQ(left.interfaces[0], &of_left);
  EXPECT_EQ(left.interfaces[1], &shared);
  EXPECT_EQ(right.interfaces[0], &shared);
  EXPECT_EQ(right.interfaces[1], &of_right);
}

TEST_F(CellInterfacesTest, KnowTheirPlaceInBothCells) {
  for (ComputationalCell* cell : {&left, &right}) {
    cell->sort_interfaces_by_tag();
    cell->set_local_index_to_edges();
  }
  EXPECT_EQ(shared.local_index_left, 1u);
  EXPECT_EQ(shared.local_index_right, 0u);
  EXPECT_EQ(of_left.local_index_left, 0u);
  EXPECT_EQ(of_right.local_index_left, 1u);
}

}  // namespace
