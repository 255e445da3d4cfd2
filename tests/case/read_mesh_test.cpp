#include "case/read_mesh.hpp"

#include <gtest/gtest.h>

#include "case/CollectedMessages.hpp"
#include "case/boundary_kinds.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/fatal.hpp"

namespace {

using Numbers = std::vector<cases::Number>;

/// A square of 2 m, cut in two.
class ReadMeshTest : public testing::Test {
 protected:
  void read_nodes(const std::string& text) {
    cases::read_nodes(folder.write("nodes.txt", text), contents.mesh);
  }
  void read_cells(const std::string& text) {
    cases::read_cells(folder.write("cells.txt", text), contents.mesh, area_loss);
  }
  void read_edges(const std::string& text) {
    cases::read_edges(folder.write("edges.txt", text), edge_code::scheme_lhllc, contents, messages);
  }
  void read_square() {
    read_nodes("4\n0 0 0\n2 0 0\n2 2 3\n0 2 0\n");
    read_cells("2\n3 0 1 2\n3 0 2 3\n");
  }

  support::TemporaryFolder folder;
  cases::Case contents;
  AreaLoss area_loss;
  CollectedMessages messages;
};

TEST_F(ReadMeshTest, NodesAndCellsStandInTheOrderOfTheirFiles) {
  read_square();
  EXPECT_EQ(contents.mesh.x, (std::vector<double>{0.0, 2.0, 2.0, 0.0}));
  EXPECT_EQ(contents.mesh.y, (std::vector<double>{0.0, 0.0, 2.0, 2.0}));
  EXPECT_EQ(contents.mesh.z, (std::vector<double>{0.0, 0.0, 3.0, 0.0}));
  EXPECT_EQ(contents.mesh.cell_nodes, (Numbers{0, 1, 2, 0, 2, 3}));
}

TEST_F(ReadMeshTest, EdgesKnowTheirSidesAndBoundariesTheirEdges) {
  read_square();
  const std::string series = folder.write("q.txt", "2 0 1 10 2");
  read_edges("5\n0 -1 0 1 -33 " + series + "\n0 -1 1 2 -3 -0.5\n0 1 2 0 -1\n1 -7 2 3 -33 " +
             series + "\n1 -1 3 0 -5\n");
  const cases::Mesh& mesh = contents.mesh;
  EXPECT_EQ(mesh.left, (Numbers{0, 0, 0, 1, 1}));
  EXPECT_EQ(mesh.right, (Numbers{-1, -1, 1, -1, -1}));
  EXPECT_EQ(mesh.node1, (Numbers{0, 1, 2, 2, 3}));
  EXPECT_EQ(mesh.node2, (Numbers{1, 2, 0, 3, 0}));
  ASSERT_EQ(mesh.boundaries.size(), 4u);
  EXPECT_EQ(mesh.boundaries[1].edge, 1);
  EXPECT_EQ(mesh.boundaries[1].value, -0.5);
  EXPECT_EQ(mesh.boundaries[1].series, -1);
  EXPECT_EQ(mesh.boundaries[2].edge, 3);
  EXPECT_EQ(mesh.boundaries[2].code, edge_code::hydrograph);
  EXPECT_EQ(mesh.boundaries[2].series, 0);
  ASSERT_EQ(contents.series.size(), 1u);
  EXPECT_EQ(contents.series[0].file, series);
  EXPECT_EQ(contents.series[0].values, (std::vector<double>{1.0, 2.0}));
  EXPECT_TRUE(messages.warnings.empty());
}

TEST_F(ReadMeshTest, WarnsOfEdgesThatAreProbablyWrong) {
  read_square();
  read_edges("5\n0 -1 1 0 -5\n0 -1 1 2 -5\n0 1 2 0 -1\n1 -1 2 3 -5\n1 -1 3 0 -5\n");
  ASSERT_EQ(messages.warnings.size(), 1u);
  EXPECT_EQ(messages.warnings[0],
            "edge 0 (counted from 0) has a normal that points into its left cell 0; list its two "
            "nodes the other way round.");
}

TEST_F(ReadMeshTest, AMeshWithoutCellsEndsTheRun) {
  EXPECT_FATAL(read_cells("0"), 255, "found 0, expected 1 or more: a mesh has cells\\.");
}

TEST_F(ReadMeshTest, ABoundaryThatTheModelDoesNotHaveEndsTheRunOnceItsRecordIsRead) {
  read_square();
  contents.has_sediments = true;
  EXPECT_FATAL(read_edges("1\n0 -1 0 1 -33 not_there.txt"), 255,
               testing::Eq("Boundary condition of type -33 not defined!\n"));
  EXPECT_FATAL(read_edges("1\n0 -1 0 1 -33"), 255, "time-series file: found the end of the file");
}

TEST_F(ReadMeshTest, NodesThatOverflowEndTheRunWithTheirCell) {
  read_nodes("3\n0 0 0\n1e308 0 0\n0 1e200 0\n");
  EXPECT_FATAL(read_cells("1\n3 0 1 2"), 255,
               "cell 0 \\(of 0 to 0\\): found a node at \\(1e.308, 0, 0\\)");
}

}  // namespace
