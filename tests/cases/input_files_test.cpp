// What input files may hold, and what the messages say about what they may not.
#include "cases/CaseTest.hpp"

namespace {

class InputFiles : public CaseTest {
 protected:
  /// The results of a run with every feature.
  std::string results() {
    run_well();
    return folder.read("out/gauges.txt") + folder.read("out/enveloppe.txt") +
           folder.read("sections.txt");
  }
  static std::string with_every_space_as(const std::string& text, const std::string& space) {
    std::string changed;
    for (const char character : text) {
      if (character == ' ' || character == '\n') {
        changed += space;
      } else {
        changed += character;
      }
    }
    return changed;
  }
};

TEST_F(InputFiles, MayBeLaidOutInAnyLines) {
  c = support::full_case();
  const std::string expected = results();
  const std::vector<std::string> names = {
      "nodes.txt", "cells.txt",      "edges.txt", "initial.txt",       "bed.txt",
      "rain.txt",  "hyetocells.txt", "soils.txt", "infiltracells.txt", "friction.txt"};
  for (const std::string space : {"\n", " ", "\t\r\n  "}) {
    c = support::full_case();
    for (const std::string& name : names) {
      c.write(folder);
      c.files[name] = with_every_space_as(folder.read(name), space);
    }
    EXPECT_EQ(results(), expected);
  }
}

TEST_F(InputFiles, MayHoldMoreThanIsNeeded) {
  c = support::full_case();
  const std::string expected = results();
  for (const char* name :
       {"nodes.txt", "cells.txt", "edges.txt", "initial.txt", "bed.txt", "friction.txt", "rain.txt",
        "hyetocells.txt", "soils.txt", "infiltracells.txt", "infiltrated.txt", "inflow.txt",
        "level.txt", "gauges_in.txt", "sections_in.txt", "snapshots_in.txt"}) {
    c.files[name] = folder.read(name) + "7 8 9 and words\n";
  }
  EXPECT_EQ(results(), expected);
}

TEST_F(InputFiles, NameTheNodeAndCoordinate) {
  c.files["nodes.txt"] = "2\n0 0 0\n1 high 0\n";
  expect_stop(
      "Error in file nodes.txt, line 3, node 1 (of 0 to 1), y: found \"high\", expected a finite "
      "number.\n");
}

TEST_F(InputFiles, NameTheCellOfANodeThatDoesNotExist) {
  c.files["cells.txt"] = "2\n3 0 1 5\n3 0 1 20\n";
  expect_stop(
      "Error in file cells.txt, line 3, cell 1 (of 0 to 1), node: found \"20\", expected an index "
      "from 0 to 19.\n");
}

TEST_F(InputFiles, NameTheEdgeOfACellThatDoesNotExist) {
  c.files["edges.txt"] = "2\n0 -1 0 1 -5\n24 1 0 1 -1\n";
  expect_stop(
      "Error in file edges.txt, line 3, edge 1 (of 0 to 1), left cell: found \"24\", expected an "
      "index from 0 to 23.\n");
  c.files["edges.txt"] = "2\n0 -1 0 1 -5\n2 24 0 1 -1\n";
  expect_stop(
      "Error in file edges.txt, line 3, edge 1 (of 0 to 1), right cell: found \"24\", expected an "
      "index from 0 to 23, or -1 on a boundary.\n");
}

TEST_F(InputFiles, NameTheInteriorEdgeWithoutARightCell) {
  c.files["edges.txt"] = "1\n0 -1 0 1 -1\n";
  expect_stop(
      "Error in file edges.txt, line 2, edge 0 (of 0 to 0), boundary code: found \"-1\", expected "
      "a boundary condition, since the edge has no right cell.\n");
}

TEST_F(InputFiles, NameTheCellAtWhichAFieldEnds) {
  c.files["initial.txt"] = "1 0 0\n1 0 0\n1 0\n";
  expect_stop(
      "Error in file initial.txt, line 4, cell 2 (of 0 to 23), unit discharge qy: found the end of "
      "the file, expected a finite number.\n");
  c.files.erase("initial.txt");
  c.add_friction("0.03 0.03");
  expect_stop(
      "Error in file friction.txt, line 1, cell 2 (of 0 to 23), Manning coefficient: found the end "
      "of the file, expected a finite number.\n");
}

TEST_F(InputFiles, EndTheRunForABoundaryCodeThatDoesNotExist) {
  c.north = "7";
  expect_stop("Boundary condition of type 7 not defined!\n");
}

TEST_F(InputFiles, EndTheRunWithStatusOneForAnIdThatDoesNotExist) {
  c.add_rain("1\n7 1 1\n0 0.001\n", c.per_cell("8"));
  const support::RunResult rain = run();
  EXPECT_EQ(rain.status, 1);
  EXPECT_EQ(rain.out, "Error: source term ID 8 not found\n");

  c = support::Case();
  c.add_infiltration("1\n7 Horton 0 0 0 0 0\n", c.per_cell("-2"));
  const support::RunResult infiltration = run();
  EXPECT_EQ(infiltration.status, 1);
  EXPECT_EQ(infiltration.out, "Error: source term ID -2 not found\n");
}

TEST_F(InputFiles, EndTheRunForASoilOfUnknownType) {
  c.add_infiltration("1\n7 horton 0 0 0 0 0\n", c.per_cell("-1"));
  const support::RunResult result = run();
  EXPECT_EQ(result.status, 255);
  EXPECT_EQ(result.out, "Infiltration type not recognized. Type: horton\n");
}

TEST_F(InputFiles, OfSourcesMayLeaveEveryCellWithoutASource) {
  c.add_sections({c.edges_across(2)}, 0.1);
  c.add_gauges({{0.6, 0.2}}, 0.1);
  const std::string expected = results();
  c.add_rain("1\n7 1 0\n0 100\n", c.per_cell("-1"));
  c.add_infiltration("1\n7 Horton 0.01 0.01 0 1 0\n", c.per_cell("-1"));
  EXPECT_EQ(results(), expected);
}

TEST_F(InputFiles, RefuseACellOfFewerThanThreeNodes) {
  c.nx = c.ny = 1;
  for (const std::string nodes : {"0 0 0 0", "1 0 0 0", "2 0 1 0"}) {
    c.files["cells.txt"] = "2\n" + nodes + "\n3 0 3 2\n";
    expect_stop("Error in file cells.txt, line 2, cell 0 (of 0 to 1), number of nodes: found \"" +
                nodes.substr(0, 1) + "\", expected at least 3.\n");
  }
}

TEST_F(InputFiles, NameTheFirstCellWhoseCoordinatesOverflow) {
  c.nx = c.ny = 1;
  const std::string end =
      "), expected coordinates in metres whose sums and products are finite numbers.\n";
  c.files["nodes.txt"] = "4\n0 0 0\n1 0 0\n0 1 0\n1 1e308 0\n";
  expect_stop("Error in file cells.txt, line 2, cell 0 (of 0 to 1): found a node at (1, 1e+308, 0" +
              end);
  c.files["nodes.txt"] = "4\n1e308 1e308 0\n1e308 1e308 0\n1e308 1e308 0\n1e308 1e308 0\n";
  expect_stop(
      "Error in file cells.txt, line 2, cell 0 (of 0 to 1): found a node at (1e+308, 1e+308, 0" +
      end);
}

TEST_F(InputFiles, NameTheFirstEdgeWhoseCoordinatesOverflow) {
  c.nx = c.ny = 1;
  c.files["nodes.txt"] = "5\n0 0 0\n1 0 0\n0 1 0\n1 1 0\n1e200 0 0\n";
  c.files["edges.txt"] = "2\n0 -1 0 1 -5\n0 -1 0 4 -5\n";
  expect_stop(
      "Error in file edges.txt, line 3, edge 1 (of 0 to 1): found a node at (1e+200, 0, 0), "
      "expected coordinates in metres whose sums and products are finite numbers.\n");
}

}  // namespace
