#include "case/PartCutter.hpp"

#include <gtest/gtest.h>

#include <numeric>

#include "support/TemporaryFolder.hpp"
#include "support/basin.hpp"
#include "support/strip_mesh.hpp"
#include "utils/bytes.hpp"

namespace {

using cases::at;
using cases::Number;
using Numbers = std::vector<Number>;

cases::Case strip_case(int n) {
  cases::Case contents;
  contents.mesh = support::strip_mesh(n);
  for (int i = 0; i < n; ++i) {
    contents.fields.level.push_back(1.0 + 0.1 * i);
    contents.fields.qx.push_back(0.5 * i);
    contents.fields.qy.push_back(0.0);
  }
  return contents;
}

cases::Part part_of(const cases::Case& contents, const Numbers& own, int rings = 1) {
  return cases::PartCutter(contents).part_of(own, rings);
}

/// Cells of a part, by their numbers in the whole case.
Numbers ghosts_of(const cases::Part& part) {
  return {part.cell_number.begin() + part.owned, part.cell_number.end()};
}
Numbers border_of(const cases::Part& part) {
  Numbers border;
  for (const Number cell : part.border) border.push_back(part.cell_number[at(cell)]);
  return border;
}

utils::Bytes bytes_of(const auto& value) {
  utils::Bytes bytes;
  utils::put_into(bytes, value);
  return bytes;
}

}  // namespace

TEST(PartCutter, GivesTheNeighboursOfOwnCellsAsGhosts) {
  const cases::Part part = part_of(strip_case(10), {3, 4, 5, 9});
  EXPECT_EQ(part.owned, 4);
  EXPECT_EQ(part.cell_number, (Numbers{3, 4, 5, 9, 2, 6, 8}));
  EXPECT_EQ(part.ghosts(), 3);
  EXPECT_EQ(border_of(part), (Numbers{3, 5, 9}));
}

TEST(PartCutter, GivesTheNeighboursOfTheseInTheSecondRing) {
  const cases::Part part = part_of(strip_case(10), {3, 4, 5, 6, 7}, 2);
  EXPECT_EQ(ghosts_of(part), (Numbers{1, 2, 8, 9}));
  EXPECT_EQ(border_of(part), (Numbers{3, 4, 6, 7}));
}

TEST(PartCutter, GivesTheCellBehindABoundaryBetweenTwoCells) {
  cases::Case contents = strip_case(4);
  cases::Mesh& mesh = contents.mesh;
  const Number between_1_and_2 = 8;
  ASSERT_EQ(mesh.left[between_1_and_2], 1);
  ASSERT_EQ(mesh.right[between_1_and_2], 2);
  mesh.boundaries.push_back({between_1_and_2, edge_code::wall, 0.0, -1});
  std::sort(mesh.boundaries.begin(), mesh.boundaries.end(),
            [](const auto& a, const auto& b) { return a.edge < b.edge; });
  const cases::Part part = part_of(contents, {2, 3});
  EXPECT_EQ(ghosts_of(part), Numbers{1});
  EXPECT_EQ(part.edge_number.front(), 3);  // the walls of cell 1
  const auto edge = std::find(part.edge_number.begin(), part.edge_number.end(), between_1_and_2);
  ASSERT_NE(edge, part.edge_number.end());
  EXPECT_NE(part.contents.mesh.boundary_on(static_cast<Number>(edge - part.edge_number.begin())),
            nullptr);
}

TEST(PartCutter, NumbersEdgesAndBoundariesAsTheFilesDo) {
  const cases::Case whole = strip_case(10);
  const cases::Part part = part_of(whole, {3, 4});
  // Two walls and the edge to the west of every cell, without those to the cells beyond.
  EXPECT_EQ(part.edge_number, (Numbers{6, 7, 9, 10, 11, 12, 13, 14, 15, 16, 17}));
  ASSERT_EQ(part.boundary_number.size(), 8U);
  const cases::Mesh& mesh = part.contents.mesh;
  for (std::size_t b = 0; b < part.boundary_number.size(); ++b) {
    const cases::Boundary& of_whole = whole.mesh.boundaries[at(part.boundary_number[b])];
    EXPECT_EQ(part.edge_number[at(mesh.boundaries[b].edge)], of_whole.edge);
    EXPECT_EQ(mesh.boundaries[b].code, of_whole.code);
  }
}

/// A basin of triangles with everything, and some cells in its middle.
class PartOfBasin : public testing::TestWithParam<bool> {
 protected:
  const support::TemporaryFolder folder_;
  const cases::Case whole_ = support::basin({.sediments = GetParam()}, folder_);

  Numbers cells_in_the_middle() const {
    Numbers cells;
    for (Number cell = 0; cell < whole_.mesh.n_cells(); ++cell) {
      const physics::SpacePoint center = whole_.mesh.center_of(cell);
      if (center.x > 5.0 && center.y > 3.0) cells.push_back(cell);
    }
    return cells;
  }
};

TEST_P(PartOfBasin, HasTheNumbersOfTheWholeInItsOwnOrder) {
  const cases::Part part = part_of(whole_, cells_in_the_middle());
  const cases::Mesh& mesh = part.contents.mesh;
  ASSERT_EQ(at(mesh.n_cells()), part.cell_number.size());
  ASSERT_EQ(at(mesh.n_edges()), part.edge_number.size());
  EXPECT_LT(mesh.n_nodes(), whole_.mesh.n_nodes());
  for (Number cell = 0; cell < mesh.n_cells(); ++cell) {
    const Number number = part.cell_number[at(cell)];
    const auto nodes = mesh.nodes_of(cell), of_whole = whole_.mesh.nodes_of(number);
    ASSERT_EQ(nodes.size(), of_whole.size());
    for (std::size_t k = 0; k < nodes.size(); ++k) {
      EXPECT_EQ(mesh.x[at(nodes[k])], whole_.mesh.x[at(of_whole[k])]);
      EXPECT_EQ(mesh.y[at(nodes[k])], whole_.mesh.y[at(of_whole[k])]);
      EXPECT_EQ(mesh.z[at(nodes[k])], whole_.mesh.z[at(of_whole[k])]);
    }
    EXPECT_EQ(part.contents.fields.level[at(cell)], whole_.fields.level[at(number)]);
    EXPECT_EQ(part.contents.fields.manning[at(cell)], whole_.fields.manning[at(number)]);
    EXPECT_EQ(part.contents.fields.rain[at(cell)], whole_.fields.rain[at(number)]);
    EXPECT_EQ(part.contents.fields.soil[at(cell)], whole_.fields.soil[at(number)]);
  }
  for (Number edge = 0; edge < mesh.n_edges(); ++edge) {
    const Number number = part.edge_number[at(edge)];
    EXPECT_EQ(part.cell_number[at(mesh.left[at(edge)])], whole_.mesh.left[at(number)]);
    const Number right = mesh.right[at(edge)];
    EXPECT_EQ(right < 0 ? right : part.cell_number[at(right)], whole_.mesh.right[at(number)]);
    EXPECT_EQ(mesh.plan_node(mesh.node1[at(edge)]).x,
              whole_.mesh.plan_node(whole_.mesh.node1[at(number)]).x);
    EXPECT_EQ(mesh.plan_node(mesh.node2[at(edge)]).y,
              whole_.mesh.plan_node(whole_.mesh.node2[at(number)]).y);
  }
  EXPECT_EQ(part.contents.fields.sediment.empty(), !GetParam());
  EXPECT_TRUE(part.contents.fields.bed.empty());
  EXPECT_EQ(bytes_of(part.contents.series), bytes_of(whole_.series));
  EXPECT_EQ(bytes_of(part.contents.soils), bytes_of(whole_.soils));
  EXPECT_EQ(part.contents.zero_depth, whole_.zero_depth);
}

TEST_P(PartOfBasin, HasAllEdgesOfItsCellsButForThoseOfTheLastRing) {
  for (const int rings : {1, 2}) {
    const cases::Part part = part_of(whole_, cells_in_the_middle(), rings);
    const cases::Part inner = part_of(whole_, cells_in_the_middle(), rings - 1);
    for (Number edge = 0; edge < whole_.mesh.n_edges(); ++edge) {
      const auto is_inner = [&](Number cell) {
        const auto& cells = inner.cell_number;
        return std::find(cells.begin(), cells.end(), cell) != cells.end();
      };
      if (!is_inner(whole_.mesh.left[at(edge)]) && !is_inner(whole_.mesh.right[at(edge)])) continue;
      EXPECT_TRUE(std::binary_search(part.edge_number.begin(), part.edge_number.end(), edge));
    }
  }
}

TEST_P(PartOfBasin, OfAllCellsIsTheWhole) {
  Numbers all(at(whole_.mesh.n_cells()));
  std::iota(all.begin(), all.end(), 0);
  const cases::Part part = part_of(whole_, all, 2);
  EXPECT_EQ(bytes_of(part.contents), bytes_of(whole_));
  EXPECT_EQ(part.cell_number, all);
  EXPECT_EQ(part.border, Numbers{});
}

TEST_P(PartOfBasin, HasTheScalesOfTheWhole) {
  const cases::CaseScales scales = part_of(whole_, {0, 1, 2}).scales;
  EXPECT_EQ(scales.h0, cases::scales_of(whole_).h0);
  EXPECT_EQ(scales.char_length_min, cases::scales_of(whole_).char_length_min);
  EXPECT_GT(scales.h0, 1.0);
}

TEST_P(PartOfBasin, DoesNotDependOnThePartsThatWereCutBefore) {
  cases::PartCutter cutter(whole_);
  cutter.part_of(Numbers{0, 1, 2, 3, 4, 5}, 2);
  EXPECT_EQ(bytes_of(cutter.part_of(cells_in_the_middle(), 2)),
            bytes_of(part_of(whole_, cells_in_the_middle(), 2)));
}

TEST_P(PartOfBasin, ComesBackFromItsBytes) {
  const utils::Bytes bytes = bytes_of(part_of(whole_, cells_in_the_middle(), 2));
  cases::Part part;
  utils::take_out_of(bytes, part);
  EXPECT_EQ(bytes_of(part), bytes);
  EXPECT_EQ(part.cell_number.front(), cells_in_the_middle().front());
}

TEST_P(PartOfBasin, FindsItsOwnCellsByTheirNumbers) {
  const cases::Part part = part_of(whole_, cells_in_the_middle());
  for (Number cell = 0; cell < part.owned; ++cell) {
    EXPECT_EQ(part.own_cell(part.cell_number[at(cell)]), cell);
  }
  EXPECT_EQ(part.own_cell(part.cell_number.back()), -1);  // a ghost
  EXPECT_EQ(part.own_cell(0), -1);
}

INSTANTIATE_TEST_SUITE_P(WaterAndSediments, PartOfBasin, testing::Bool());
