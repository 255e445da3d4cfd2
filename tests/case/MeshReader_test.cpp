#include "case/MeshReader.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/TemporaryFolder.hpp"
#include "support/fatal.hpp"

namespace {

using testing::ExitedWithCode;

class MeshReader : public testing::Test {
 protected:
  utils::MeshReader reader(const std::string& text, const char* kind, std::size_t tokens) {
    return {folder_.write("mesh.txt", text), kind, tokens};
  }
  utils::MeshReader nodes(const std::string& text) { return reader(text, "node", 3); }
  utils::MeshReader cells(const std::string& text) { return reader(text, "cell", 4); }
  utils::MeshReader edges(const std::string& text) { return reader(text, "edge", 5); }

  /// A message about the mesh file; `rest` is a regular expression.
  static std::string error(const std::string& rest) {
    return "^Error in file .*mesh\\.txt, line " + rest;
  }

 private:
  support::TemporaryFolder folder_;
};

using MeshReaderDeathTest = MeshReader;
using Record = std::vector<double>;
using Indices = std::vector<int>;

TEST_F(MeshReader, ReadsNodesWithTheirElevation) {
  utils::MeshReader reader = nodes("2\n0 0 0\n1 0 0.5\n");
  EXPECT_EQ(reader.get_number_of_elements(), 2);
  EXPECT_EQ(reader.read_next_node(3), (Record{0, 0, 0}));
  EXPECT_EQ(reader.read_next_node(3), (Record{1, 0, 0.5}));
}

TEST_F(MeshReader, ReadsAsManyCoordinatesAsAreAskedFor) {
  utils::MeshReader reader = nodes("1 1 2 3 4 5");
  EXPECT_EQ(reader.read_next_node(5), (Record{1, 2, 3, 4, 5}));
}

TEST_F(MeshReader, ReadsCellsOfAnyNumberOfNodes) {
  utils::MeshReader reader = cells("2\n3 0 1 2\n5 4 3 2 1 0\n");
  EXPECT_EQ(reader.read_next_cell(5), (Indices{0, 1, 2}));
  EXPECT_EQ(reader.read_next_cell(5), (Indices{4, 3, 2, 1, 0}));
}

TEST_F(MeshReader, DoesNotCareWhereLinesEnd) {
  for (const char* text : {"2\n3 0 1 2\n3 1 2 3\n", "2 3 0 1 2 3 1 2 3",
                           "2\n3\n0\n1\n2\n3\n1\n2\n3", "2\t3\t0 1\r\n2 3 1\r\n\r\n2 3\r\n"}) {
    utils::MeshReader reader = cells(text);
    EXPECT_EQ(reader.read_next_cell(4), (Indices{0, 1, 2})) << text;
    EXPECT_EQ(reader.read_next_cell(4), (Indices{1, 2, 3})) << text;
  }
}

TEST_F(MeshReader, ReadsAnEdgeOfFiveIntegers) {
  utils::MeshReader reader = edges("2\n0 1 2 3 -1\n4 -1 0 1 -5\n");
  EXPECT_EQ(reader.read_next_edge(5, 5), utils::EdgeRecord(0, 1, 2, 3, -1, 0.0, ""));
  EXPECT_EQ(reader.read_next_edge(5, 5), utils::EdgeRecord(4, -1, 0, 1, -5, 0.0, ""));
}

TEST_F(MeshReader, ReadsTheValueOfAnImposedDischargeAndLevel) {
  utils::MeshReader reader = edges("2\n0 -1 0 1 -3 2.5\n0 -1 1 2 -4 -1e1\n");
  EXPECT_EQ(reader.read_next_edge(3, 1), utils::EdgeRecord(0, -1, 0, 1, -3, 2.5, ""));
  EXPECT_EQ(reader.read_next_edge(3, 1), utils::EdgeRecord(0, -1, 1, 2, -4, -10.0, ""));
}

TEST_F(MeshReader, ReadsTheFileOfAHydrographAndLimnigraph) {
  utils::MeshReader reader = edges("2\n0 -1 0 1 -33 in/flow.txt\n0 -1 1 2 -44 7\n");
  EXPECT_EQ(reader.read_next_edge(3, 1), utils::EdgeRecord(0, -1, 0, 1, -33, 0.0, "in/flow.txt"));
  EXPECT_EQ(reader.read_next_edge(3, 1), utils::EdgeRecord(0, -1, 1, 2, -44, 0.0, "7"));
}

TEST_F(MeshReader, TakesNothingMoreForOtherCodes) {
  for (const std::string code : {"-2", "-5", "7"}) {
    utils::MeshReader reader = edges("2\n0 -1 0 1 " + code + "\n0 -1 1 2 -5\n");
    EXPECT_EQ(reader.read_next_edge(3, 1),
              utils::EdgeRecord(0, -1, 0, 1, std::stoi(code), 0.0, ""));
    EXPECT_EQ(reader.read_next_edge(3, 1), utils::EdgeRecord(0, -1, 1, 2, -5, 0.0, ""));
  }
}

TEST_F(MeshReader, AcceptsAnyNegativeRightCellOnABoundary) {
  utils::MeshReader reader = edges("1\n0 -9999 0 1 -5\n");
  EXPECT_EQ(reader.read_next_edge(3, 1), utils::EdgeRecord(0, -9999, 0, 1, -5, 0.0, ""));
}

TEST_F(MeshReader, IgnoresWhatFollowsTheLastRecord) {
  utils::MeshReader reader = nodes("1\n1 2 3\n4 5 6\nanything else");
  EXPECT_EQ(reader.read_next_node(3), (Record{1, 2, 3}));
  EXPECT_THROW(reader.read_next_node(3), utils::OutOfBoundsMeshReaderException);
}

TEST_F(MeshReader, AcceptsAFileWithoutRecords) {
  utils::MeshReader reader = nodes("0\n");
  EXPECT_EQ(reader.get_number_of_elements(), 0);
  EXPECT_THROW(reader.read_next_node(3), utils::OutOfBoundsMeshReaderException);
}

TEST_F(MeshReader, ThrowsAfterTheLastRecordWithItsNumberOfElements) {
  utils::MeshReader reader = nodes("3\n0 0 0\n1 0 0\n0 1 0\n");
  for (int i = 0; i < 3; ++i) reader.read_next_node(3);
  try {
    reader.read_next_node(3);
    FAIL() << "a fourth node was read";
  } catch (const std::exception& error) {
    EXPECT_STREQ(error.what(),
                 "The Reader tried to read more lines than the number of elements. The number of "
                 "elements is: 3.");
  }
}

TEST_F(MeshReader, ThrowsAfterTheLastCellAndEdge) {
  utils::MeshReader cell_reader = cells("1\n3 0 1 2\n");
  cell_reader.read_next_cell(3);
  EXPECT_THROW(cell_reader.read_next_cell(3), utils::OutOfBoundsMeshReaderException);
  utils::MeshReader edge_reader = edges("1\n0 -1 0 1 -5\n");
  edge_reader.read_next_edge(3, 1);
  EXPECT_THROW(edge_reader.read_next_edge(3, 1), utils::OutOfBoundsMeshReaderException);
}

TEST_F(MeshReaderDeathTest, EndsTheRunWithoutAFile) {
  EXPECT_FATAL(utils::MeshReader("missing.txt", "node", 3), 255,
               "^Fatal error. Impossible to open file missing\\.txt\\.\n$");
}

TEST_F(MeshReaderDeathTest, RefusesACellOfFewerThanThreeNodes) {
  EXPECT_FATAL(
      cells("1\n2 0 1 2 0\n").read_next_cell(3), 255,
      error("2, cell 0 \\(of 0 to 0\\), number of nodes: found \"2\", expected at least 3"));
}

TEST_F(MeshReaderDeathTest, RefusesACellWithoutNodesInEveryPlace) {
  const std::string refusal = "number of nodes: found \"0\", expected at least 3";
  EXPECT_FATAL(cells("2 0 0 0 0 0 0 0 0 0").read_next_cell(3), 255,
               error("1, cell 0 .*" + refusal));
  utils::MeshReader reader = cells("2\n3 0 1 2\n0 0 0 0\n");
  reader.read_next_cell(3);
  EXPECT_FATAL(reader.read_next_cell(3), 255, error("3, cell 1 .*" + refusal));
}

TEST_F(MeshReaderDeathTest, NamesTheRecordThatIsRefused) {
  utils::MeshReader reader = cells("2\n3 0 1 2\n3 0 1 2\n");
  reader.read_next_cell(3);
  EXPECT_FATAL(reader.refuse_record("found this, expected that"), 255,
               error("2, cell 0 \\(of 0 to 1\\): found this, expected that\\.\n$"));
}

TEST_F(MeshReaderDeathTest, RefusesACellOfMoreNodesThanTheFileHolds) {
  EXPECT_FATAL(cells("1\n2000000000 0 1 2\n").read_next_cell(3), 255,
               error("2, cell 0 .*number of nodes: found \"2000000000\", expected a count"));
}

TEST_F(MeshReaderDeathTest, RefusesNodesAndCellsThatDoNotExist) {
  EXPECT_FATAL(cells("1\n3 0 1 3\n").read_next_cell(3), 255,
               error("2, cell 0 .*node: found \"3\", expected an index from 0 to 2"));
  EXPECT_FATAL(edges("1\n5 -1 0 1 -5\n").read_next_edge(3, 5), 255,
               error("2, edge 0 .*left cell: found \"5\", expected an index from 0 to 4"));
  EXPECT_FATAL(edges("1\n-1 0 0 1 -5\n").read_next_edge(3, 5), 255,
               error("2, edge 0 .*left cell: found \"-1\", expected an index from 0 to 4"));
  EXPECT_FATAL(
      edges("1\n0 5 0 1 -1\n").read_next_edge(3, 5), 255,
      error("2, edge 0 .*right cell: found \"5\", expected an index from 0 to 4, or -1 on"));
  EXPECT_FATAL(edges("1\n0 1 3 1 -1\n").read_next_edge(3, 5), 255,
               error("2, edge 0 .*node 1: found \"3\", expected an index from 0 to 2"));
  EXPECT_FATAL(edges("1\n0 1 0 -2 -1\n").read_next_edge(3, 5), 255,
               error("2, edge 0 .*node 2: found \"-2\", expected an index from 0 to 2"));
}

TEST_F(MeshReaderDeathTest, RefusesAnInteriorEdgeWithoutTwoCells) {
  EXPECT_FATAL(edges("1\n0 -1 0 1 -1\n").read_next_edge(3, 2), 255,
               error("2, edge 0 .*boundary code: found \"-1\", expected a boundary condition"));
  EXPECT_FATAL(edges("1\n1 1 0 1 -1\n").read_next_edge(3, 2), 255,
               error("2, edge 0 .*boundary code: found \"-1\", expected two different cells"));
}

TEST_F(MeshReaderDeathTest, RefusesAnEdgeWithoutItsValueOrFile) {
  EXPECT_FATAL(edges("1\n0 -1 0 1 -3\n").read_next_edge(3, 1), 255,
               "edge 0 .*imposed value: found the end of the file, expected a finite number");
  EXPECT_FATAL(edges("1\n0 -1 0 1 -4 high\n").read_next_edge(3, 1), 255,
               "edge 0 .*imposed value: found \"high\", expected a finite number");
  EXPECT_FATAL(edges("1\n0 -1 0 1 -33\n").read_next_edge(3, 1), 255,
               "edge 0 .*time-series file: found the end of the file, expected a word");
}

}  // namespace
