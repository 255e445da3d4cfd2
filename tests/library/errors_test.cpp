// What is wrong is thrown as an Error that says what was found and what is expected.
#include <cmath>
#include <functional>
#include <limits>

#include "library/LibraryTest.hpp"
#include "support/text.hpp"

namespace {

using quillmere::Case;
using quillmere::EdgeKind;
using quillmere::Error;
using quillmere::Simulation;

constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();

/// The text of the Error that an action ends with; empty without one.
std::string error_of(const std::function<void()>& action) {
  try {
    action();
  } catch (const Error& error) {
    return error.what();
  }
  return "";
}

/// That with which a pool is refused after a change.
std::string error_of_pool(const std::function<void(Case&)>& change) {
  Case contents = pool();
  change(contents);
  return error_of([&] { Simulation simulation(contents); });
}

using LibraryErrors = LibraryFiles;

}  // namespace

TEST_F(LibraryErrors, OfFilesNameFilePlaceFoundAndExpected) {
  support::Case c;
  c.files["initial.txt"] = "0 0 x\n";
  EXPECT_TRUE(support::contains(refusal_of(c), "initial.txt"));
  EXPECT_TRUE(support::contains(refusal_of(c), "\"x\"")) << refusal_of(c);
  EXPECT_TRUE(support::contains(refusal_of(c), "line 1")) << refusal_of(c);
  c = {};
  c.west = "-99";
  EXPECT_EQ(refusal_of(c), "Boundary condition of type -99 not defined!");
  c = {};
  c.add_rain("1\n7 1 1\n0 0.001\n", c.per_cell("8"));
  EXPECT_EQ(refusal_of(c), "Error: source term ID 8 not found");
  c = {};
  c.data["model"].erase("name");
  EXPECT_EQ(refusal_of(c), "Error. The following key couldn't be found in the datafile: name");
  c = {};
  c.data["model"]["name"] = "Other";
  EXPECT_EQ(refusal_of(c), "Physical model not recognized");
  EXPECT_EQ(error_of([] { Simulation::open("missing.json"); }),
            "Fatal error. Impossible to open file missing.json.");
  folder.write("broken.json", "{");
  EXPECT_NE(error_of([] { Simulation::open("broken.json"); }), "");
}

TEST(ErrorsOfArrays, NameThePlace) {
  EXPECT_EQ(error_of_pool([](Case& c) { c.t_end = not_a_number; }),
            "end time: found nan, expected a finite number.");
  EXPECT_EQ(error_of_pool([](Case& c) { c.y.pop_back(); }),
            "y of the nodes: found 34 values, expected 35.");
  EXPECT_EQ(error_of_pool([](Case& c) { c.z[3] = not_a_number; }),
            "z of the nodes 3 (counted from 0): found nan, expected a finite number.");
  EXPECT_EQ(error_of_pool([](Case& c) { c.cell_nodes[4] = 35; }),
            "cell 1 (counted from 0), node: found 35, expected an index from 0 to 34.");
  EXPECT_NE(error_of_pool([](Case& c) { c.cell_nodes.pop_back(); }), "");
  EXPECT_NE(error_of_pool([](Case& c) { c.cell_nodes.clear(); }), "");
  EXPECT_NE(error_of_pool([](Case& c) { c.first_node = {0, 2, 144}; }), "");
  EXPECT_NE(error_of_pool([](Case& c) { c.first_node = {0, 3, 600}; }), "");
  EXPECT_NE(error_of_pool([](Case& c) { c.first_node = {0, 150, 144}; }), "");
  EXPECT_NE(error_of_pool([](Case& c) { c.x[0] = 1e300; }), "");
  EXPECT_EQ(error_of_pool([](Case& c) { c.level.pop_back(); }),
            "levels: found 47 values, expected 48.");
  EXPECT_EQ(error_of_pool([](Case& c) { c.manning = {0.03}; }),
            "Manning coefficients: found 1 values, expected 48.");
  EXPECT_EQ(error_of_pool([](Case& c) { c.edges[2].left = 48; }),
            "edge 2 (counted from 0), left cell: found 48, expected an index from 0 to 47.");
  EXPECT_NE(error_of_pool([](Case& c) { c.edges[2].right = 48; }), "");
  EXPECT_NE(error_of_pool([](Case& c) { c.edges[2].node2 = -1; }), "");
  EXPECT_NE(error_of_pool([](Case& c) { c.edges[0] = {0, 0, 0, 1, EdgeKind::interior}; }), "");
  EXPECT_NE(error_of_pool([](Case& c) { c.edges[0] = {0, -1, 0, 1, EdgeKind::interior}; }), "");
  EXPECT_NE(error_of_pool([](Case& c) { c.edges[0].kind = static_cast<EdgeKind>(7); }), "");
  EXPECT_NE(error_of_pool([](Case& c) { c.edges[0].kind = EdgeKind::hydrograph; }), "");
  EXPECT_NE(error_of_pool([](Case& c) { c.series = {{{0.0}, {1.0}}}; }), "");
  EXPECT_NE(error_of_pool([](Case& c) { c.series = {{{0.0, 0.0}, {1.0, 2.0}}}; }), "");
  EXPECT_NE(error_of_pool([](Case& c) { c.series = {{{0.0, 1.0}, {1.0}}}; }), "");
  EXPECT_EQ(error_of_pool([](Case&) {}), "");
}

TEST(ErrorsOfArrays, AThirdCellAtASideIsRefused) {
  Case contents = pool(1, 1);
  contents.cell_nodes.insert(contents.cell_nodes.end(), {0, 1, 3});
  EXPECT_TRUE(support::contains(error_of([&] { quillmere::edges_between(contents); }),
                                "cell 2 (counted from 0)"));
}

TEST(ErrorsOfCalls, LeaveTheSimulationAsItIs) {
  Simulation simulation(pool());
  const auto state = simulation.save();
  const std::vector<int> cell = {3}, beyond = {48};
  const std::vector<double> one = {1.0}, two = {1.0, 2.0}, negative = {-1.0},
                            no_number = {not_a_number};
  std::vector<double> few(47);
  const int wall = western_edges(pool()).front();
  for (const std::function<void()>& call : std::vector<std::function<void()>>{
           [&] { simulation.set_depth(few); }, [&] { simulation.set_depth(beyond, one); },
           [&] { simulation.set_depth(cell, two); }, [&] { simulation.set_depth(cell, negative); },
           [&] { simulation.set_depth(cell, no_number); },
           [&] { simulation.set_discharges(few, few); },
           [&] { simulation.set_discharges(cell, one, two); },
           [&] { simulation.set_discharges(cell, one, no_number); },
           [&] { simulation.set_rain(-1.0); }, [&] { simulation.set_rain(beyond, one); },
           [&] { simulation.set_rain(cell, no_number); }, [&] { simulation.set_boundary(-1, 1.0); },
           [&] { simulation.set_boundary(simulation.number_of_edges(), 1.0); },
           [&] { simulation.set_boundary(wall, 1.0); }, [&] { simulation.inflow(2); },
           [&] { simulation.read(quillmere::Field::depth, few); },
           [&] { simulation.read(static_cast<quillmere::Field>(9)); },
           [&] { simulation.run_until(not_a_number); }}) {
    EXPECT_THROW(call(), Error);
  }
  EXPECT_EQ(simulation.save(), state);
}

TEST(ErrorsOfCalls, ABoundaryTakesANumberOnly) {
  const Case contents = open_pool(EdgeKind::discharge, 0.0);
  Simulation simulation(contents);
  EXPECT_EQ(
      error_of([&] { simulation.set_boundary(western_edges(contents).front(), not_a_number); }),
      "boundary: found nan, expected a finite number.");
  EXPECT_EQ(error_of([] { Simulation(pool()).set_boundary(0, 1.0); }),
            "edge 0: found the boundary wall, expected one that imposes a discharge or a level.");
}

TEST(ErrorsOfSteps, ACollapsedStepIsOne) {
  Case contents = pool();
  contents.courant_number = 1e-12;
  Simulation simulation(contents);
  EXPECT_TRUE(support::starts_with(error_of([&] { simulation.step(); }), "dt too small! At t = 0"));
}

TEST(Warnings, AreKeptUntilTheyAreTaken) {
  Case contents = pool();
  std::swap(contents.edges[0].node1, contents.edges[0].node2);
  contents.courant_number = 5.0;
  Simulation simulation(contents);
  const std::vector<std::string> warnings = simulation.take_warnings();
  ASSERT_EQ(warnings.size(), 2U);
  EXPECT_TRUE(support::starts_with(warnings[0], "edge 0 (counted from 0) has a normal that points"))
      << warnings[0];
  EXPECT_TRUE(simulation.take_warnings().empty());
}
