// Water that no scheme should leave, and what is said of it: depths below zero, soils that give out
// water, films that race.
#include "cases/ReportTest.hpp"

namespace {

using support::RunResult;

constexpr const char* advice = " The \"flux scheme\" \"HLL2\" keeps depths at or above zero.";

class StrangeWater : public ReportTest {
 protected:
  /// A plane of 5 % that falls to the east, under 50 mm/h of rain.
  void let_it_rain_on_a_plane() {
    c.nx = 10;
    c.bed = [](double x, double) { return 0.05 * (10.0 - x); };
    c.initial = [](double, double) { return support::InitialState{-1.0}; };
    c.east = "-2";
    c.set_times(0.0, 60.0);
    c.add_rain("1\n1 2 1\n0 1.389e-5 3600 0\n", c.per_cell("1"));
    c.add_friction(c.per_cell("0.03"));
  }
};

TEST_F(StrangeWater, BelowZeroIsToldWhenItComesAndAtTheEnd) {
  let_it_rain_on_a_plane();
  on_every_path([&] {
    const RunResult result = run();
    EXPECT_EQ(result.status, 0);
    const std::vector<std::string> lines = support::lines(result.err);
    ASSERT_EQ(lines.size(), 2U) << result.err;
    EXPECT_TRUE(support::starts_with(lines[0],
                                     "Warning: at t = 13.0983 s 44.4 % of the water is "
                                     "missing in cells whose depth is below zero; "))
        << lines[0];
    EXPECT_TRUE(support::starts_with(lines[1], "Warning: the depth of ")) << lines[1];
    EXPECT_TRUE(support::contains(lines[1], " % of the water is missing, ")) << lines[1];
    for (const std::string& line : lines) {
      EXPECT_TRUE(support::contains(
          line, "seen first at t = 13.0983 s in cell 1 (counted from 0), centre (0.333333"))
          << line;
      EXPECT_TRUE(support::contains(line, advice)) << line;
    }
  });
}

TEST_F(StrangeWater, TheAdviceIsTrue) {
  let_it_rain_on_a_plane();
  c.data["model"]["flux scheme"] = "HLL2";
  EXPECT_EQ(run_with_report().err, "");
  const json below_zero = report()["below_zero"];
  EXPECT_EQ(below_zero["cells_at_end"], 0);
  EXPECT_EQ(below_zero["missing_m3"], 0.0);
  EXPECT_EQ(below_zero["share"], 0.0);
  EXPECT_TRUE(below_zero["first_seen"].is_null());
  EXPECT_EQ(report()["given_out_by_soils_m3"], 0.0);
}

TEST_F(StrangeWater, NoSchemeIsAdvisedThatTheModelDoesNotHave) {
  let_it_rain_on_a_plane();
  lay_sand(c, "0.001");
  const RunResult result = run();
  EXPECT_TRUE(support::contains(result.err, " % of the water is missing")) << result.err;
  EXPECT_FALSE(support::contains(result.err, "HLL2")) << result.err;
  EXPECT_TRUE(support::contains(result.err, "\"HLL1\" keeps depths at or above zero"))
      << result.err;
  c.data["model"]["flux scheme"] = "HLL1";
  EXPECT_EQ(run_with_report().err, "");
  EXPECT_EQ(report()["below_zero"]["missing_m3"], 0.0);
}

TEST_F(StrangeWater, BelowZeroIsInTheReport) {
  let_it_rain_on_a_plane();
  std::vector<json> on_paths;
  on_every_path([&] {
    EXPECT_EQ(run_with_report().status, 0);
    const json all = report();
    const json& below_zero = all["below_zero"];
    const double missing = below_zero["missing_m3"];
    const double held = all["water"]["final_m3"].get<double>() + missing;
    EXPECT_NEAR(below_zero["share"], missing / (held + missing), 1e-12);
    EXPECT_GT(below_zero["cells_at_end"].get<int>(), 0);
    EXPECT_LT(below_zero["deepest_m"].get<double>(), 0.0);
    EXPECT_EQ(below_zero["first_seen"]["cell"], 1);
    EXPECT_NEAR(below_zero["first_seen"]["time_s"], 13.0983, 1e-4);
    on_paths.push_back({all["below_zero"], all["films"], all["looks"]});
  });
  EXPECT_EQ(on_paths, std::vector<json>(on_paths.size(), on_paths.front()));
}

TEST_F(StrangeWater, WhatSoilsGiveOutIsTold) {
  let_it_rain_on_a_plane();
  c.set_times(0.0, 300.0);
  c.add_infiltration("1\n1 Horton 1e-5 1e-5 0 10 0\n", c.per_cell("1"));
  on_every_path([&] {
    const RunResult result = run_with_report();
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(support::contains(result.err,
                                  "Warning: soils gave out 0.73653 m3 of water or more, "
                                  "seen first at t = 28.5128 s in cell 1 (counted "))
        << result.err;
    EXPECT_TRUE(support::contains(result.err, advice)) << result.err;
    const json all = report();
    EXPECT_GT(all["given_out_by_soils_m3"].get<double>(),
              -all["water"]["infiltrated_m3"].get<double>());
    EXPECT_LT(all["water"]["infiltrated_m3"].get<double>(), -0.6);
  });
}

TEST_F(StrangeWater, ASoilThatRecoversGivesNothingOut) {
  c.add_infiltration("1\n1 Horton 1e-5 1e-5 0 0.6 0.1\n", c.per_cell("1"));
  c.add_initial_infiltration(c.per_cell("0.5"));
  EXPECT_EQ(run_with_report().err, "");
  EXPECT_LT(report()["water"]["infiltrated_m3"].get<double>(), 0.1);
  EXPECT_EQ(report()["given_out_by_soils_m3"], 0.0);
}

TEST_F(StrangeWater, FilmsThatRaceAreTold) {
  c.initial = [](double x, double) { return support::InitialState{0.01, x > 3.0 ? 0.1 : 0.0}; };
  on_every_path([&] {
    const RunResult result = run_with_report();
    EXPECT_TRUE(support::contains(
        result.err,
        "Warning: water ran at 10 m/s in a depth of 0.01 m, which is beyond a Froude number of 20, "
        "seen first at t = 0 s in cell 6 (counted from 0), centre (3.66666666667, "))
        << result.err;
    EXPECT_TRUE(support::contains(result.err, "; at most 6 cells at one time did so.\n"))
        << result.err;
    const json films = report()["films"];
    EXPECT_EQ(films["froude_number_above"], 20.0);
    EXPECT_EQ(films["most_cells"], 6);
    EXPECT_GE(films["steps_with_any"].get<int>(), 1);
    EXPECT_EQ(films["first_seen"]["cell"], 6);
    EXPECT_EQ(films["first_seen"]["velocity_m_per_s"], 10.0);
  });
}

TEST_F(StrangeWater, FilmsAreCountedAfterEveryStep) {
  c.initial = [](double x, double) { return support::InitialState{0.01, x > 3.0 ? 0.1 : 0.0}; };
  std::vector<json> on_paths;
  for (const char* scheme : {"LHLLC", "HLL2"}) {
    c.data["model"]["flux scheme"] = scheme;
    on_paths.clear();
    on_every_path([&] {
      run_with_report();
      on_paths.push_back(report()["films"]);
      // Looks are 64 steps apart: they see these films only once.
      EXPECT_GT(on_paths.back()["steps_with_any"], 2) << on_paths.back();
      EXPECT_LT(on_paths.back()["steps_with_any"], report()["steps"]["computed"]);
    });
    EXPECT_EQ(on_paths, std::vector<json>(on_paths.size(), on_paths.front()));
  }
}

TEST_F(StrangeWater, FilmsThatAreNoWaterAreNotTold) {
  c.initial = [](double, double) { return support::InitialState{0.01, 0.1}; };
  c.data["model"]["zero depth value"] = 0.02;
  EXPECT_FALSE(support::contains(run_with_report().err, "Froude"));
  EXPECT_EQ(report()["films"]["most_cells"], 0);
}

}  // namespace
