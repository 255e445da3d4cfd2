#include "ugrid/Mesh.hpp"

#include <gtest/gtest.h>

#include "case/node_bed.hpp"
#include "ugrid/square.hpp"

TEST(UgridMesh, AddsTheOriginAndTurnsCellsThatRunClockwise) {
  const ugrid::Mesh mesh = ugrid::mesh_of(support::square(), {1000.0, 5000.0}, {});
  EXPECT_EQ(mesh.node_x, (std::vector<double>{1000.0, 1001.0, 1001.0, 1000.0}));
  EXPECT_EQ(mesh.node_y, (std::vector<double>{5000.0, 5000.0, 5001.0, 5001.0}));
  EXPECT_EQ(mesh.width, 3U);
  EXPECT_EQ(mesh.face_nodes, (std::vector<int>{0, 1, 2, 0, 2, 3}));
  EXPECT_DOUBLE_EQ(mesh.face_x[1], 1000.0 + 1.0 / 3.0);
  EXPECT_DOUBLE_EQ(mesh.face_y[1], 5000.0 + 2.0 / 3.0);
}

TEST(UgridMesh, FillsTheRowsOfCellsWithFewerNodes) {
  cases::Mesh source = support::square();
  source.x.push_back(2.0);
  source.y.push_back(0.5);
  source.z.push_back(0.0);
  source.add_cell(std::vector<cases::Number>{1, 4, 2, 3});
  const ugrid::Mesh mesh = ugrid::mesh_of(source, {0.0, 0.0}, {});
  EXPECT_EQ(mesh.face_nodes, (std::vector<int>{0, 1, 2, -1, 0, 2, 3, -1, 1, 4, 2, 3}));
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
