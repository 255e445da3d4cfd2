#include "engine/Patches.hpp"

#include <gtest/gtest.h>

#include <set>
#include <stdexcept>

#include "case/boundary_kinds.hpp"
#include "engine/runs.hpp"
#include "support/polygon_mesh.hpp"
#include "support/strip_mesh.hpp"

namespace {

std::vector<int> identity(int n) {
  std::vector<int> place(static_cast<std::size_t>(n));
  for (int i = 0; i < n; ++i) place[static_cast<std::size_t>(i)] = i;
  return place;
}

class PatchesTest : public testing::Test {
 protected:
  engine::ThreadTeam team{2};
};

}  // namespace

TEST(CellsPerPatch, AreNeverMoreThanTheTablesOfASchemeBear) {
  for (const int threads : {1, 2, 3, 16, 128}) {
    for (int cells = 1; cells < 20'000'000; cells += 1 + cells / 1000) {
      const int in_patch = engine::cells_per_patch_for(cells, threads);
      ASSERT_LE(in_patch, engine::most_cells_per_patch) << cells << " cells, " << threads;
      ASSERT_EQ(in_patch % engine::cells_of_shortest, 0) << cells << " cells, " << threads;
    }
  }
  EXPECT_LE(engine::cells_per_patch_for(3'000'024, 1), engine::most_cells_per_patch);
}

TEST_F(PatchesTest, HoldEveryEdgeOnce) {
  const cases::Mesh mesh = support::strip_mesh(200);
  const engine::Patches patches = engine::make_patches(mesh, identity(200), 200, 64, team);
  ASSERT_EQ(patches.patches.size(), 4U);
  EXPECT_EQ(patches.patches.back().cells.size(), 8);
  std::set<cases::Number> edges;
  int count = 0;
  for (const auto* list :
       {&patches.edge_number, &patches.cut_edge_number, &patches.boundary_edge}) {
    for (const cases::Number edge : *list) {
      if (edge < 0) continue;
      edges.insert(edge);
      ++count;
    }
  }
  EXPECT_EQ(count, mesh.n_edges());
  EXPECT_EQ(edges.size(), static_cast<std::size_t>(mesh.n_edges()));
  EXPECT_EQ(patches.cut_edge_number.size(), 3U);
  EXPECT_EQ(patches.boundary_edge.size(), mesh.boundaries.size());
}

TEST_F(PatchesTest, NameTheNeighboursAcrossCutEdges) {
  const engine::Patches patches =
      engine::make_patches(support::strip_mesh(200), identity(200), 200, 64, team);
  const engine::Range of_second = patches.patches[1].neighbours;
  EXPECT_EQ(std::vector<int>(patches.neighbours.begin() + of_second.begin,
                             patches.neighbours.begin() + of_second.end),
            (std::vector<int>{0, 2}));
}

TEST_F(PatchesTest, TakeTheFirstThreeEdgesOfACell) {
  const cases::Mesh mesh = support::strip_mesh(64);
  const engine::Patches patches = engine::make_patches(mesh, identity(64), 64, 64, team);
  const engine::Patch& patch = patches.patches.front();
  // Cell 5: its walls, then the edge to the west, whose right side it is; not the one to the east.
  const int south = patches.slots[0][5], north = patches.slots[1][5], west = patches.slots[2][5];
  EXPECT_GE(south, patch.outer_slots_begin());
  EXPECT_GE(north, patch.outer_slots_begin());
  EXPECT_NE(south, north);
  EXPECT_GE(west, patch.right_slots());
  EXPECT_LT(west, patch.outer_slots_begin());
  EXPECT_EQ(patches.edge_number[static_cast<std::size_t>(west - patch.right_slots())], 5 * 3 + 2);
}

TEST_F(PatchesTest, AreTheSameOnAnyNumberOfThreads) {
  const cases::Mesh mesh = support::strip_mesh(500);
  const engine::Patches expected = engine::make_patches(mesh, identity(500), 500, 64, team);
  for (const int threads : {1, 3, 7}) {
    engine::ThreadTeam other(threads);
    const engine::Patches patches = engine::make_patches(mesh, identity(500), 500, 64, other);
    EXPECT_EQ(patches.edge_number, expected.edge_number);
    EXPECT_EQ(patches.outer_slots, expected.outer_slots);
    for (int k = 0; k < 3; ++k) EXPECT_EQ(patches.slots[k], expected.slots[k]);
  }
}

TEST_F(PatchesTest, ABoundaryLeavesTheSlotOfARightCellEmpty) {
  cases::Mesh mesh = support::strip_mesh(2);
  const cases::Number between = 5;  // the edge between the two cells
  ASSERT_EQ(mesh.right[between], 1);
  mesh.boundaries.insert(mesh.boundaries.end() - 1, {between, edge_code::wall, 0.0, -1});
  std::sort(mesh.boundaries.begin(), mesh.boundaries.end(),
            [](const auto& a, const auto& b) { return a.edge < b.edge; });
  const engine::Patches patches = engine::make_patches(mesh, identity(2), 2, 64, team);
  const int empty = patches.patches.front().empty_slot();
  EXPECT_EQ(patches.slots[2][1], empty);
  EXPECT_NE(patches.slots[2][0], empty);
}

TEST_F(PatchesTest, AnEdgeWithOneCellOnBothSidesFillsTheSecondOfItsSlots) {
  cases::Mesh mesh = support::strip_mesh(1);
  mesh.right[0] = 0;  // a wall, with its own cell at the right
  const engine::Patches patches = engine::make_patches(mesh, identity(1), 1, 64, team);
  const int empty = patches.patches.front().empty_slot();
  EXPECT_EQ(patches.slots[0][0], empty);
  EXPECT_NE(patches.slots[1][0], empty);
  EXPECT_NE(patches.slots[2][0], empty);
}

TEST_F(PatchesTest, OfCellsWithVeryManySidesAreRefused) {
  EXPECT_NO_THROW(engine::make_patches(support::polygon_mesh(65000), {0}, 1, 64, team));
  EXPECT_THROW(engine::make_patches(support::polygon_mesh(66000), {0}, 1, 64, team),
               std::length_error);
}
