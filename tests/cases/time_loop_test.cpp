#include <cstdio>

#include "cases/CaseTest.hpp"

namespace {

using support::RunResult;

class TimeLoop : public CaseTest {
 protected:
  /// A run whose log, as far as the loop has part in it, ends with these two lines.
  void expect_collapse_at_start(const RunResult& result, const std::string& start) {
    EXPECT_EQ(result.status, 255);
    EXPECT_EQ(result.signal, 0);
    EXPECT_TRUE(support::contains(result.err, "dt too small!\n"));
    const std::vector<std::string> log = support::lines(folder.read("log.txt"));
    EXPECT_EQ(log.at(log.size() - 2), "Simulation stopped at t = " + start + " s");
    EXPECT_TRUE(support::starts_with(log.back(), "Too small dt! dt = "));
  }
};

TEST_F(TimeLoop, MakesNoPassWhenTheEndIsNotAfterTheStart) {
  for (const double end : {3.0, 2.0, -5.0}) {
    c.set_times(3.0, end);
    c.add_gauges({{0.6, 0.2}}, 0.1);
    c.add_snapshots({0.0, 3.0});
    c.add_sections({{0}}, 0.1);
    const RunResult result = run_with_warning("(\"t0\" is 3 s): it computes nothing");
    EXPECT_EQ(result.out, "   3.000\r");
    EXPECT_EQ(support::lines(folder.read("out/gauges.txt")).size(), 1U);
    EXPECT_EQ(folder.read("sections.txt"), "");
    EXPECT_FALSE(folder.has("out/pic_0_00.txt"));
    EXPECT_FALSE(folder.has("out/pic_3_00.txt"));
    EXPECT_FALSE(folder.has("out/enveloppe.txt"));
  }
}

TEST_F(TimeLoop, EndsWhenTheStepIsTooSmallToMoveTheClock) {
  c.set_times(1e17, 1e17 + 1000.0);
  expect_collapse_at_start(run(), "1e+17");
}

TEST_F(TimeLoop, RefreshesTheClockEveryEleventhPass) {
  c.set_times(0.0, 2.0);
  record_passes();
  const RunResult result = run_well();
  const std::vector<double> passes = pass_times();
  const std::vector<std::string> shown = support::split(result.out, '\r');
  ASSERT_EQ(passes.size(), 43U);
  ASSERT_EQ(shown.size(), 5U);
  EXPECT_EQ(shown[0], "   0.000");
  for (std::size_t k = 1; k <= 3; ++k) {
    char as_clock[20];
    std::snprintf(as_clock, sizeof as_clock, "%8.3f", std::stod(shown[k]));
    EXPECT_EQ(shown[k], as_clock);
    EXPECT_NEAR(std::stod(shown[k]), passes[11 * k - 1], 0.00051);
  }
  EXPECT_EQ(shown[4], "");  // the last thing written is a carriage return
}

TEST_F(TimeLoop, ShowsALongClockInFull) {
  c.set_times(1234567.25, 1234567.25);
  EXPECT_EQ(run_with_warning("computes nothing").out, "1234567.250\r");
}

TEST_F(TimeLoop, AdvancesByTheStableStepTimesTheCourantNumber) {
  for (const double courant : {0.5, 0.25}) {
    c.data["CFL"] = courant;
    record_passes();
    run_well();
    const std::vector<double> passes = pass_times();
    ASSERT_GT(passes.size(), 10U);
    for (std::size_t k = 0; k < passes.size(); ++k) {
      EXPECT_NEAR(passes[k], static_cast<double>(k) * step_at_rest(), 1e-5);
    }
  }
}

TEST_F(TimeLoop, ShortensNoStepToMeetTheEnd) {
  c.set_times(0.0, 2.5 * step_at_rest());
  record_passes();
  run_well();
  EXPECT_EQ(pass_times().size(), 3U);
}

TEST_F(TimeLoop, AdvancesTheClockByTheNewStepNotByTheOneJustApplied) {
  // No rain has fallen at the first pass; at the second it doubles the depth. That pass applies the
  // step of the shallow water, and the clock advances by that of the deep water.
  c.initial = [](double, double) { return support::InitialState{0.5, 0.0}; };
  const double step = step_at_rest() * std::sqrt(2.0);
  c.add_rain("1\n1 1 0\n0 " + support::exact(0.5 / step) + "\n", c.per_cell("1"));
  c.set_times(0.0, 2.2 * step);
  record_passes();
  run_well();
  const std::vector<double> passes = pass_times();
  ASSERT_GE(passes.size(), 3U);
  EXPECT_NEAR(passes[1], step, 1e-6);
  EXPECT_NEAR(passes[2] - passes[1], step / std::sqrt(2.0), 1e-6);
}

TEST_F(TimeLoop, RunsADryDomainWithATenthOfTheSmallestLength) {
  c.initial = [](double, double) { return support::InitialState{0.0}; };
  c.set_times(0.0, 0.1);
  record_passes();
  run_well();
  const std::vector<double> passes = pass_times();
  ASSERT_EQ(passes.size(), 7U);
  EXPECT_NEAR(passes[1], 0.5 * 0.1 / (2.0 + std::sqrt(2.0)), 1e-7);
}

TEST_F(TimeLoop, StopsOnACollapsedStepAfterTheOutputsOfThePass) {
  c.nx = c.ny = 60;  // large enough for the writers to be at work when the run stops
  c.set_times(2.5, 10.0);
  c.data["CFL"] = 1e-8;
  c.add_gauges({{0.6, 0.2}}, 1.0);
  c.add_snapshots({2.5});
  c.add_sections({{0}, {1}}, 1.0);
  expect_collapse_at_start(run(), "2.5");
  EXPECT_EQ(support::lines(folder.read("log.txt")).back(),
            "Too small dt! dt = " + support::shown(step_at_rest()) + " s");
  EXPECT_EQ(support::lines(folder.read("out/gauges.txt")).at(1), "2.5\t1\t0\t0\t\t");
  EXPECT_EQ(folder.read("sections.txt"), "2.5\t0\t0\t\n");
  EXPECT_EQ(support::lines(folder.read("out/pic_2_50.txt")).size(), 7201U);
  EXPECT_FALSE(folder.has("out/enveloppe.txt"));
}

TEST_F(TimeLoop, StopsOnAStepOfZeroAndOnANegativeStep) {
  for (const double courant : {0.0, -0.5}) {
    c.data["CFL"] = courant;
    const RunResult result = run();
    expect_collapse_at_start(result, "0");
    EXPECT_TRUE(support::starts_with(result.err, "Warning: \"CFL\" is ")) << result.err;
  }
}

TEST_F(TimeLoop, NamesTheCellThatLimitsTheStep) {
  c.x0 = 450000.0;
  const int limiting = c.upper(2, 1);
  const support::Point centre = c.center(limiting);
  c.initial = [centre](double x, double y) {
    const bool here = x == centre.x && y == centre.y;
    return here ? support::InitialState{4.0, 6.0, 8.0} : support::InitialState{1.0};
  };
  c.data["CFL"] = 1e-9;
  const RunResult result = run();
  char expected[300];
  std::snprintf(
      expected, sizeof expected,
      "dt too small!\nLimiting cell: %d (counted from 0), centre (%.12g, %.12g) m, depth 4 "
      "m, velocity 2.5 m/s, characteristic length 0.292893 m\n",
      limiting, centre.x, centre.y);
  EXPECT_EQ(result.err, expected);
  EXPECT_EQ(result.status, 255);
}

TEST_F(TimeLoop, NamesADryCellWithoutAVelocityThatIsNotANumber) {
  c.initial = [](double, double) { return support::InitialState{0.0}; };
  c.data["CFL"] = 1e-9;
  const RunResult result = run();
  EXPECT_TRUE(support::contains(result.err, "Limiting cell: "));
  EXPECT_TRUE(support::contains(result.err, "depth 0 m"));
  EXPECT_FALSE(support::contains(result.err, "nan")) << result.err;
}

TEST_F(TimeLoop, NamesTheSmallestCellWhereDryCellsSetTheStep) {
  // Two wet cells of ordinary size, and apart from them a dry one whose size collapses the step.
  c.nx = c.ny = 1;
  c.files["nodes.txt"] =
      "7\n0 0 0\n1 0 0\n1 1 0\n0 1 0\n-3e-8 -3e-8 9\n-2e-8 -3e-8 9\n-3e-8 -2e-8 9\n";
  c.files["cells.txt"] = "3\n3 0 1 2\n3 0 2 3\n3 4 5 6\n";
  c.files["edges.txt"] =
      "8\n0 1 2 0 -1\n0 -1 0 1 -5\n0 -1 1 2 -5\n1 -1 2 3 -5\n1 -1 3 0 -5\n"
      "2 -1 4 5 -5\n2 -1 5 6 -5\n2 -1 6 4 -5\n";
  c.files["initial.txt"] = "1 0 0\n1 0 0\n0 0 0\n";
  const RunResult result = run();
  EXPECT_EQ(result.status, 255);
  EXPECT_TRUE(support::contains(result.err, "Limiting cell: 2 (counted from 0)")) << result.err;
}

TEST_F(TimeLoop, CompletesTheOutputsOfAPassWhoseStepCollapsesInMidRun) {
  c.west = "-33 surge.txt";
  c.files["surge.txt"] = "2\n0 -0.1\n0.5 -1e14\n";
  c.set_times(0.0, 100.0);
  c.add_gauges({{0.6, 0.2}}, 1e-9);
  c.data["output"]["time step enveloppe of results"] = 1e-9;
  std::vector<double> times;
  for (int i = 0; i < 100; ++i) times.push_back(0.01 * i);
  c.add_snapshots(times);
  record_passes();
  const RunResult result = run();
  EXPECT_EQ(result.status, 255);
  EXPECT_EQ(result.signal, 0);
  EXPECT_TRUE(support::starts_with(result.err, "dt too small!\nLimiting cell: ")) << result.err;

  const std::vector<std::string> log = support::lines(folder.read("log.txt"));
  const std::string stopped = log.at(log.size() - 2);
  const std::string collapsed = log.back();
  ASSERT_TRUE(support::starts_with(stopped, "Simulation stopped at t = ")) << stopped;
  ASSERT_TRUE(support::starts_with(collapsed, "Too small dt! dt = ")) << collapsed;
  EXPECT_LE(std::stod(collapsed.substr(19)), 1e-8);
  EXPECT_EQ(std::stod(stopped.substr(26)), pass_times().back());
  EXPECT_EQ(support::lines(folder.read("out/gauges.txt")).size(), pass_times().size() + 1);
  EXPECT_EQ(support::lines(folder.read("out/enveloppe.txt")).size(), 24U);
  EXPECT_EQ(support::lines(folder.read("out/pic_0_00.txt")).size(), 25U);
}

}  // namespace
