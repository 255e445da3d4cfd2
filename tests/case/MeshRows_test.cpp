#include "case/MeshRows.hpp"

#include <gtest/gtest.h>

#include "case/node_bed.hpp"
#include "support/square.hpp"

TEST(MeshRows, AddsTheOriginAndTurnsCellsThatRunClockwise) {
  const cases::MeshRows rows =
      cases::all_rows_of(support::square(), {1000.0, 5000.0}, {1.0, 2.0, 3.0, 4.0}, {5.0, 6.0});
  EXPECT_EQ(rows.node_x, (std::vector<double>{1000.0, 1001.0, 1001.0, 1000.0}));
  EXPECT_EQ(rows.node_y, (std::vector<double>{5000.0, 5000.0, 5001.0, 5001.0}));
  EXPECT_EQ(rows.width, 3U);
  EXPECT_EQ(rows.cell_nodes, (std::vector<int>{0, 1, 2, 0, 2, 3}));
  EXPECT_DOUBLE_EQ(rows.cell_x[1], 1000.0 + 1.0 / 3.0);
  EXPECT_DOUBLE_EQ(rows.cell_y[1], 5000.0 + 2.0 / 3.0);
  EXPECT_EQ(rows.node_bed[3], 4.0);
  EXPECT_EQ(rows.cell_bed[1], 6.0);
}

TEST(MeshRows, NameTheNodesByTheirNumbersInTheWholeMesh) {
  cases::MeshRows rows;
  rows.width = 4;
  cases::add_cells(
      support::square(), {0.0, 0.0}, [](int node) { return 10 * node; }, rows);
  EXPECT_EQ(rows.cell_nodes, (std::vector<int>{0, 10, 20, -1, 0, 20, 30, -1}));
}

TEST(MeshRows, FillsTheRowsOfCellsWithFewerNodes) {
  cases::Mesh source = support::square();
  source.x.push_back(2.0);
  source.y.push_back(0.5);
  source.z.push_back(0.0);
  source.add_cell(std::vector<cases::Number>{1, 4, 2, 3});
  const cases::MeshRows rows = cases::all_rows_of(source, {0.0, 0.0}, {}, {});
  EXPECT_EQ(rows.cell_nodes, (std::vector<int>{0, 1, 2, -1, 0, 2, 3, -1, 1, 4, 2, 3}));
}

TEST(BedAtNodes, IsTheMeanOfTheCellsAround) {
  EXPECT_EQ(cases::bed_at_nodes(support::square(), {1.0, 4.0}),
            (std::vector<double>{2.5, 1.0, 2.5, 4.0}));
}

TEST(BedAtNodes, IsTheirOwnWithoutACell) {
  cases::Mesh mesh = support::square();
  mesh.x.push_back(9.0);
  mesh.y.push_back(9.0);
  mesh.z.push_back(7.0);
  EXPECT_EQ(cases::bed_at_nodes(mesh, {1.0, 4.0}).back(), 7.0);
}
