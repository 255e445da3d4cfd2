#include "tools/mesh/CheckTest.hpp"

namespace {

class CheckMesh : public CheckTest {};

TEST_F(CheckMesh, FindsNothingInCleanCases) {
  expect_clean();
  c.clockwise = true;
  expect_clean();
}

// --- Files --------------------------------------------------------------------------------------

TEST_F(CheckMesh, NamesEveryFileThatCannotBeOpened) {
  c.data["mesh"]["nodes"] = "n.txt";
  c.data["mesh"]["edges"] = "e.txt";
  c.data["model"]["conditions"]["friction"] = "f.txt";
  check();
  const std::vector<std::string> found = texts("errors", "unreadable file");
  ASSERT_EQ(found.size(), 3U);
  EXPECT_TRUE(support::contains(found[0], "\"mesh/nodes\": the file n.txt"));
  EXPECT_TRUE(support::contains(found[2], "\"model/conditions/friction\": the file f.txt"));
}

TEST_F(CheckMesh, GoesOnBehindMalformedValues) {
  c.files["nodes.txt"] = with_record(with_record(c.nodes_text(), 1, "x 0 0"), 3, "3 y 0");
  check();
  const std::vector<std::string> found = texts("errors", "malformed value");
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0],
            "nodes.txt, line 3, node 1 (of 0 to 19), x: found \"x\", expected a finite number");
  EXPECT_TRUE(support::starts_with(found[1], "nodes.txt, line 5, node 3 (of 0 to 19), y"));
}

TEST_F(CheckMesh, ReadsAFileNoFurtherThanTenMalformedValues) {
  c.files["initial.txt"] = c.per_cell("a b c");
  check();
  const std::vector<std::string> found = texts("errors", "malformed value");
  ASSERT_EQ(found.size(), 11U);  // the last one counts the rest
  EXPECT_EQ(found.back(), "1 more of this kind");
}

TEST_F(CheckMesh, SaysOnceThatAFileEndsTooEarly) {
  c.files["initial.txt"] = "1 0 0\n1 0 0\n1";
  expect_error("malformed value", {"initial.txt", "cell 2", "found the end of the file"});
}

TEST_F(CheckMesh, RefusesACountThatTheFileCannotHold) {
  std::vector<std::string> lines = support::lines(c.nodes_text());
  lines[0] = "4000";
  c.files["nodes.txt"] = joined(lines);
  expect_error("malformed value", {"nodes.txt", "number of records", "\"4000\""});
}

TEST_F(CheckMesh, RefusesIndicesOutOfRange) {
  c.files["cells.txt"] = with_record(c.cells_text(), 2, "3 1 20 -1");
  std::string edges = with_record(c.edges_text(), 0, "0 24 6 0 -1");
  c.files["edges.txt"] = with_record(edges, 1, "-1 -1 0 20 -5");
  check();
  const std::vector<std::string> found = texts("errors", "malformed value");
  ASSERT_EQ(found.size(), 5U) << report.dump(2);
  EXPECT_TRUE(support::contains(found[0], "cell 2 (of 0 to 23), node: found \"20\""));
  EXPECT_TRUE(support::contains(found[1], "cell 2 (of 0 to 23), node: found \"-1\""));
  EXPECT_TRUE(support::contains(found[3], "edge 1 (of 0 to 42), left cell: found \"-1\""));
}

TEST_F(CheckMesh, RefusesACellOfTwoNodes) {
  c.files["cells.txt"] = with_record(c.cells_text(), 2, "2 1 2");
  expect_error("malformed value", {"cell 2", "number of nodes", "at least 3"});
}

TEST_F(CheckMesh, RefusesAnUnknownBoundaryCode) {
  c.west = "-6";
  check();
  EXPECT_EQ(texts("errors", "malformed value").size(), 3U);
  EXPECT_TRUE(texts("errors", "malformed value")[0].ends_with(
      "boundary code: found \"-6\", expected -1 to -5, -33 or -44"));
}

TEST_F(CheckMesh, RefusesASeriesWithSediments) {
  c.west = "-33 series.txt";
  c.files["series.txt"] = "2\n0 -1\n10 -1\n";
  use_sediments(0.0);
  check();
  EXPECT_EQ(texts("errors", "malformed value").size(), 3U);
}

TEST_F(CheckMesh, RefusesAnInteriorEdgeWithoutASecondCell) {
  c.files["edges.txt"] = with_record(c.edges_text(), 0, "0 -1 6 0 -1");
  check();
  ASSERT_EQ(texts("errors", "malformed value").size(), 1U);
  EXPECT_TRUE(support::contains(texts("errors", "malformed value")[0], "has no right cell"));
}

TEST_F(CheckMesh, RefusesAnInteriorEdgeBetweenACellAndItself) {
  c.files["edges.txt"] = with_record(c.edges_text(), 0, "0 0 6 0 -1");
  check();
  ASSERT_EQ(texts("errors", "malformed value").size(), 1U);
  EXPECT_TRUE(support::contains(texts("errors", "malformed value")[0], "two different cells"));
}

TEST_F(CheckMesh, RefusesAFluxSchemeThatInteriorEdgesCannotHave) {
  for (const char* const scheme : {"Roe", "HLL", ""}) {
    c.data["model"]["flux scheme"] = scheme;
    expect_error("flux scheme", {"\"" + std::string(scheme) + "\"", "expected \"LHLLC\""});
  }
}

TEST_F(CheckMesh, AcceptsEveryFluxSchemeThatThereIs) {
  for (const char* const scheme : {"LHLLC", "HLL1", "HLL2"}) {
    c.data["model"]["flux scheme"] = scheme;
    check();
    EXPECT_TRUE(texts("errors", "flux scheme").empty()) << scheme;
  }
}

// --- Topology -----------------------------------------------------------------------------------

TEST_F(CheckMesh, NamesTheCellThatDoesNotClose) {
  c.files["edges.txt"] = without(c.edges_text(), 1);  // the southern side of cell 0
  expect_warning("missing edge", {"cell 0 does not close", "nodes 0 and 1"});
}

TEST_F(CheckMesh, NamesTheEdgeThatStandsTwice) {
  c.files["edges.txt"] = with_more(c.edges_text(), "0 -1 0 1 -5");
  expect_warning("duplicate edge", {"edge 43 repeats edge 1", "cell 0", "nodes 0 and 1"});
}

TEST_F(CheckMesh, NamesTheEdgeThatIsNoSideOfItsCell) {
  c.files["edges.txt"] = with_more(c.edges_text(), "0 -1 7 8 -5");
  check();
  ASSERT_EQ(texts("warnings", "foreign edge").size(), 1U);
  EXPECT_TRUE(support::contains(texts("warnings", "foreign edge")[0],
                                "edge 43 names cell 0, of which nodes 7 and 8 are no side"));
}

TEST_F(CheckMesh, TakesTwoWallsBackToBackForAThinWall) {
  // The diagonal of the first square, closed from both sides.
  const std::string edges = with_record(c.edges_text(), 0, "0 -1 6 0 -5");
  c.files["edges.txt"] = with_more(edges, "1 -1 0 6 -5");
  expect_clean();
}

TEST_F(CheckMesh, NamesCellsThatOverlap) {
  c.files["cells.txt"] = with_more(c.cells_text(), "3 0 6 2");
  c.files["initial.txt"] = c.initial_text() + "1 0 0\n";
  check();
  const std::vector<std::string> found = texts("warnings", "overlapping cells");
  ASSERT_EQ(found.size(), 1U) << report.dump(2);
  EXPECT_TRUE(support::contains(found[0], "cell 0, 1 and 24 share the side between nodes 0 and 6"));
}

TEST_F(CheckMesh, NamesACellThatIsNoTriangle) {
  c.nx = c.ny = 1;
  c.files["cells.txt"] = "1\n4 0 1 3 2\n";
  c.files["edges.txt"] = "4\n0 -1 0 1 -5\n0 -1 1 3 -5\n0 -1 3 2 -5\n0 -1 2 0 -5\n";
  c.files["initial.txt"] = "1 0 0\n";
  expect_warning("no triangle", {"cell 0 has 4 sides"});
}

TEST_F(CheckMesh, NamesTheEdgeWhoseNormalPointsIntoItsLeftCell) {
  c.files["edges.txt"] = with_record(c.edges_text(), 1, "0 -1 1 0 -5");
  expect_warning("edge orientation", {"edge 1", "into its left cell 0"});
}

TEST_F(CheckMesh, NamesTheEdgeWithoutLength) {
  c.files["nodes.txt"] = with_record(c.nodes_text(), 1, "0 0 0");
  c.set_times(0.0, 0.0);
  check();
  const std::vector<std::string> found = texts("warnings", "edge without length");
  ASSERT_EQ(found.size(), 1U);
  EXPECT_TRUE(support::contains(found[0], "edge 1 has no length, at (0, 0)"));
}

TEST_F(CheckMesh, NamesABoundaryBetweenTwoCells) {
  c.files["edges.txt"] = with_record(c.edges_text(), 0, "0 1 6 0 -5");
  expect_warning("two-sided boundary", {"edge 0", "code -5", "right cell 1"});
}

TEST_F(CheckMesh, NamesShoreEdgesThatHaveTheHigherCellFirst) {
  // The bed rises to the west; the water ends in the middle. Edges that run north-south have the
  // western, higher cell first.
  c.ny = 1;
  c.bed = [](double x, double) { return 4.0 - x; };
  c.data["model"]["zero depth value"] = 0.001;  // else thin films are told
  c.initial = [](double, double) { return support::InitialState{1.8}; };
  check();
  // Centres at 1/3, 2/3, ... : the beds are 3.33 and 3.67, 2.33 and 2.67, 1.33 and 1.67, ...
  const std::vector<std::string> found = texts("warnings", "shore orientation");
  ASSERT_EQ(found.size(), 1U) << report.dump(2);
  EXPECT_TRUE(
      support::contains(found[0], "the dry cell 2 first, beside water in the lower cell 5"));
  EXPECT_EQ(report["quality"]["edges with the higher cell first"], 3);
}

TEST_F(CheckMesh, AcceptsShoreEdgesThatHaveTheLowerCellFirst) {
  c.ny = 1;
  c.bed = [](double x, double) { return x; };
  c.data["model"]["zero depth value"] = 0.001;  // else thin films are told
  c.initial = [](double, double) { return support::InitialState{1.8}; };
  expect_clean();
}

TEST_F(CheckMesh, FindsPartsThatNoWaterPassesBetween) {
  c.nx = 2;
  c.ny = 1;
  const int between = c.edges_across(1).at(0);
  const std::string edges = with_record(c.edges_text(), between, "0 -1 1 4 -5");
  c.files["edges.txt"] = with_more(edges, "3 -1 4 1 -5");
  check();
  ASSERT_EQ(report["warnings"].size(), 1U) << report.dump(2);
  EXPECT_TRUE(
      support::contains(texts("warnings", "isolated region").at(0), "2 cells around cell 2"));
  EXPECT_EQ(report["quality"]["parts"], json::parse("[2, 2]"));
}

TEST_F(CheckMesh, NamesNodesInNoCell) {
  c.files["nodes.txt"] = with_more(c.nodes_text(), "100 100 0");
  expect_warning("unused node", {"node 20"});
}

// --- Quality ------------------------------------------------------------------------------------

TEST_F(CheckMesh, NamesCellsWithoutArea) {
  c.nx = c.ny = 1;
  c.files["nodes.txt"] = "4\n0 0 0\n1 0 0\n0.5 1 0\n2 2 0\n";
  c.files["cells.txt"] = "2\n3 0 1 2\n3 0 0 0\n";
  c.files["edges.txt"] = "3\n0 -1 0 1 -5\n0 -1 1 2 -5\n0 -1 2 0 -5\n";
  c.set_times(0.0, 0.0);
  check();
  ASSERT_EQ(texts("warnings", "zero area").size(), 1U) << report.dump(2);
  EXPECT_TRUE(support::contains(texts("warnings", "zero area")[0], "cell 1 at (0, 0)"));
}

TEST_F(CheckMesh, NamesCellsAndEdgesWhoseCoordinatesOverflow) {
  c.nx = c.ny = 1;
  c.files["nodes.txt"] = "4\n0 0 0\n1e308 0 0\n0 1e200 0\n1e308 1e200 0\n";
  check();
  EXPECT_EQ(texts("errors", "lost cell").size(), 2U) << report.dump(2);
  EXPECT_EQ(texts("errors", "lost cell").at(0),
            "cell 0: found a node at (1e+308, 0, 0), expected coordinates in metres whose sums and "
            "products are finite numbers");
  EXPECT_EQ(texts("errors", "lost edge").size(), 5U);
  EXPECT_TRUE(
      support::starts_with(texts("errors", "lost edge").at(0), "edge 0: found a node at ("));
}

TEST_F(CheckMesh, RefusesACellOfFewerThanThreeNodes) {
  c.nx = c.ny = 1;
  for (const std::string nodes : {"0", "1", "2"}) {
    c.files["cells.txt"] = "2\n" + nodes + " 0 1 3\n3 0 3 2\n";
    check();
    EXPECT_TRUE(support::starts_with(
        texts("errors", "malformed value").at(0),
        "cells.txt, line 2, cell 0 (of 0 to 1), number of nodes: found \"" + nodes + "\""));
  }
}

TEST_F(CheckMesh, RefusesAFirstStepThatIsTooSmall) {
  c.nx = c.ny = 1;
  c.files["nodes.txt"] = "3\n0 0 0\n1 0 0\n0.5 1e-9 0\n";
  c.files["cells.txt"] = "1\n3 0 1 2\n";
  c.files["edges.txt"] = "3\n0 -1 0 1 -5\n0 -1 1 2 -5\n0 -1 2 0 -5\n";
  expect_error("time step", {"the first time step is 7", "e-11 s"});
  EXPECT_EQ(texts("warnings", "sharp angle").size(), 1U);
}

TEST_F(CheckMesh, NamesTheSharpestAngle) {
  c.nx = c.ny = 1;
  c.files["nodes.txt"] = "3\n0 0 0\n100 0 0\n0 3.4920769 0\n";  // atan of 2 degrees
  c.files["cells.txt"] = "1\n3 0 1 2\n";
  c.files["edges.txt"] = "3\n0 -1 0 1 -5\n0 -1 1 2 -5\n0 -1 2 0 -5\n";
  expect_warning("sharp angle", {"cell 0", "an angle of 2 degrees"});
  EXPECT_NEAR(report["quality"]["smallest angle"].get<double>(), 2.0, 1e-6);
}

TEST_F(CheckMesh, WarnsOfGroundThatIsNoGround) {
  const support::Case usual = c;
  c.x0 = 50.0;
  c.y0 = 46.0;
  expect_warning("degrees", {"from (50, 46) to (54, 49): are they degrees?"});
  c = usual;
  c.size = 100.0;
  c.x0 = 612000.0;
  expect_warning("flat ground", {"all nodes lie at 0 m", "--terrain"});
  c.add_fixed_bed(c.per_cell("0.5"));
  expect_clean();
  c = usual;
  c.size = 10.0;
  c.bed = [](double x, double) { return x > 15.0 ? 50.0 : 0.0; };
  c.data["model"]["zero depth value"] = 0.001;  // else thin films are told
  c.initial = [](double, double) { return support::InitialState{60.0}; };
  expect_warning("slope", {"6 of 24 cells are steeper than 300 %, the steepest by 500 % at ("});
}

TEST_F(CheckMesh, WarnsOfACrackInsideAConnectedMesh) {
  // Four triangles around a node; the first and the last do not share their side.
  c.files["nodes.txt"] = "6\n0 0 0\n2 0 0\n2 2 0\n0 2 0\n1 1 0\n0 0 0\n";
  c.files["cells.txt"] = "4\n3 0 1 4\n3 1 2 4\n3 2 3 4\n3 3 5 4\n";
  c.files["edges.txt"] =
      "9\n0 1 1 4 -1\n1 2 2 4 -1\n2 3 3 4 -1\n0 -1 0 1 -5\n1 -1 1 2 -5\n2 -1 2 3 -5\n"
      "3 -1 3 5 -5\n3 -1 5 4 -5\n0 -1 4 0 -5\n";
  c.files["initial.txt"] = "1 0 0\n1 0 0\n1 0 0\n1 0 0\n";
  expect_warning("crack", {"1 pair of nodes on the boundary lie at one place, the first of them 0 "
                           "and 5 at (0, 0)",
                           "--merge-nodes"});
}

TEST_F(CheckMesh, ListsTheTenSmallestCells) {
  // One node moves: the two cells that lose most are the smallest.
  c.files["nodes.txt"] = with_record(c.nodes_text(), 6, "0.9 0.9 0");
  check();
  const json& cells = report["quality"]["smallest cells"];
  ASSERT_EQ(cells.size(), 10U);
  for (std::size_t i = 1; i < cells.size(); ++i)
    EXPECT_LE(cells[i - 1]["length"], cells[i]["length"]);
  EXPECT_TRUE(cells[0]["cell"] == 0 || cells[0]["cell"] == 1);
  EXPECT_NEAR(cells[0]["area"].get<double>(), 0.45, 1e-12);
}

TEST_F(CheckMesh, TellsTheFirstTimeStep) {
  check();
  const double length = 1.0 / (2.0 + std::sqrt(2.0));
  EXPECT_NEAR(report["first time step"].get<double>(), 0.5 * length / std::sqrt(9.81), 1e-12);
}

TEST_F(CheckMesh, WarnsOfAreasThatLoseDigitsFarFromTheOrigin) {
  c.size = 0.125;
  c.x0 = 262144.0;
  c.y0 = 4194304.0;
  expect_warning("area", {"cells lose more than 1e-06 of their area", "--origin 262000,4194000"});
}

TEST_F(CheckMesh, RefusesAMeshWithoutCells) {
  c.files["cells.txt"] = "0\n";
  c.files["edges.txt"] = "0\n";
  c.files["nodes.txt"] = "0\n";
  expect_error("no cells", {"cells.txt: the mesh has no cells"});
}

}  // namespace
