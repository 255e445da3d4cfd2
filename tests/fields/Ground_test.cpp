#include "fields/Ground.hpp"

#include <gtest/gtest.h>

#include "support/TriangleGrid.hpp"
#include "utils/bytes.hpp"

namespace {

using cases::at;
using cases::Number;
using fields::GroundCell;
using fields::GroundEdge;

/// Squares cut in two: 0 and 1 in the first one, 2 and 3 in the next, with walls around.
class GroundTest : public testing::Test {
 protected:
  cases::Case contents = support::TriangleGrid{.nx = 3, .ny = 2}.make();
  fields::WholeGround ground{contents};
};

std::vector<Number> numbers_of(const auto& items) {
  std::vector<Number> numbers;
  for (const auto& item : items) numbers.push_back(item.number);
  return numbers;
}

TEST_F(GroundTest, CountsTheMesh) {
  EXPECT_EQ(ground.counts().nodes, 12);
  EXPECT_EQ(ground.counts().cells, 12);
  EXPECT_EQ(ground.counts().edges, contents.mesh.n_edges());
}

TEST_F(GroundTest, TellsEdgesInTheOrderAskedFor) {
  const Number asked[] = {5, 2, 5};
  const std::vector<GroundEdge> edges = ground.edges(asked);
  EXPECT_EQ(numbers_of(edges), (std::vector<Number>{5, 2, 5}));
  for (const GroundEdge& edge : edges) {
    EXPECT_EQ(edge.left, contents.mesh.left[at(edge.number)]);
    EXPECT_EQ(edge.right, contents.mesh.right[at(edge.number)]);
    EXPECT_EQ(edge.condition.has_value(), contents.mesh.boundary_on(edge.number) != nullptr);
    const physics::Edge expected = contents.mesh.edge_of(edge.number);
    EXPECT_EQ(edge.geometry().nx, expected.nx);
    EXPECT_EQ(edge.geometry().ny, expected.ny);
    EXPECT_EQ(edge.geometry().length, expected.length);
  }
}

TEST_F(GroundTest, FindsTheCellsOfPoints) {
  const physics::PlanPoint points[] = {{0.9, 0.1}, {-1.0, 0.5}, {0.1, 0.9}};
  EXPECT_EQ(ground.cells_at(points), (std::vector<Number>{0, -1, 1}));
}

TEST_F(GroundTest, SurroundsCellsWithTheirEdgesAndTheCellsAcrossThese) {
  contents.fields.manning.assign(12, 0.0);
  contents.fields.manning[1] = 0.03;
  const Number asked[] = {0};
  const fields::Surroundings around = ground.around(asked);
  std::vector<Number> expected;
  for (Number edge = 0; edge < contents.mesh.n_edges(); ++edge) {
    if (contents.mesh.left[at(edge)] == 0 || contents.mesh.right[at(edge)] == 0) {
      expected.push_back(edge);
    }
  }
  EXPECT_EQ(numbers_of(around.edges), expected);
  EXPECT_EQ(expected.size(), 3U);
  ASSERT_EQ(numbers_of(around.cells), (std::vector<Number>{0, 1, 2}));
  const GroundCell& cell = around.cell(1);
  EXPECT_EQ(cell.number, 1);
  EXPECT_EQ(cell.manning, 0.03);
  EXPECT_FALSE(cell.bed.has_value());
  for (std::size_t k = 0; k < 3; ++k) {
    const auto node = at(contents.mesh.nodes_of(1)[k]);
    EXPECT_EQ(cell.x[k], contents.mesh.x[node]);
    EXPECT_EQ(cell.y[k], contents.mesh.y[node]);
    EXPECT_EQ(cell.z[k], contents.mesh.z[node]);
  }
}

TEST_F(GroundTest, UnitesWhatPartsTell) {
  const Number first[] = {0}, second[] = {1}, both[] = {0, 1};
  fields::Surroundings around = ground.around(second);
  around.add(ground.around(first));
  const fields::Surroundings expected = ground.around(both);
  utils::Bytes bytes, expected_bytes;
  utils::put_into(bytes, around);
  utils::put_into(expected_bytes, expected);
  EXPECT_EQ(bytes, expected_bytes);
}

}  // namespace
