#include <csignal>
#include <filesystem>
#include <set>

#include "support/left_behind.hpp"
#include "tools/mesh/CheckTest.hpp"

namespace {

class Check : public CheckTest {
 protected:
  std::set<std::string> files() const {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.path())) {
      names.insert(entry.path().string());
    }
    return names;
  }
};

TEST_F(Check, AcceptsACaseWithEverything) {
  c = support::full_case();
  check();
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(report["errors"].empty());
}

TEST_F(Check, PutsErrorsBeforeWarnings) {
  c.data["model"]["conditions"]["fricton"] = "friction.txt";
  c.files["initial.txt"] = "x 0 0\n" + c.initial_text();
  c.write(folder);
  const support::RunResult result = mesh_tool({"check", ".", "--quick"});
  EXPECT_EQ(result.status, 1);
  EXPECT_TRUE(
      support::starts_with(result.out, "The simulator refuses this case: 1 error, 1 warning"));
  const std::size_t error = result.out.find("\nError: ");
  const std::size_t warning = result.out.find("\nWarning: ");
  ASSERT_NE(error, std::string::npos);
  ASSERT_NE(warning, std::string::npos);
  EXPECT_LT(error, warning);
}

TEST_F(Check, NamesTheSchemaWhereItWouldHaveToldASlip) {
  const auto has_hint = [this] {
    c.write(folder);
    const std::string text = mesh_tool({"check", ".", "--quick"}).out;
    return support::contains(text, "\nHint: ") && support::contains(text, "quillmere --schema");
  };
  EXPECT_FALSE(has_hint());
  c.data["tend"] = "1";
  EXPECT_TRUE(has_hint());
  c.data["tend"] = 1;
  c.data["CLF"] = 0.9;
  EXPECT_TRUE(has_hint());
}

TEST_F(Check, CountsFindingsFromTheEleventhOfAKindOn) {
  c.add_friction(c.per_cell("0.03"));
  std::string edges = c.edges_text();
  for (int i = 0; i < 13; ++i) edges = with_more(edges, "0 -1 0 1 -5");
  c.files["edges.txt"] = edges;
  check();
  const std::vector<std::string> found = texts("warnings", "duplicate edge");
  ASSERT_EQ(found.size(), 11U);
  EXPECT_EQ(found.back(), "3 more of this kind");
  EXPECT_EQ(report["warning count"], 13);
}

TEST_F(Check, SaysTheSameAsTextAndAsJson) {
  c = support::full_case();
  c.data["output"]["guages"] = 1;
  check();
  const std::string text = mesh_tool({"check", ".", "--quick"}).out;
  for (const json& finding : report["warnings"]) {
    EXPECT_TRUE(support::contains(text, "\nWarning: " + finding["text"].get<std::string>()));
  }
  for (const char* const part :
       {"20 nodes, 24 cells, 43 edges", "x 0 to 4 m, y 0 to 3 m", "smallest angle 45 degrees",
        "1 connected part", "Smallest cells", "limnigraph", "inflow.txt", "-0.1 m2/s",
        "Water at the start", "first time step"}) {
    EXPECT_TRUE(support::contains(text, part)) << part << "\n" << text;
  }
}

TEST_F(Check, MeasuresMemoryAndWallTime) {
  c.set_times(0.0, 100000.0);
  c.write(folder);
  const support::RunResult result = mesh_tool({"check", ".", "--json"});
  ASSERT_EQ(result.status, 0) << result.out;
  const json measurement = json::parse(result.out)["measurement"];
  const double steps = measurement["steps taken"];
  EXPECT_GE(steps, 3.0);
  EXPECT_GT(measurement["memory"], 1e6);
  EXPECT_GT(measurement["time per step"], 0.0);
  EXPECT_GT(measurement["simulated time"], 0.0);
  // Water at rest keeps its step: the number of steps is known.
  const double expected = 100000.0 / json::parse(result.out)["first time step"].get<double>();
  EXPECT_NEAR(measurement["expected steps"].get<double>(), expected, 1e-3 * expected);
  EXPECT_GT(measurement["expected wall time"], measurement["time per step"]);
}

TEST_F(Check, CountsTheStepsOfAShortRun) {
  c.write(folder);
  report = json::parse(mesh_tool({"check", ".", "--json"}).out);
  const double step = report["first time step"];
  EXPECT_EQ(report["measurement"]["expected steps"], std::ceil(1.0 / step));
}

TEST_F(Check, LeavesTheCaseAsItIs) {
  c = support::full_case();
  c.write(folder);
  folder.write("log.txt", "an earlier log");
  folder.write("out/gauges.txt", "earlier gauges");
  folder.write("out/enveloppe.txt", "an earlier envelope");
  folder.write("sections.txt", "earlier sections");
  const std::set<std::string> before = files();
  ASSERT_EQ(mesh_tool({"check", "."}).status, 0);
  EXPECT_EQ(files(), before);
  EXPECT_EQ(folder.read("log.txt"), "an earlier log");
  EXPECT_EQ(folder.read("out/gauges.txt"), "earlier gauges");
  EXPECT_EQ(folder.read("out/enveloppe.txt"), "an earlier envelope");
  EXPECT_EQ(folder.read("sections.txt"), "earlier sections");
}

TEST_F(Check, ReportsARunThatGivesUpAfterItsFirstStep) {
  c.west = "-3 -1e15";
  c.write(folder);
  ASSERT_NE(support::run_case(folder).status, 0);
  const support::RunResult result = mesh_tool({"check", ".", "--json"});
  EXPECT_EQ(result.status, 1);
  report = json::parse(result.out);
  ASSERT_EQ(texts("errors", "trial run").size(), 1U) << result.out;
  EXPECT_TRUE(support::contains(texts("errors", "trial run")[0], "dt too small!"));
}

TEST_F(Check, TellsWhatItsMeasuredRunLostBelowZero) {
  c.initial = [](double, double) { return support::InitialState{0.05}; };
  c.east = "-3 0.4";  // takes more than there is
  c.write(folder);
  report = json::parse(mesh_tool({"check", ".", "--json"}).out);
  ASSERT_EQ(texts("warnings", "below zero").size(), 1U) << report.dump(2);
  const std::string text = texts("warnings", "below zero")[0];
  EXPECT_TRUE(support::contains(text, " of the measured run ")) << text;
  EXPECT_TRUE(support::contains(text, " % of the water is missing in cells whose depth")) << text;
  c.data["model"]["flux scheme"] = "HLL2";
  c.write(folder);
  report = json::parse(mesh_tool({"check", ".", "--json"}).out);
  EXPECT_TRUE(texts("warnings", "below zero").empty()) << report.dump(2);
}

TEST_F(Check, EndedFromOutsideItLeavesNothingBehind) {
  c.set_times(0.0, 1e6);  // the measurement lasts as long as it may
  c.write(folder);
  for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGKILL}) {
    SCOPED_TRACE(signal);
    support::expect_nothing_left_behind(folder, {QUILLMERE_MESH_PROGRAM, "check", "."}, signal,
                                        [](const std::filesystem::path& place) {
                                          return support::has_file_below(place, "messages.txt");
                                        });
  }
}

TEST_F(Check, FindsTheFilesOfADataFileFromTheWorkingDirectory) {
  c.write(folder);
  folder.write("scenarios/flood.json", c.data.dump());
  EXPECT_EQ(mesh_tool({"check", "scenarios/flood.json"}).status, 0);
  EXPECT_EQ(mesh_tool({"check", "scenarios"}).status, 1);  // holds no data.json
}

TEST_F(Check, EndsWithStatusTwoAfterWrongUsage) {
  EXPECT_EQ(mesh_tool({"check"}).status, 2);
  EXPECT_EQ(mesh_tool({"check", ".", "--fast"}).status, 2);
  EXPECT_EQ(mesh_tool({"chek", "."}).status, 2);
  EXPECT_EQ(mesh_tool({"check", "--help"}).status, 0);
}

}  // namespace
