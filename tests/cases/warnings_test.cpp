#include "cases/CaseTest.hpp"

namespace {

using support::RunResult;

class Warnings : public CaseTest {
 protected:
  /// A complete run; every line that it writes to standard error is a warning, and the warnings are
  /// nowhere else. Answers the lines.
  std::vector<std::string> warnings() {
    c.write(folder);
    const RunResult result = support::run_program(folder.path(), {"-f", "data.json"});
    EXPECT_EQ(result.status, 0);
    EXPECT_FALSE(support::contains(result.out, "Warning"));
    EXPECT_FALSE(support::contains(folder.read("log.txt"), "Warning"));
    EXPECT_TRUE(support::contains(folder.read("log.txt"), "Total execution time: "));
    for (const std::string& line : support::lines(result.err)) {
      EXPECT_TRUE(support::starts_with(line, "Warning: ")) << line;
    }
    return support::lines(result.err);
  }
  /// The same of a run that makes no pass, without the warning about that.
  std::vector<std::string> warnings_without_a_pass() {
    c.set_times(0.0, 0.0);
    std::vector<std::string> lines = warnings();
    EXPECT_FALSE(lines.empty());
    if (lines.empty()) return lines;
    EXPECT_TRUE(support::contains(lines.back(), "computes nothing")) << lines.back();
    lines.pop_back();
    return lines;
  }
  /// The edges file with one record changed.
  void change_edge(int edge, const std::string& record) {
    std::vector<std::string> lines = support::lines(c.edges_text());
    lines.at(static_cast<std::size_t>(edge) + 1) = record;
    std::string text;
    for (const std::string& line : lines) text += line + "\n";
    c.files["edges.txt"] = text;
  }
};

TEST_F(Warnings, AreAbsentFromACleanRun) { EXPECT_TRUE(warnings().empty()); }

TEST_F(Warnings, NameTheEdgeWhoseNormalPointsIntoItsLeftCell) {
  change_edge(1, "0 -1 1 0 -5");
  const std::vector<std::string> lines = warnings();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_TRUE(support::contains(lines[0], "edge 1 (counted from 0)"));
  EXPECT_TRUE(support::contains(lines[0], "points into its left cell 0"));
}

TEST_F(Warnings, NameTheInteriorEdgeWhoseNormalPointsIntoItsLeftCell) {
  change_edge(0, "0 1 0 6 -1");
  const std::vector<std::string> lines = warnings();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_TRUE(support::contains(lines[0], "edge 0 (counted from 0)"));
}

TEST_F(Warnings, NameTheEdgeWithoutLength) {
  change_edge(1, "0 -1 1 1 -5");
  EXPECT_EQ(
      warnings_without_a_pass(),
      std::vector<std::string>{"Warning: edge 1 (counted from 0) has no length: its flux is not a "
                               "number."});
}

TEST_F(Warnings, AreCountedFromTheEleventhOfAKindOn) {
  std::vector<std::string> edges = support::lines(c.edges_text());
  std::string text = edges[0] + "\n";
  for (std::size_t i = 1; i < edges.size(); ++i) {
    std::vector<std::string> fields = support::split(edges[i], ' ');
    std::swap(fields[2], fields[3]);
    for (const std::string& field : fields) text += field + " ";
    text += "\n";
  }
  c.files["edges.txt"] = text;
  // Water at rest on a wrong mesh need not stay there.
  const std::vector<std::string> lines = warnings_without_a_pass();
  ASSERT_EQ(lines.size(), 11U);
  EXPECT_EQ(lines[10], "Warning: 33 more edges whose normal points into their left cell.");
}

TEST_F(Warnings, NameTenHyetogramsOutOfOrder) {
  std::string hyetograms = "12\n";
  for (int id = 1; id <= 12; ++id) hyetograms += std::to_string(id) + " 2 1\n10 0\n5 0\n";
  c.add_rain(hyetograms, c.per_cell("1"));
  const std::vector<std::string> lines = warnings();
  ASSERT_EQ(lines.size(), 11U);
  EXPECT_EQ(lines[0],
            "Warning: hyetogram 1 has an interval that starts before the one above it: of those "
            "that have started, the last in the file counts.");
  EXPECT_EQ(lines[10], "Warning: 2 more hyetograms out of order.");
}

TEST_F(Warnings, NameTheBoundaryEdgeThatHasARightCell) {
  change_edge(0, "0 1 6 0 -5");
  const std::vector<std::string> lines = warnings();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_TRUE(support::contains(lines[0], "edge 0 (counted from 0)"));
  EXPECT_TRUE(support::contains(lines[0], "boundary code -5"));
  EXPECT_TRUE(support::contains(lines[0], "right cell 1"));
}

TEST_F(Warnings, NameTheCellsWithOtherThanThreeEdges) {
  c.files["nodes.txt"] = "5\n0 0 0\n1 0 0\n1 1 0\n0 1 0\n2 0 0\n";
  c.files["cells.txt"] = "2\n4 0 1 2 3\n3 1 4 2\n";
  c.files["edges.txt"] =
      "6\n0 -1 0 1 -5\n0 1 1 2 -1\n0 -1 2 3 -5\n0 -1 3 0 -5\n1 -1 1 4 -5\n"
      "1 -1 4 2 -5\n";
  c.files["initial.txt"] = "1 0 0\n1 0 0\n";
  const std::vector<std::string> lines = warnings_without_a_pass();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_TRUE(support::contains(lines[0], "cell 0 (counted from 0) has 4 edges"));
}

TEST_F(Warnings, NameTheCellThatLacksAnEdge) {
  std::vector<std::string> edges = support::lines(c.edges_text());
  edges.pop_back();  // the northern edge of the last cell
  edges[0] = std::to_string(edges.size() - 1);
  for (const std::string& line : edges) c.files["edges.txt"] += line + "\n";
  const std::vector<std::string> lines = warnings_without_a_pass();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_TRUE(support::contains(lines[0], "cell 23 (counted from 0) has 2 edges"));
}

TEST_F(Warnings, NameTheOutputFolderThatDoesNotExistAndEachFileOnce) {
  c.data["output"]["folder"] = "missing/";
  c.data["output"]["time step enveloppe of results"] = 0.01;  // written at nearly every pass
  c.add_snapshots({0.0, 0.5});
  const std::vector<std::string> lines = warnings();
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_TRUE(support::contains(lines[0], "output folder missing does not exist"));
  const std::string end = " couldn't be created: its results are lost.";
  std::vector<std::string> rest(lines.begin() + 1, lines.end());
  std::sort(rest.begin(), rest.end());
  EXPECT_EQ(rest, (std::vector<std::string>{"Warning: The file missing/enveloppe.txt" + end,
                                            "Warning: The file missing/pic_0_00.txt" + end,
                                            "Warning: The file missing/pic_0_50.txt" + end}));
  EXPECT_FALSE(folder.has("missing"));
}

TEST_F(Warnings, DoNotConcernAnOutputPrefixWithoutAFolder) {
  c.data["output"]["folder"] = "";
  EXPECT_TRUE(warnings().empty());
  EXPECT_TRUE(folder.has("enveloppe.txt"));
  c.data["output"]["folder"] = "run1_";
  EXPECT_TRUE(warnings().empty());
  EXPECT_TRUE(folder.has("run1_enveloppe.txt"));
  c.data["output"]["folder"] = "out/run1_";
  EXPECT_TRUE(warnings().empty());
  EXPECT_TRUE(folder.has("out/run1_enveloppe.txt"));
}

}  // namespace
