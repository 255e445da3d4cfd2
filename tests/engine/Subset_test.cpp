#include "engine/Subset.hpp"

#include <gtest/gtest.h>

#include <algorithm>

#include "engine/Tables.hpp"
#include "support/strip_mesh.hpp"

namespace {

using Numbers = std::vector<cases::Number>;

/// Squares in a row, with water that is deepest in the last one.
cases::Case strip_case(int n) {
  cases::Case contents;
  contents.mesh = support::strip_mesh(n);
  contents.zero_depth = 1e-3;
  for (int i = 0; i < n; ++i) {
    contents.fields.level.push_back(1.0 + 0.1 * i);
    contents.fields.qx.push_back(0.5 * i);
    contents.fields.qy.push_back(0.0);
  }
  contents.mesh.x[0] = 0.5;  // the first square is the smallest
  return contents;
}

}  // namespace

TEST(Subset, HasTheNeighboursOfItsCellsAsGhosts) {
  const engine::Subset subset = engine::subset_of(support::strip_mesh(10), {3, 4, 5, 9});
  EXPECT_EQ(subset.owned, (Numbers{3, 4, 5, 9}));
  EXPECT_EQ(subset.ghosts, (Numbers{2, 6, 8}));
  EXPECT_EQ(subset.border, (Numbers{3, 5, 9}));
}

TEST(Subset, OfTwoRingsHasTheirNeighboursToo) {
  const engine::Subset subset = engine::subset_of(support::strip_mesh(10), {3, 4, 5, 6, 7}, 2);
  EXPECT_EQ(subset.ghosts, (Numbers{1, 2, 8, 9}));
  EXPECT_EQ(subset.border, (Numbers{3, 4, 6, 7}));
}

TEST(Subset, HasNoGhostsBehindABoundary) {
  cases::Mesh mesh = support::strip_mesh(4);
  const cases::Number between_1_and_2 = 8;
  ASSERT_EQ(mesh.left[between_1_and_2], 1);
  ASSERT_EQ(mesh.right[between_1_and_2], 2);
  mesh.boundaries.push_back({between_1_and_2, edge_code::wall, 0.0, -1});
  std::sort(mesh.boundaries.begin(), mesh.boundaries.end(),
            [](const auto& a, const auto& b) { return a.edge < b.edge; });
  const engine::Subset subset = engine::subset_of(mesh, {2, 3});
  EXPECT_EQ(subset.ghosts, Numbers{});
  EXPECT_EQ(subset.border, Numbers{});
}

TEST(TablesOfASubset, HoldItsCellsTheirEdgesAndGhosts) {
  const cases::Case contents = strip_case(10);
  engine::ThreadTeam team(2);
  const engine::Tables all = engine::make_tables(contents, {}, team, 64);
  const engine::Tables some =
      engine::make_tables(contents, engine::subset_of(contents.mesh, {3, 4, 5}), team, 64);
  EXPECT_EQ(some.owned, 3);
  EXPECT_EQ(some.ghosts().size(), 2);
  for (const cases::Number cell : {0, 1, 7, 8, 9}) EXPECT_EQ(some.place[engine::at(cell)], -1);
  for (const cases::Number cell : {2, 3, 4, 5, 6}) {
    const std::size_t here = engine::at(some.place[engine::at(cell)]);
    const std::size_t there = engine::at(all.place[engine::at(cell)]);
    EXPECT_EQ(here < 3, cell >= 3 && cell <= 5) << cell;
    EXPECT_EQ(some.cells.h[here], all.cells.h[there]) << cell;
    EXPECT_EQ(some.cells.qx[here], all.cells.qx[there]) << cell;
    EXPECT_EQ(some.cells.eta[here], all.cells.eta[there]) << cell;
    EXPECT_EQ(some.cells.bed[here], all.cells.bed[there]) << cell;
  }
  ASSERT_EQ(some.patches.patches.size(), 1U);
  const engine::Patch& patch = some.patches.patches.front();
  EXPECT_TRUE(patch.is_border);
  EXPECT_FALSE(all.patches.patches.front().is_border);
  EXPECT_EQ(patch.edges.size(), 2);
  EXPECT_EQ(some.patches.cut_edge_number.size(), 0U);  // nobody asks for it without sediments
  EXPECT_EQ(some.cut_edges(), 2);
  // The files' order of the two cells, not that of the places.
  EXPECT_EQ(some.patches.cut_edges.left[0], some.place[2]);
  EXPECT_EQ(some.patches.cut_edges.right[0], some.place[3]);
  EXPECT_EQ(some.boundaries.size(), 6U);  // the walls in the south and north
}

TEST(TablesOfASubset, HaveTheScalesOfTheWholeCase) {
  const cases::Case contents = strip_case(10);
  engine::ThreadTeam team(1);
  const engine::Tables all = engine::make_tables(contents, {}, team);
  const engine::Tables some =
      engine::make_tables(contents, engine::subset_of(contents.mesh, {3, 4, 5}), team);
  EXPECT_EQ(all.h0, 1.9);
  EXPECT_EQ(some.h0, all.h0);
  EXPECT_EQ(some.char_length_min, all.char_length_min);
  EXPECT_EQ(some.dry_step, all.dry_step);
  EXPECT_LT(all.char_length_min, some.cells.char_length[0]);
}
