// The flux scheme of a data file: what runs it, what names it, and what refuses it.
#include "cases/ReportTest.hpp"

namespace {

using support::RunResult;

class Schemes : public ReportTest {
 protected:
  void use(const std::string& scheme) { c.data["model"]["flux scheme"] = scheme; }
  /// 2 m of water west of x = 2, and 1 m east of it.
  void break_a_dam() {
    c.initial = [](double x, double) { return support::InitialState{x < 2.0 ? 2.0 : 1.0}; };
  }
};

TEST_F(Schemes, ThePositiveOnesKeepALakeAtRest) {
  c.add_snapshots({0.5});
  for (const char* const scheme : {"HLL1", "HLL2"}) {
    use(scheme);
    run_well();
    for (const std::string& h : column("out/pic_0_50.txt", 3)) EXPECT_EQ(std::stod(h), 1.0);
  }
}

TEST_F(Schemes, HaveResultsOfTheirOwn) {
  break_a_dam();
  c.add_snapshots({0.5});
  std::vector<std::string> results;
  for (const char* const scheme : {"LHLLC", "HLL1", "HLL2"}) {
    use(scheme);
    run_well();
    results.push_back(folder.read("out/pic_0_50.txt"));
  }
  EXPECT_NE(results[0], results[1]);
  EXPECT_NE(results[0], results[2]);
  EXPECT_NE(results[1], results[2]);
}

TEST_F(Schemes, AreNamedInTheLogAndInTheReport) {
  for (const char* const scheme : {"LHLLC", "HLL1", "HLL2"}) {
    use(scheme);
    EXPECT_EQ(run_with_report().status, 0);
    EXPECT_EQ(report()["execution"]["flux_scheme"], scheme);
    const bool is_first = std::string(scheme) == "LHLLC";
    EXPECT_EQ(support::contains(folder.read("log.txt"),
                                "hydrodynamic\n  Flux scheme: " + std::string(scheme) + "\n"),
              !is_first);
  }
}

TEST_F(Schemes, ThePositiveOnesAdvanceTheClockByTheStepThatWasApplied) {
  break_a_dam();
  record_passes();
  use("HLL2");
  run_well();
  const std::vector<double> times = pass_times();
  // The first step is that of water 2 m deep.
  EXPECT_NEAR(times.at(1), step_at_rest() / std::sqrt(2.0), 1e-6);
  EXPECT_LT(times.at(2) - times.at(1), 0.99 * times.at(1));
}

TEST_F(Schemes, ThePositiveOnesKeepTheirBooksClosed) {
  c = support::full_case();
  for (const char* const scheme : {"HLL1", "HLL2"}) {
    use(scheme);
    ASSERT_EQ(run_with_report().status, 0);
    EXPECT_LE(std::fabs(report()["water"]["relative_error"].get<double>()), 1e-13);
    EXPECT_GT(report()["water"]["rain_m3"].get<double>(), 0.0);
  }
}

TEST_F(Schemes, TheReportBooksWhatIsTakenFromDrainingFilms) {
  c.bed = [](double x, double) { return 2.0 - 2.0 * std::floor(x / 2.0); };
  c.initial = [](double x, double) { return support::InitialState{x < 2.0 ? 2.3 : -9.0}; };
  c.east = "-2";
  c.set_times(0.0, 5.0);
  use("HLL2");
  ASSERT_EQ(run_with_report().status, 0);
  EXPECT_GT(report()["velocity"]["momentum_taken_from_films_m4_per_s"].get<double>(), 0.0);
  use("LHLLC");
  ASSERT_EQ(run_with_report().status, 0);
  EXPECT_FALSE(report()["velocity"].contains("momentum_taken_from_films_m4_per_s"));
}

/// A dam break over sand that runs out in the east, between a discharge, a level and an outlet.
TEST_F(Schemes, TheFirstOrderOneMovesSandAndKeepsItsBooksClosed) {
  c.nx = 12;
  break_a_dam();
  lay_sand(c, "0.2");
  std::string layer;
  for (int cell = 0; cell < c.n_cells(); ++cell) {
    layer += c.center(cell).x < 6.0 ? "0.2\n" : "0.0001\n";
  }
  c.files["layer.txt"] = layer;
  c.add_friction(c.per_cell("0.05"));
  c.west = "-3 -1.5";
  c.north = "-4 1.2";
  c.east = "-2";
  c.set_times(0.0, 20.0);
  c.add_snapshots({10.0});
  use("HLL1");
  std::vector<std::string> results;
  on_every_path([&] {
    EXPECT_EQ(run_with_report().err, "");
    const json sand = report()["sediment"];
    EXPECT_LE(std::fabs(sand["relative_error"].get<double>()), 1e-13);
    EXPECT_EQ(sand["created_by_clamps_m3"].get<double>(), 0.0);
    EXPECT_LT(sand["final_m3"].get<double>(), 0.999 * sand["initial_m3"].get<double>());
    EXPECT_LE(std::fabs(report()["water"]["relative_error"].get<double>()), 1e-13);
    for (const std::string& hs : column("out/pic_10_00.txt", 6)) EXPECT_GE(std::stod(hs), 0.0);
    results.push_back(folder.read("out/pic_10_00.txt"));
  });
  EXPECT_EQ(results[0], results[1]);
  EXPECT_NE(column("out/pic_10_00.txt", 7)[0], "0");
}

TEST_F(Schemes, TheSecondOrderOneIsNotForSediments) {
  lay_sand(c, "1");
  use("HLL2");
  expect_stop(
      "Error. The model with sediments does not have the flux scheme \"HLL2\"; use \"HLL1\" or "
      "\"LHLLC\".\n");
}

TEST_F(Schemes, ThePositiveOnesTakeTrianglesAlone) {
  c.files["nodes.txt"] = "4\n0 0 0\n1 0 0\n1 1 0\n0 1 0\n";
  c.files["cells.txt"] = "1\n4 0 1 2 3\n";
  c.files["edges.txt"] = "4\n0 -1 0 1 -5\n0 -1 1 2 -5\n0 -1 2 3 -5\n0 -1 3 0 -5\n";
  c.files["initial.txt"] = "1 0 0\n";
  use("HLL1");
  const RunResult result = run();
  EXPECT_EQ(result.status, 255);
  EXPECT_TRUE(support::contains(result.err,
                                "Error. The flux scheme HLL1 takes triangles alone, and cell 0 "
                                "(counted from 0) has 4 nodes.\n"))
      << result.err;
}

}  // namespace
