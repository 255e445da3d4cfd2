#include "mesh/sms_reader.hpp"

#include <gtest/gtest.h>

#include "support/Error.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/text.hpp"
#include "tools/mesh/SampleMesh.hpp"
#include "tools/mesh/message_of.hpp"

namespace {

using mesh_import::Mesh;

class SmsReader : public testing::Test {
 protected:
  Mesh read(const std::string& text) { return mesh_import::read_2dm(folder.write("m.2dm", text)); }
  std::string error_of(const std::string& text) {
    return support::message_of([&] { read(text); });
  }

  support::TemporaryFolder folder;
  support::SampleMesh sample;
  const std::string square =
      "MESH2D\nND 1 0 0 5\nND 2 1 0 5\nND 3 1 1 5\nND 4 0 1 5\nE4Q 1 1 2 3 4 7\n";
};

TEST_F(SmsReader, ReadsTrianglesNodeStringsAndMaterials) {
  sample.z = [](double x, double) { return 2.0 - x; };
  const Mesh mesh = read(sample.sms());
  EXPECT_EQ(mesh.nodes.size(), static_cast<std::size_t>(sample.n_nodes()));
  EXPECT_EQ(mesh.cells.size(), static_cast<std::size_t>(sample.n_cells()));
  EXPECT_EQ(mesh.surface_names, (std::vector<std::string>{"left", "right"}));
  EXPECT_EQ(mesh.line_names, (std::vector<std::string>{"west", "east", "gate"}));
  EXPECT_EQ(mesh.line_pieces.size(), static_cast<std::size_t>(3 * sample.ny));
  EXPECT_EQ(mesh.nodes[1].z, 1.0);
  EXPECT_EQ(mesh.remarks, std::vector<std::string>{"Cards that were not read: MESHNAME."});
}

TEST_F(SmsReader, ReadsQuadrilateralsAndCallsWhatHasNoNameByItsNumber) {
  const Mesh mesh = read(square + "NS 1 -2\nNS 3\nNS -4 9\n");
  ASSERT_EQ(mesh.cells.size(), 1U);
  EXPECT_TRUE(mesh.cells[0].is_quad());
  EXPECT_EQ(mesh.surface_names, std::vector<std::string>{"7"});
  EXPECT_EQ(mesh.line_names, (std::vector<std::string>{"1", "9"}));
  ASSERT_EQ(mesh.line_pieces.size(), 2U);
  EXPECT_EQ(mesh.line_pieces[1].node1, 2);
  EXPECT_EQ(mesh.line_pieces[1].node2, 3);
}

TEST_F(SmsReader, SkipsCountsAndNamesWhatIsNoMesh) {
  const Mesh mesh =
      read("MESH2D\nNUM_MATERIALS_PER_ELEM 1\n" + square.substr(7) +
           "E2L 9 1 2 3\nE2L 10 2 3 3\nBEGPARAMDEF\nGM \"Mesh\"\nSI 0\nTD 0 0\nENDPARAMDEF\n"
           "BEG2DMBC\nMAT 7 \"meadow\"\nEND2DMBC\nBEGCURVE Version: 1\n2\n0 1.5\nnd 3 4\n\"x\"\n"
           "ENDCURVE\nXY1 1 2 0 0 0 0 \"flow\"\n0 1\n3600 2.5\nNS 1 -2 9\n");
  EXPECT_EQ(mesh.cells.size(), 1U);
  EXPECT_EQ(mesh.surface_names, std::vector<std::string>{"meadow"});
  EXPECT_EQ(mesh.line_names, std::vector<std::string>{"9"});
  EXPECT_EQ(mesh.remarks,
            std::vector<std::string>{"Cards that were not read: BEG2DMBC, BEGCURVE, BEGPARAMDEF, "
                                     "E2L (2), END2DMBC, ENDPARAMDEF, GM, NUM_MATERIALS_PER_ELEM, "
                                     "SI, TD, XY1."});
}

TEST_F(SmsReader, TakesFractionsBehindTheNodesForElevations) {
  const std::string nodes = "MESH2D\nND 1 0 0\nND 2 1 0\nND 3 1 1\nND 4 0 1\n";
  Mesh mesh = read(nodes + "E3T 1 1 2 3 7.25\nE3T 2 1 3 4 8\n");
  EXPECT_EQ(mesh.bed_of_cell, (std::vector<double>{7.25, 8.0}));
  EXPECT_EQ(mesh.surface_names, std::vector<std::string>{"0"});
  EXPECT_EQ(mesh.remarks,
            std::vector<std::string>{"The elements have elevations (element 1: 7.25 m), which are "
                                     "the bed of their cells."});
  mesh = read(nodes + "E3T 1 1 2 3 4 7.25\nE3T 2 1 3 4 5 8.5\n");
  EXPECT_EQ(mesh.bed_of_cell, (std::vector<double>{7.25, 8.5}));
  EXPECT_EQ(mesh.surface_names, (std::vector<std::string>{"4", "5"}));
  mesh = read(nodes + "E3T 1 1 2 3 4 7\nE3T 2 1 3 4 5\n");
  EXPECT_TRUE(mesh.bed_of_cell.empty());
  EXPECT_EQ(mesh.remarks, std::vector<std::string>{
                              "Some elements have several materials; the first one was taken."});
  EXPECT_EQ(error_of(nodes + "E3T 1 1 2 3 4\nE3T 2 1 3 4 5\nE3T 3 1 3 4 5.5\n"),
            folder.file("m.2dm") +
                ", element 3: found 5.5 behind the nodes, expected the number of a material, or "
                "an elevation of every element.");
}

TEST_F(SmsReader, NamesWhatIsWrongAndWhereAndWhatIsExpected) {
  const std::string path = folder.file("m.2dm");
  EXPECT_EQ(error_of("ND 1 0 0 0\n"), path +
                                          ", line 1: first card: found \"ND\", expected MESH2D, "
                                          "with which a .2dm file begins.");
  EXPECT_EQ(error_of(square + "E6T 2 1 2 3 4 1 2 1\n"),
            path +
                ", line 7: card: found \"E6T\", expected E3T or E4Q: only elements of first order "
                "can be read.");
  EXPECT_EQ(error_of(square + "E3T 2 1 2 33 7\n"),
            path +
                ", element 2: found node 33, expected the number of a node (card ND) of the "
                "file.");
  EXPECT_EQ(
      error_of(square + "E3T 2 1 2\n"),
      path + ", line 7: node of an element: found \"2\", expected a further node on the line.");
  EXPECT_EQ(error_of(square + "NS 1 2\nND 5 1 1 1\n"),
            path +
                ", line 8: card: found \"ND\", expected NS: the node string before it has no end "
                "(a negative node).");
  EXPECT_TRUE(support::contains(error_of(square + "5 6 7\n"),
                                "found \"5\", expected a card such as ND, E3T, E4Q or NS"));
  EXPECT_TRUE(support::contains(error_of(square + "NS 1 2\n"), "the last node string has no end"));
  EXPECT_TRUE(support::contains(error_of("MESH2D\nND 1 0 0 0\n"), "the file holds no element"));
}

}  // namespace
