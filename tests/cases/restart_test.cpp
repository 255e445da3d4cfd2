// A run that keeps checkpoints, is ended by a signal or killed, and goes on in another call.
#include <sys/resource.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <random>
#include <thread>

#include "cases/ReportTest.hpp"
#include "checkpoint/checkpoint_pair.hpp"

namespace {

using support::contains;
using support::lines;
using support::occurrences;
using support::RunningProgram;
using support::RunResult;
using Words = std::vector<std::string>;

class RestartedRun : public ReportTest {
 protected:
  RestartedRun() {
    c = support::full_case(30, 20);
    c.add_rain("1\n7 1 1\n0 0\n", c.per_cell("7"));  // rain knows the end of a run
    c.add_sections({c.edges_across(10)}, 1e-9);      // the time of every pass
    c.add_gauges({{10.3, 11.6}, {27.2, 14.7}}, 0.5);
    c.data["output"]["time step enveloppe of results"] = 0.01;
    c.set_times(0.0, 4.0);
  }

  static Words arguments(const Words& more) {
    Words words = {"-f", "data.json", "-nodisplay"};
    words.insert(words.end(), more.begin(), more.end());
    return words;
  }
  RunResult call(const Words& more, const support::RunOptions& options = {}) const {
    return support::run_program(folder.path(), arguments(more), options);
  }
  std::map<std::string, std::string> results() const {
    std::map<std::string, std::string> files = files_of(folder);
    std::erase_if(files, [](const auto& file) {
      return file.first.starts_with("kept.") || file.first == "log.txt" ||
             file.first == "report.json" || file.first.ends_with(".part");
    });
    return files;
  }
  /// Results of the case in one go.
  std::map<std::string, std::string> whole() {
    c.write(folder);
    EXPECT_EQ(call({}).status, 0);
    auto files = results();
    clear();
    return files;
  }
  void clear() const {
    std::filesystem::remove_all(folder.path());
    std::filesystem::create_directory(folder.path());
    c.write(folder);
  }
  /// A call that a signal ends, after some passes.
  RunResult interrupted(const Words& more, int signal, std::size_t passes = 100) const {
    RunningProgram program(folder.path(), arguments(more));
    pause_until([&] { return lines(folder.read("sections.txt")).size() > passes; });
    program.send(signal);
    return program.wait();
  }
  static void pause_until(const std::function<bool()>& condition) {
    for (int i = 0; i < 60000 && !condition(); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }
  long kept_steps() const {
    return checkpoint::load_newest(folder.file("kept")).contents.clock.steps;
  }
  /// Stops the run with a checkpoint in the middle.
  void stop_in_the_middle() {
    c.set_times(0.0, 1000.0);
    clear();
    ASSERT_EQ(interrupted({"--checkpoint", "kept"}, SIGTERM).status, 128 + SIGTERM);
  }
  /// A call that is refused with a text on standard error, and changes no file.
  void expect_refusal(const Words& more, const std::string& text) {
    const auto before = every_file();
    const RunResult result = call(more);
    EXPECT_EQ(result.status, 255);
    EXPECT_TRUE(contains(result.err, text)) << result.err;
    EXPECT_EQ(lines(result.err).size(), 1U) << result.err;
    EXPECT_EQ(every_file(), before);
  }
  std::map<std::string, std::string> every_file() const {
    std::map<std::string, std::string> files = files_of(folder);
    files["log.txt"] = folder.read("log.txt");
    return files;
  }
};

}  // namespace

TEST_F(RestartedRun, EndedByASignalLeavesTheFilesOfOneThatNeverStopped) {
  const auto expected = whole();
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    clear();
    const RunResult first = interrupted({"--checkpoint", "kept"}, signal, 10);
    EXPECT_EQ(first.status, 128 + signal);
    setenv("QUILLMERE_DEVICE", "emulated", 1);
    setenv("QUILLMERE_ENGINE", signal == SIGINT ? "device" : "objects", 1);
    const RunResult second = call({"--restart", "kept"});
    unsetenv("QUILLMERE_ENGINE");
    unsetenv("QUILLMERE_DEVICE");
    EXPECT_EQ(second.status, 0) << second.err;
    EXPECT_EQ(second.err, "");
    EXPECT_EQ(results(), expected);
    const std::string log = folder.read("log.txt");
    EXPECT_EQ(occurrences(log, "Simulation interrupted at t = "), 1);
    EXPECT_EQ(occurrences(log, "\nContinued from kept.a at t = "), 1);
    EXPECT_EQ(occurrences(log, "Total execution time: "), 2);
  }
}

TEST_F(RestartedRun, KeepsACheckpointAtASignalWithoutStopping) {
  c.set_times(0.0, 1000.0);
  c.write(folder);
  RunningProgram program(folder.path(), arguments({"--checkpoint", "kept"}));
  pause_until([&] { return lines(folder.read("sections.txt")).size() > 10; });
  EXPECT_FALSE(folder.has("kept.a"));
  for (const char* const name : {"kept.a", "kept.b"}) {
    program.send(SIGUSR1);
    pause_until([&] { return folder.has(name); });
    EXPECT_TRUE(folder.has(name));
    const std::size_t passes = lines(folder.read("sections.txt")).size();
    pause_until([&] { return lines(folder.read("sections.txt")).size() > passes + 10; });
    EXPECT_TRUE(program.is_running());
  }
  const long steps = kept_steps();
  EXPECT_GT(steps, 0);
  program.send(SIGTERM);
  EXPECT_EQ(program.wait().status, 128 + SIGTERM);
  EXPECT_GT(kept_steps(), steps);
}

TEST_F(RestartedRun, WithoutCheckpointsEndsAtThatSignalAsEver) {
  c.set_times(0.0, 1000.0);
  c.write(folder);
  EXPECT_EQ(interrupted({}, SIGUSR1).signal, SIGUSR1);
}

TEST_F(RestartedRun, KilledAHundredTimesAlwaysFindsAWholeCheckpoint) {
  c.set_times(0.0, 1e6);
  c.add_sections({c.edges_across(10)}, 0.1);
  c.write(folder);
  std::mt19937 random(100);
  std::uniform_int_distribution<int> delay(0, 20000);
  const Words every = {"--checkpoint", "kept", "--checkpoint-every", "1e-9"};
  Words words = every;
  long steps = 0;
  int incomplete = 0;
  for (int kill = 0; kill < 100; ++kill) {
    RunningProgram program(folder.path(), arguments(words));
    const auto is_further = [&] {
      try {
        return kept_steps() > steps;
      } catch (const std::runtime_error&) {
        return false;  // as long as there is none yet
      }
    };
    pause_until([&] { return is_further() || !program.is_running(); });
    std::this_thread::sleep_for(std::chrono::microseconds(delay(random)));
    program.kill();
    const RunResult result = program.wait();
    ASSERT_EQ(result.signal, SIGKILL) << result.err;
    for (const checkpoint::FoundFile& file : checkpoint::find_files(folder.file("kept"))) {
      if (!file.look.trouble.empty()) ++incomplete;
    }
    ASSERT_GT(kept_steps(), steps);
    steps = kept_steps();
    words = every;
    words.insert(words.end(), {"--restart", "kept"});
  }
  EXPECT_GT(incomplete, 10);  // so the other file was needed

  const double t = checkpoint::load_newest(folder.file("kept")).contents.clock.t;
  c.set_times(0.0, t + 0.5);
  c.write(folder);
  const RunResult last = call({"--restart", "kept"});
  ASSERT_EQ(last.status, 0) << last.err;
  const auto found = results();
  EXPECT_EQ(found, whole());
}

TEST_F(RestartedRun, SaysOnceWhatIsSaidOnce) {
  c = support::full_case(113, 65);  // its shallow end races
  c.initial = [](double x, double) { return support::InitialState{1.0 - 0.01 * x, 0.1}; };
  c.add_sections({c.edges_across(10)}, 1e-9);
  c.set_times(0.0, 0.6);
  c.write(folder);
  const RunResult all = call({"--report", "report.json"});
  EXPECT_EQ(all.status, 0);
  const json expected = report();
  clear();
  interrupted({"--checkpoint", "kept", "--report", "report.json"}, SIGTERM, 3);
  const RunResult second = call({"--restart", "kept", "--report", "report.json"});
  EXPECT_EQ(second.status, 0);
  EXPECT_EQ(second.err, all.err);
  json found = report();
  for (const char* const part : {"wall_time", "execution"}) found[part] = expected.at(part);
  EXPECT_EQ(found, expected);
}

TEST_F(RestartedRun, IsRefusedWithTheNamesOfWhatHasChanged) {
  stop_in_the_middle();
  c.add_friction(c.per_cell("0.02"));
  c.data["model"]["zero depth value"] = 0.002;
  c.write(folder);
  expect_refusal({"--restart", "kept", "--checkpoint", "kept", "--report", "report.json"},
                 "Error. The run can't go on from the checkpoint kept.a: of what it was taken with "
                 "this has changed: the depth up to which a cell is dry, the friction. With "
                 "--restart-anyway it goes on all the same.\n");
  c.set_times(0.0, 3.0);
  c.files["inflow.txt"] = "2\n0 -0.1\n9 -0.1\n";
  c.write(folder);
  const RunResult result = call({"--restart", "kept", "--restart-anyway"});
  EXPECT_EQ(result.status, 0) << result.err;
  const std::string log = folder.read("log.txt");
  for (const char* const change :
       {"  Changed since then: the end time\n", "  Changed since then: the boundary series\n",
        "  Changed since then, and accepted: the friction\n"}) {
    EXPECT_TRUE(contains(log, change)) << log;
  }
}

TEST_F(RestartedRun, IsRefusedOnAnotherMeshOrModelWhateverIsSaid) {
  stop_in_the_middle();
  const Words anyway = {"--restart", "kept", "--restart-anyway"};
  const std::string text =
      "Error. The run can't go on from the checkpoint kept.a: it is one of "
      "another mesh or model.\n";
  c.data["model"]["sources"].erase("infiltration");
  c.data["model"]["sources"].erase("infiltracells");
  c.write(folder);
  expect_refusal(anyway, text);
  const std::vector<int> section = c.edges_across(10);
  c = support::full_case(31, 20);
  c.add_sections({section}, 1e-9);
  c.add_gauges({{10.3, 11.6}, {27.2, 14.7}}, 0.5);
  c.write(folder);
  expect_refusal(anyway, text);
}

TEST_F(RestartedRun, IsRefusedWhereItsLinesAreNotThereAnyMore) {
  stop_in_the_middle();
  const Words words = {"--restart", "kept"};
  const std::string gauges = folder.read("out/gauges.txt");
  std::filesystem::remove(folder.file("out/gauges.txt"));
  expect_refusal(words,
                 "Error. The result file out/gauges.txt isn't there any more: it can't be "
                 "continued.\n");
  folder.write("out/gauges.txt", gauges.substr(0, gauges.size() - 1));
  expect_refusal(words, "out/gauges.txt has " + std::to_string(gauges.size() - 1) +
                            " bytes of the " + std::to_string(gauges.size()) +
                            " that it had at the checkpoint: it can't be continued.\n");
  std::string edited = gauges;
  edited[70] ^= 1;
  folder.write("out/gauges.txt", edited);
  expect_refusal(words, "out/gauges.txt doesn't hold any more what it held at the checkpoint");
  folder.write("out/gauges.txt", gauges);
  c.add_gauges({{1.3, 2.1}}, 0.5);
  c.write(folder);
  expect_refusal(words,
                 "Error. The gauges of out/gauges.txt have changed since the checkpoint: "
                 "record them in a file of another name.");
}

TEST_F(RestartedRun, IsRefusedWithoutAWholeCheckpoint) {
  c.write(folder);
  call({});
  const Words words = {"--restart", "kept"};
  expect_refusal(words,
                 "Error. There is no checkpoint \"kept\" to go on from. kept.a: it does not "
                 "exist. kept.b: it does not exist.\n");
  folder.write("kept.a", folder.read("out/gauges.txt"));
  expect_refusal(words, "kept.a: it is no checkpoint.");
  stop_in_the_middle();
  const std::string kept = folder.read("kept.a");
  folder.write("kept.a", kept.substr(0, kept.size() / 2));
  expect_refusal(words, "kept.a: it is not complete.");
  std::string damaged = kept;
  damaged[kept.size() / 2] ^= 4;
  folder.write("kept.a", damaged);
  expect_refusal(words, "kept.a: block 0 (counted from 0) is damaged.");
}

TEST_F(RestartedRun, TakesItsOptionsOnlyAsTheyAreMeant) {
  c.write(folder);
  for (const auto& [words, text] : std::vector<std::pair<Words, std::string>>{
           {{"--checkpoint"}, "Error. --checkpoint needs the name of a checkpoint.\n"},
           {{"--restart", "--progress"}, "Error. --restart needs the name of a checkpoint.\n"},
           {{"--restart-anyway"}, "Error. --restart-anyway is said without --restart.\n"},
           {{"--checkpoint-every", "5"},
            "Error. --checkpoint-every is said without --checkpoint.\n"},
           {{"--checkpoint", "k", "--checkpoint-every", "0"},
            "Error. --checkpoint-every needs a number of minutes above 0, found \"0\".\n"},
           {{"--checkpoint", "k", "--checkpoint-every", "soon"},
            "Error. --checkpoint-every needs a number of minutes above 0, found \"soon\".\n"},
           {{"--checkpoint", "nowhere/k"},
            "Error. The checkpoint nowhere/k cannot be kept: its folder does not exist.\n"}}) {
    const RunResult result = call(words);
    EXPECT_EQ(result.status, 255);
    EXPECT_EQ(result.err, text);
  }
}

TEST_F(RestartedRun, DoesNotKeepACheckpointInPlaceOfAnInput) {
  c.data["mesh"]["nodes"] = "mesh.a";
  c.write(folder);
  folder.write("mesh.a", c.nodes_text());
  expect_refusal(
      {"--checkpoint", "mesh"},
      "Error. The checkpoint (mesh.a) would replace an input file of this run (mesh.a).");
}

TEST_F(RestartedRun, GoesOnWhereACheckpointCannotBeWritten) {
  c.data["output"].erase("snapshots of flow");  // which are as large as a checkpoint
  c.add_sections({c.edges_across(10)}, 0.1);
  const auto expected = whole();
  const RunResult result = call({"--checkpoint", "kept", "--checkpoint-every", "1e-4"},
                                {.limits = {{RLIMIT_FSIZE, 45000}}});
  EXPECT_EQ(result.status, 0);
  EXPECT_TRUE(contains(result.err,
                       "Warning: the checkpoint kept.a couldn't be written: File too "
                       "large; the one before it stays.\n"))
      << result.err;
  EXPECT_EQ(results(), expected);
}
