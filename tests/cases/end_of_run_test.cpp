// The last look of a run at what it has written.
#include <chrono>
#include <csignal>
#include <thread>

#include "cases/ReportTest.hpp"

namespace {

using support::RunResult;

class EndOfRun : public ReportTest {
 protected:
  /// An outflow that takes more water than there is.
  void drain() {
    c.initial = [](double, double) { return support::InitialState{0.05}; };
    c.east = "-3 0.4";
  }
};

TEST_F(EndOfRun, TellsHowMuchWaterAnOutflowTookThatWasNotThere) {
  drain();
  on_every_path([&] {
    const RunResult result = run();
    EXPECT_EQ(result.status, 0);
    const std::vector<std::string> lines = support::lines(result.err);
    ASSERT_EQ(lines.size(), 2U) << result.err;  // the first one was said when it came
    EXPECT_TRUE(support::starts_with(lines[1], "Warning: the depth of ")) << result.err;
    EXPECT_TRUE(support::contains(result.err, " cells is below zero at t = 1.")) << result.err;
    EXPECT_TRUE(support::contains(result.err, " m3 are missing, while the other cells hold "));
    EXPECT_TRUE(support::contains(lines[1], " (counted from 0), centre (3.66666666667, "))
        << result.err;
  });
}

TEST_F(EndOfRun, MissesNothingAfterASchemeThatLetsNoOutflowTakeIt) {
  drain();
  c.data["model"]["flux scheme"] = "HLL2";
  EXPECT_FALSE(support::contains(run().err, "below zero"));
}

TEST_F(EndOfRun, LooksAtAnInterruptedRunToo) {
  drain();
  c.set_times(0.0, 1e9);
  c.write(folder);
  support::RunningProgram program(folder.path(), {"-f", "data.json", "-nodisplay"});
  for (int i = 0; i < 60000 && !folder.has("out/enveloppe.txt"); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  program.send(SIGINT);
  const RunResult result = program.wait();
  EXPECT_EQ(result.status, 130);
  EXPECT_TRUE(support::contains(result.err, " is below zero at t = ")) << result.err;
}

TEST_F(EndOfRun, LooksAtAFailedRunToo) {
  c.add_initial_infiltration("-0.5\n" + c.per_cell("0"));
  c.data["CFL"] = 1e-9;
  const RunResult result = run();
  EXPECT_EQ(result.status, 255);
  EXPECT_TRUE(support::contains(result.err, "dt too small!\n")) << result.err;
  EXPECT_TRUE(
      support::contains(result.err, "the infiltrated depth of 1 cell is below zero at t = 0"))
      << result.err;
}

TEST_F(EndOfRun, TellsOfInfiltratedDepthsBelowZero) {
  c.add_initial_infiltration("-0.5\n" + c.per_cell("0"));
  const RunResult result = run();
  EXPECT_EQ(result.status, 0);
  EXPECT_TRUE(support::contains(result.err,
                                "Warning: the infiltrated depth of 1 cell is below zero at t = 1."))
      << result.err;
  EXPECT_TRUE(support::contains(result.err, ": 0.25 m3 are missing")) << result.err;
  EXPECT_TRUE(support::contains(result.err, "it is -0.5 m in cell 0 (counted from 0)"))
      << result.err;
}

TEST_F(EndOfRun, TellsOfColumnsThatAreNoNumbersThoughTheFlowIs) {
  // Twice the depth is infinite, and the share of it that a soil loses in a step rounds to 0.
  c.add_infiltration("1\n7 Horton 1e-5 1e-5 0 1.75e308 1e-30\n", c.per_cell("7"));
  c.add_initial_infiltration(c.per_cell("1.7e308"));
  const RunResult result = run();
  EXPECT_TRUE(support::contains(result.err, "Warning: the infiltrated depth of ")) << result.err;
  EXPECT_TRUE(support::contains(result.err, " is not a number at t = ")) << result.err;
}

TEST_F(EndOfRun, IsQuietAboutASoundOne) {
  c = support::full_case();
  c.add_rain("1\n7 2 1\n0 0.00001\n1 0.00002\n", c.per_cell("7"));
  run_well();
}

}  // namespace
