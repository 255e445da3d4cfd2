// The state at the end of a run, complete or interrupted, as a snapshot.
#include <chrono>
#include <csignal>
#include <thread>

#include "cases/CaseTest.hpp"

namespace {

using support::contains;

class FinalState : public CaseTest {
 protected:
  FinalState() {
    c.west = "-3 -0.1";
    c.data["output"]["final state"] = "final.txt";
  }
  /// The snapshot for a time of a run that goes on beyond it.
  std::string snapshot_of_a_longer_run(double time) {
    c.set_times(0.0, time + 10.0 * step_at_rest());
    c.data["output"].erase("final state");
    c.add_snapshots({time});
    run_well();
    for (const auto& entry : std::filesystem::directory_iterator(folder.file("out"))) {
      const std::string name = "out/" + entry.path().filename().string();
      if (contains(name, "pic_")) return folder.read(name);
    }
    return "no snapshot";
  }
};

TEST_F(FinalState, IsASnapshotOfTheLastStep) {
  c.set_times(0.0, 0.5);
  run_well();
  const std::string final_state = folder.read("out/final.txt");
  EXPECT_EQ(support::lines(final_state).size(), 25U);
  EXPECT_EQ(final_state, snapshot_of_a_longer_run(0.5));
}

TEST_F(FinalState, HasTheColumnsOfTheModel) {
  c = support::full_case();
  c.data["output"]["final state"] = "end/last.txt";
  c.write(folder);
  std::filesystem::create_directories(folder.file("out/end"));
  run_well();
  EXPECT_EQ(support::lines(folder.read("out/end/last.txt")).front(), "x\ty\tzb\th\tqx\tqy\tf");
}

TEST_F(FinalState, OfARunWithoutAStepIsTheInitialOne) {
  c.set_times(1.0, 1.0);
  run_with_warning("it computes nothing");
  EXPECT_EQ(column("out/final.txt", 3), std::vector<std::string>(24, "1"));
  EXPECT_EQ(column("out/final.txt", 4), std::vector<std::string>(24, "0"));
}

TEST_F(FinalState, IsWrittenWhereARunIsInterrupted) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    c.set_times(0.0, 1e6);  // far more than is waited for
    c.data["output"]["final state"] = "final.txt";
    record_passes();
    c.write(folder);
    std::filesystem::remove(folder.file("passes.txt"));
    std::filesystem::remove(folder.file("out/final.txt"));
    support::RunningProgram program(folder.path(), {"-f", "data.json", "-nodisplay"});
    for (int i = 0; i < 60000 && support::lines(folder.read("passes.txt")).size() < 20; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    program.send(signal);
    EXPECT_EQ(program.wait().status, 128 + signal);
    EXPECT_FALSE(folder.has("out/final.txt.part"));
    const std::string final_state = folder.read("out/final.txt");
    ASSERT_EQ(support::lines(final_state).size(), 25U);

    // A run that was told to end there gives the same state.
    c.set_times(0.0, pass_times().back() + 0.1 * step_at_rest());
    run_well();
    EXPECT_EQ(folder.read("out/final.txt"), final_state);
  }
}

TEST_F(FinalState, ChangesNoOtherResult) {
  c = support::full_case();
  run_well();
  auto expected = files_of(folder);
  c.data["output"]["final state"] = "final.txt";
  run_well();
  auto found = files_of(folder);
  EXPECT_TRUE(contains(found["log.txt"], "  Final state: written to out/final.txt\n"));
  EXPECT_EQ(found.erase("out/final.txt"), 1U);
  for (auto* files : {&expected, &found}) {
    files->erase("log.txt");
    files->erase("data.json");
  }
  EXPECT_EQ(found, expected);
}

TEST_F(FinalState, ThatCannotBeWrittenEndsTheRunWithAnError) {
  c.write(folder);
  std::filesystem::create_symlink("/dev/full", folder.file("out/final.txt"));
  expect_stop(
      "Error. The file out/final.txt couldn't be written completely: No space left on device.\n");
}

TEST_F(FinalState, MayNotReplaceAnInputOrAnotherResult) {
  c.data["output"]["final state"] = "../nodes.txt";
  expect_stop(
      "Error. The final state (out/../nodes.txt) would replace an input file of this run "
      "(nodes.txt).\n");
  c.data["output"]["final state"] = "enveloppe.txt";
  expect_stop(
      "Error. The final state (out/enveloppe.txt) would replace another result of this run, the "
      "envelope (out/enveloppe.txt).\n");
}

TEST_F(FinalState, NeedsAName) {
  c.data["output"]["final state"] = "";
  expect_stop("Error. \"output/final state\" is empty, expected the name of a file.\n");
  c.data["output"]["final state"] = 7;
  expect_stop("Error. The following key has incorrect format in the datafile: final state\n");
}

}  // namespace
