#include "cases/CaseTest.hpp"

namespace {

class Gauges : public CaseTest {
 protected:
  Gauges() { let_it_rain(); }
  std::vector<std::string> rows() { return support::lines(folder.read("out/gauges.txt")); }
};

TEST_F(Gauges, RecordTheInitialStateAtTheStart) {
  c.initial = [](double x, double) { return support::InitialState{1.0 + x, 0.25, -0.5}; };
  c.add_gauges({{0.6, 0.2}}, 10.0);
  run_well();
  ASSERT_EQ(rows().size(), 2U);
  EXPECT_EQ(rows()[1], "0\t1.66667\t0.25\t-0.5\t\t");
}

TEST_F(Gauges, WriteEachScheduledTimeWithTheStateOfTheFirstPassFromItOn) {
  c.set_times(50.0, 51.0);
  c.add_gauges({{0.6, 0.2}}, 0.3);
  c.add_sections({}, 1e-9, "passes.txt");
  run_well();
  EXPECT_EQ(column("out/gauges.txt", 0), (std::vector<std::string>{"50", "50.3", "50.6", "50.9"}));
  const std::vector<std::string> depths = column("out/gauges.txt", 1);
  // The rain of a pass falls after its outputs: at time t, what fell until the pass before.
  std::size_t pass = 0;
  const std::vector<double> passes = pass_times();
  for (std::size_t k = 0; k < depths.size(); ++k) {
    const double scheduled = 50.0 + 0.3 * static_cast<double>(k);
    while (passes.at(pass) < scheduled) ++pass;
    const double fallen = pass == 0 ? 0.0 : 0.01 * (passes[pass - 1] - 50.0);
    EXPECT_NEAR(std::stod(depths[k]), 1.0 + fallen, 2e-5);
  }
}

TEST_F(Gauges, CatchUpOneRecordingPerPass) {
  c.add_gauges({{0.6, 0.2}}, 0.25 * step_at_rest());
  c.add_sections({}, 1e-9, "passes.txt");
  run_well();
  const std::size_t passes = pass_times().size();
  ASSERT_EQ(rows().size(), passes + 1);
  for (std::size_t k = 0; k < passes; ++k) {
    EXPECT_NEAR(std::stod(column("out/gauges.txt", 0)[k]),
                0.25 * static_cast<double>(k) * step_at_rest(), 1e-6);
  }
}

TEST_F(Gauges, WithoutPointsWriteOnlyTimes) {
  c.add_gauges({}, 0.5);
  run_well();
  EXPECT_EQ(folder.read("out/gauges.txt"), "time [s]\t\n0\t\n0.5\t\n");
}

TEST_F(Gauges, InOneCellWriteTheSameColumns) {
  c.initial = [](double x, double y) { return support::InitialState{1.0 + x * y}; };
  c.add_gauges({{0.6, 0.2}, {0.7, 0.5}, {3.2, 2.9}}, 0.1);
  run_well();
  ASSERT_EQ(rows().size(), 11U);
  for (const std::string& row : rows()) {
    const std::vector<std::string> fields = support::split(row, '\t');
    ASSERT_EQ(fields.size(), 14U);
    for (std::size_t k = 1; k <= 4; ++k) EXPECT_EQ(fields[k], fields[k + 4]);
  }
  EXPECT_NE(column("out/gauges.txt", 1), column("out/gauges.txt", 9));
}

TEST_F(Gauges, InNoCellWarnAndWriteNanWhileTheRunGoesOn) {
  c.add_gauges({{0.6, 0.2}, {-1.0, 7.5}, {3.2, 2.9}}, 0.5);
  const support::RunResult result = run();
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(support::lines(result.err).size(), 1U);
  EXPECT_TRUE(support::starts_with(
      result.err, "Warning: gauge 1 (counted from 0) at (-1, 7.5) lies in no cell"));
  ASSERT_EQ(rows().size(), 3U);
  EXPECT_EQ(rows()[1], "0\t1\t0\t0\t\tnan\tnan\tnan\t\t1\t0\t0\t\t");
  EXPECT_EQ(support::split(rows()[2], '\t')[5], "nan");
}

TEST_F(Gauges, InNoCellAreNamedTenTimes) {
  c.add_gauges(std::vector<support::Point>(12, {-1.0, 7.5}), 0.5);
  const std::vector<std::string> lines = support::lines(run().err);
  ASSERT_EQ(lines.size(), 11U);
  EXPECT_TRUE(support::starts_with(lines[9], "Warning: gauge 9 (counted from 0) at (-1, 7.5) "));
  EXPECT_EQ(lines[10], "Warning: 2 more gauges in no cell.");
}

TEST_F(Gauges, AtTheCentreOfACellNeedACellThatRunsClockwise) {
  c.size = 3.0;  // centres are exact
  c.add_gauges({{2.0, 1.0}}, 0.5);
  EXPECT_TRUE(support::starts_with(run().err, "Warning: gauge 0 "));
  EXPECT_EQ(column("out/gauges.txt", 1).at(0), "nan");
  c.clockwise = true;
  run_well();
  EXPECT_EQ(column("out/gauges.txt", 1).at(0), "1");
}

TEST_F(Gauges, TakeAResultNameInAFolderBelowTheOutputFolder) {
  std::filesystem::create_directories(folder.file("out/below"));
  c.add_gauges({{0.6, 0.2}}, 10.0, "below/result");
  run_well();
  EXPECT_EQ(support::lines(folder.read("out/below/result")).size(), 2U);
}

TEST_F(Gauges, EndTheRunAtTheFirstRecordingWithoutAResultFile) {
  c.add_gauges({{0.6, 0.2}}, 0.1, "missing/result.txt");
  expect_stop(
      "Warning: The file out/missing/result.txt couldn't be created.\n"
      "   The file gauges.txt couldn't be opened!\n");
  EXPECT_TRUE(support::contains(folder.read("log.txt"), "  ZERO depth: "));
}

TEST_F(Gauges, WithoutAResultFileAndWithoutAPassOnlyWarn) {
  c.set_times(1.0, 1.0);
  c.add_gauges({{0.6, 0.2}}, 0.1, "missing/result.txt");
  const support::RunResult result = run();
  EXPECT_EQ(result.status, 0);
  ASSERT_EQ(support::lines(result.err).size(), 2U) << result.err;
  EXPECT_EQ(support::lines(result.err)[0],
            "Warning: The file out/missing/result.txt couldn't be created.");
  EXPECT_TRUE(support::contains(support::lines(result.err)[1], "computes nothing"));
}

}  // namespace
