// The program over processes of an MPI job: the files of one process, one message for what is
// wrong, and one end for all.
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <memory>

#include "checkpoint/RestartTest.hpp"
#include "support/left_behind.hpp"

namespace {

using support::Case;
using support::comes_true;
using support::contains;
using support::lines;
using support::occurrences;
using support::RunningProgram;
using support::RunResult;
using support::TemporaryFolder;
using Words = std::vector<std::string>;

/// The environment of a job, by which its processes are found.
constexpr const char* mark = "QUILLMERE_TEST_JOB";

/// What is asked of a run besides its case.
struct Asked {
  bool report = false, checkpoints = false, netcdf = false;
};
constexpr Asked everything = {true, true, true};

class MpiRuns : public testing::Test {
 protected:
  /// Lets Open MPI start more ranks than cores, for any user.
  static void SetUpTestSuite() {
    for (const char* const name :
         {"OMPI_ALLOW_RUN_AS_ROOT", "OMPI_ALLOW_RUN_AS_ROOT_CONFIRM",
          "OMPI_MCA_rmaps_base_oversubscribe", "OMPI_MCA_mpi_yield_when_idle"}) {
      setenv(name, "1", 1);
    }
  }

  static RunResult alone(const TemporaryFolder& folder, const Words& more = {}) {
    return support::run_program(folder.path(), with({"-f", "data.json", "-nodisplay"}, more));
  }
  static Words job_of(int ranks, const Words& words) {
    return with({"-n", std::to_string(ranks), QUILLMERE_MPI_PROGRAM}, words);
  }
  static support::RunOptions by_mpiexec() { return {.program = MPIEXEC}; }
  static RunResult on(int ranks, const TemporaryFolder& folder, const Words& more = {}) {
    return support::run_program(
        folder.path(), job_of(ranks, with({"-f", "data.json", "-nodisplay"}, more)), by_mpiexec());
  }
  /// On three ranks with a report, of which one does something before its program.
  static RunResult with_one_that_begins(const TemporaryFolder& folder, int rank,
                                        const std::string& by) {
    const std::string of_one =
        "case $OMPI_COMM_WORLD_RANK$PMI_RANK in " + std::to_string(rank) + ") " + by + ";; esac; ";
    return support::run_program(
        folder.path(),
        {"-n", "3", "sh", "-c",
         of_one + "exec " QUILLMERE_MPI_PROGRAM " -f data.json -nodisplay --report report.json"},
        by_mpiexec());
  }
  static Words with(Words words, const Words& more) {
    words.insert(words.end(), more.begin(), more.end());
    return words;
  }

  /// All files but for what tells calls apart.
  static std::map<std::string, std::string> all_of(const TemporaryFolder& folder) {
    std::map<std::string, std::string> files = files_of(folder);
    if (!files.count("report.json")) return files;
    nlohmann::json report = nlohmann::json::parse(files.at("report.json"));
    report.erase("wall_time");
    report.erase("execution");
    files.at("report.json") = report.dump(1);
    return files;
  }
  static int ranks_in_report(const TemporaryFolder& folder) {
    return nlohmann::json::parse(folder.read("report.json")).at("execution").at("ranks");
  }

  template <class Prepare>
  static void expect_the_files_of_one_process(const Prepare& prepare,
                                              const std::vector<int>& numbers, const Asked& asked) {
    Words words;
    if (asked.report) words = {"--report", "report.json"};
    if (asked.checkpoints) words = with(words, {"--checkpoint", "kept"});
    const auto prepare_folder = [&](const TemporaryFolder& folder) {
      prepare(folder);
      if (asked.netcdf) return;
      nlohmann::json data = nlohmann::json::parse(folder.read("data.json"));
      data["output"].erase("results");
      data["output"].erase("results times");
      folder.write("data.json", data.dump());
    };
    const TemporaryFolder one;
    prepare_folder(one);
    const RunResult expected = alone(one, words);
    ASSERT_EQ(expected.status, 0) << expected.err;
    const auto expected_files = all_of(one);
    for (const int ranks : numbers) {
      const TemporaryFolder folder;
      prepare_folder(folder);
      const RunResult result = on(ranks, folder, words);
      EXPECT_EQ(result.status, 0) << result.err;
      EXPECT_EQ(result.out, expected.out);
      EXPECT_EQ(result.err, expected.err);
      if (asked.report) {
        EXPECT_EQ(ranks_in_report(folder), ranks);
      }
      const auto files = all_of(folder);
      ASSERT_EQ(files.size(), expected_files.size());
      for (const auto& [name, text] : expected_files) {
        EXPECT_TRUE(files.at(name) == text) << name << " on " << ranks << " ranks";
      }
    }
  }

  static std::size_t rows_of(const TemporaryFolder& folder, const std::string& file) {
    return folder.has(file) ? lines(folder.read(file)).size() : 0;
  }
};

/// Several ranks write tables, in small blocks.
class MpiRunsWithWriters : public MpiRuns {
 protected:
  MpiRunsWithWriters() {
    setenv("QUILLMERE_WRITERS", "2", 1);
    setenv("QUILLMERE_WRITERS_BLOCK", "64", 1);
  }
  ~MpiRunsWithWriters() override {
    unsetenv("QUILLMERE_WRITERS");
    unsetenv("QUILLMERE_WRITERS_BLOCK");
  }
};

/// A run that lasts until something ends it.
class LongMpiRun : public MpiRuns {
 protected:
  LongMpiRun() {
    record_every(1e-9);
    setenv(mark, folder.path().c_str(), 1);
  }
  ~LongMpiRun() override { unsetenv(mark); }

  /// In every step, or less often (s).
  void record_every(double interval) {
    c.data["output"]["time step enveloppe of results"] = std::max(interval, 0.01);
    c.add_sections({c.edges_across(10)}, interval);
  }
  std::unique_ptr<RunningProgram> start(int ranks, const Words& more = {}) {
    Case endless = c;
    endless.set_times(0.0, 1e6);
    endless.write(folder);
    auto program = std::make_unique<RunningProgram>(
        folder.path(), job_of(ranks, with({"-f", "data.json", "-nodisplay"}, more)), by_mpiexec());
    EXPECT_TRUE(comes_true([&] { return rows_of(folder, "sections.txt") > 100; }));
    return program;
  }
  bool has_left_processes() const {
    return !support::processes_with(std::string(mark) + "=" + folder.path()).empty();
  }
  /// The process that is a rank of the job.
  pid_t process_of(int rank) const {
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
      const std::string environment = zeros_to_lines(entry.path() / "environ");
      const std::string command = zeros_to_lines(entry.path() / "cmdline");
      if (!support::starts_with(command, QUILLMERE_MPI_PROGRAM "\n")) continue;
      if (!contains(environment, std::string(mark) + "=" + folder.path() + "\n")) continue;
      const std::string is_rank = "RANK=" + std::to_string(rank) + "\n";
      if (contains(environment, "\nOMPI_COMM_WORLD_" + is_rank) ||
          contains(environment, "\nPMI_" + is_rank)) {
        return std::stoi(entry.path().filename());
      }
    }
    return -1;
  }
  static std::string zeros_to_lines(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    std::string text(std::istreambuf_iterator<char>(stream), {});
    std::replace(text.begin(), text.end(), '\0', '\n');
    return text;
  }
  void expect_whole_results() const {
    EXPECT_EQ(rows_of(folder, "out/enveloppe.txt"), static_cast<std::size_t>(c.n_cells()));
    EXPECT_EQ(rows_of(folder, "out/pic_0_00.txt"), static_cast<std::size_t>(c.n_cells()) + 1);
  }

  TemporaryFolder folder;
  Case c = support::full_case(30, 20);
};

}  // namespace

TEST_F(MpiRuns, OfWaterWithEverythingLeaveTheFilesOfOneProcess) {
  for (const Asked& asked : {everything, Asked{.report = true}, Asked{.checkpoints = true}}) {
    expect_the_files_of_one_process(
        [](const TemporaryFolder& folder) { test_restart::water_case().write(folder); }, {1, 2, 4},
        asked);
  }
}

TEST_F(MpiRuns, OfSandWithEverythingLeaveTheFilesOfOneProcess) {
  for (const Asked& asked : {everything, Asked{.netcdf = true}}) {
    expect_the_files_of_one_process(
        [](const TemporaryFolder& folder) { test_restart::sand_case().write(folder); }, {3}, asked);
  }
}

TEST_F(MpiRuns, OfThePositiveSchemesLeaveTheFilesOfOneProcess) {
  for (const char* const scheme : {"HLL1", "HLL2"}) {
    expect_the_files_of_one_process(
        [&](const TemporaryFolder& folder) {
          Case c = scheme == std::string("HLL1") ? test_restart::sand_case()
                                                 : test_restart::water_case();
          c.data["model"]["flux scheme"] = scheme;
          c.write(folder);
        },
        {2}, everything);
  }
}

TEST_F(MpiRuns, DescribeAStateThatIsLostAsOneProcessDoes) {
  expect_the_files_of_one_process(
      [](const TemporaryFolder& folder) {
        Case c;
        std::vector<std::string> edges = lines(c.edges_text());
        edges.at(2) = "0 -1 1 1 -2";  // without a length
        for (const std::string& line : edges) c.files["edges.txt"] += line + "\n";
        c.set_times(0.0, 2.0);
        c.write(folder);
      },
      {3}, {.report = true});
}

TEST_F(MpiRuns, OfTheExamplesLeaveTheFilesOfOneProcess) {
  const std::filesystem::path examples = std::filesystem::path(QUILLMERE_SOURCE_DIR) / "examples";
  for (const char* const name :
       {"flume_dam_break", "lake_at_rest", "meandering_valley", "sand_bed_dam_break"}) {
    SCOPED_TRACE(name);
    expect_the_files_of_one_process(
        [&](const TemporaryFolder& folder) {
          for (const auto& file : std::filesystem::directory_iterator(examples / name)) {
            if (file.is_regular_file()) std::filesystem::copy(file, folder.path());
          }
          std::filesystem::create_directory(folder.file("out"));
          nlohmann::json data = nlohmann::json::parse(folder.read("data.json"));
          data["tend"] = 0.1 * data["tend"].get<double>();
          folder.write("data.json", data.dump());
        },
        {2}, {});
  }
}

TEST_F(MpiRuns, SayWhatIsWrongOnceAndEndWithTheStatusOfOneProcess) {
  const auto expect_same_end = [](const std::function<void(Case&)>& spoil, const Words& more) {
    Case c;
    spoil(c);
    const TemporaryFolder one, folder;
    c.write(one);
    c.write(folder);
    const RunResult expected = alone(one, more), result = on(3, folder, more);
    EXPECT_NE(expected.status, 0);
    EXPECT_EQ(result.status, expected.status) << result.err;
    EXPECT_EQ(result.out, expected.out);
    if (!expected.err.empty()) {
      EXPECT_EQ(occurrences(result.err, expected.err), 1) << result.err;
    }
    EXPECT_EQ(all_of(folder), all_of(one));
  };
  expect_same_end([](Case& c) { c.files["nodes.txt"] = "three\n"; }, {});
  expect_same_end([](Case& c) { c.add_infiltration("1\n1 Sponge 1\n", c.per_cell("1")); }, {});
  expect_same_end([](Case& c) { c.data.erase("tend"); }, {"--report", "report.json"});
  expect_same_end([](Case&) {}, {"--restart", "nothing"});
  expect_same_end(
      [](Case& c) {  // ranks have read the mesh for a file that cannot be
        c.add_snapshots({0.0});
        c.data["output"]["results"] = "../nodes.txt";
      },
      {});
  expect_same_end(
      [](Case& c) {  // collapses in the middle
        c.west = "-33 surge.txt";
        c.files["surge.txt"] = "2\n0 -0.1\n0.5 -1e14\n";
        c.set_times(0.0, 100.0);
      },
      {"--report", "report.json"});
}

TEST_F(MpiRunsWithWriters, LeaveTheFilesOfOneProcess) {
  for (const Asked& asked : {everything, Asked{}}) {
    expect_the_files_of_one_process(
        [](const TemporaryFolder& folder) {
          Case c = support::full_case(90, 60);  // tables of several blocks
          c.set_times(0.0, 0.2);
          c.write(folder);
        },
        {2, 4}, asked);
  }
}

TEST_F(MpiRunsWithWriters, EndOnAllRanksWhereOneOfThemFindsNoRoom) {
  Case c = support::full_case(90, 60);  // tables of several blocks
  c.set_times(0.0, 1000.0);             // far more than is computed
  for (const int rank : {0, 2}) {
    const TemporaryFolder folder;
    c.write(folder);
    const RunResult result =
        with_one_that_begins(folder, rank, "export LD_PRELOAD=" FAILING_WRITES);
    EXPECT_EQ(result.status, 255) << result.err;
    EXPECT_FALSE(result.timed_out);
    for (const std::string& line : lines(result.err)) {
      if (!support::starts_with(line, "Error. The file out/")) continue;
      EXPECT_TRUE(contains(line, "couldn't be written completely: No space left on device."));
    }
    EXPECT_GE(occurrences(result.err, "couldn't be written completely"), 1) << result.err;
    for (const auto& entry : std::filesystem::directory_iterator(folder.file("out"))) {
      const std::string name = entry.path().filename().string();
      EXPECT_TRUE(name == "gauges.txt" || name == "results.nc") << name;
    }
  }
}

TEST_F(MpiRunsWithWriters, AreANumberAboveZeroAndTheirBlocksWholePages) {
  const TemporaryFolder folder;
  Case().write(folder);
  const auto expect_error = [&](const std::string& error) {
    const RunResult result = on(2, folder);
    EXPECT_EQ(result.status, 255);
    EXPECT_EQ(occurrences(result.err, error), 1) << result.err;
  };
  for (const char* const block : {"65", "1048640"}) {
    setenv("QUILLMERE_WRITERS_BLOCK", block, 1);
    expect_error(
        std::string("Error. QUILLMERE_WRITERS_BLOCK needs a multiple of 64 up to 1048576, found ") +
        block + ".");
  }
  setenv("QUILLMERE_WRITERS", "some", 1);
  expect_error("Error. QUILLMERE_WRITERS needs a whole number above 0, found \"some\".");
}

TEST_F(MpiRuns, AreNoMatterOfTheProgramForOneProcess) {
  const auto names_mpi = [](const char* program) {
    std::ifstream file(program, std::ios::binary);
    return contains({std::istreambuf_iterator<char>(file), {}}, "MPI_Init");
  };
  EXPECT_FALSE(names_mpi(QUILLMERE_PROGRAM));
  EXPECT_TRUE(names_mpi(QUILLMERE_MPI_PROGRAM));
}

TEST_F(MpiRuns, AnswerQuestionsOnce) {
  const TemporaryFolder folder;
  const RunResult version =
      support::run_program(folder.path(), job_of(3, {"--version"}), by_mpiexec());
  EXPECT_EQ(version.status, 0);
  EXPECT_EQ(version.out, support::run_program(folder.path(), {"--version"}).out);
}

TEST_F(MpiRuns, EndOnAllRanksWhereTheDiskIsFull) {
  Case c = support::full_case();
  c.set_times(0.0, 1000.0);  // far more than is computed
  const TemporaryFolder folder;
  c.write(folder);
  std::filesystem::create_symlink("/dev/full", folder.file("out/enveloppe.txt"));
  const RunResult result = on(3, folder);
  EXPECT_EQ(result.status, 255);
  EXPECT_EQ(occurrences(result.err,
                        "Error. The file out/enveloppe.txt couldn't be written "
                        "completely: No space left on device.\n"),
            1)
      << result.err;
}

TEST_F(MpiRuns, SayOnceWhatOneOfThemAloneCannotRead) {
  const TemporaryFolder folder;
  Case().write(folder);
  const RunResult result = with_one_that_begins(folder, 1, "cd /");
  EXPECT_EQ(result.status, 255);
  EXPECT_FALSE(result.timed_out);
  EXPECT_EQ(occurrences(result.err, "data.json"), 1) << result.err;
}

TEST_F(MpiRuns, EndOnAllRanksWhereOneFailsInAStep) {
  Case c = support::full_case();
  c.set_times(0.0, 1000.0);  // far more than is computed
  for (const int rank : {0, 1, 2}) {
    const TemporaryFolder folder;
    c.write(folder);
    const RunResult result =
        with_one_that_begins(folder, rank, "export LD_PRELOAD=" FAILING_REDUCTION);
    EXPECT_NE(result.status, 0);
    EXPECT_FALSE(result.timed_out);
    EXPECT_EQ(occurrences(result.err, "a reduction fails on purpose\n"), 1) << result.err;
    EXPECT_EQ(folder.has("report.json"), rank == 0);
    if (rank > 0) continue;
    const auto report = nlohmann::json::parse(folder.read("report.json"));
    EXPECT_EQ(report.at("outcome").at("exit_status"), 255) << report.dump(1);
    EXPECT_FALSE(report.contains("water"));  // which nobody could tell any more
  }
}

TEST_F(MpiRuns, EndOnAllRanksWhereOneLacksMemory) {
  Case c = support::full_case();
  c.set_times(0.0, 1000.0);  // far more than is computed
  for (const int rank : {0, 2}) {
    const TemporaryFolder folder;
    c.write(folder);
    const RunResult result = with_one_that_begins(
        folder, rank, "export QUILLMERE_TEST_LACKS_MEMORY=1 LD_PRELOAD=" FAILING_REDUCTION);
    EXPECT_NE(result.status, 0);
    EXPECT_FALSE(result.timed_out);
    EXPECT_EQ(occurrences(result.err, "Error. There is not enough memory for this run."), 1)
        << result.err;
  }
}

TEST_F(MpiRuns, GoOnFromACheckpointOnAnotherNumberOfRanks) {
  struct Call {
    double t_end;
    int ranks;  ///< 0: without MPI
  };
  // The same calls as on one process: not one call, as bursts of rain know the end of their run.
  const auto results_of_calls = [](const std::vector<Call>& calls) {
    const TemporaryFolder folder;
    Words words = {"--report", "report.json", "--checkpoint", "kept"};
    for (const Call& call : calls) {
      Case c = test_restart::water_case();
      c.set_times(0.0, call.t_end);
      c.write(folder);
      const RunResult result =
          call.ranks > 0 ? on(call.ranks, folder, words) : alone(folder, words);
      EXPECT_EQ(result.status, 0) << result.err;
      if (&call == &calls.front()) words = with(words, {"--restart", "kept"});
    }
    return all_of(folder);
  };
  const auto expected = results_of_calls({{0.5, 0}, {1.2, 0}, {2.1, 0}, {3.0, 0}});
  const auto results = results_of_calls({{0.5, 2}, {1.2, 3}, {2.1, 0}, {3.0, 2}});
  ASSERT_EQ(results.size(), expected.size());
  for (const auto& [name, text] : expected) EXPECT_TRUE(results.at(name) == text) << name;
}

TEST_F(LongMpiRun, EndsAfterItsStepWhenMpiexecIsAsked) {
  const auto program = start(3, {"--checkpoint", "kept"});
  program->send(SIGTERM);
  const RunResult result = program->wait();  // the status is mpiexec's own: MPICH's is 0 at times
  EXPECT_FALSE(result.timed_out);
  EXPECT_TRUE(comes_true([&] { return !has_left_processes(); }));
  EXPECT_EQ(occurrences(folder.read("log.txt"), "Simulation interrupted at t = "), 1);
  expect_whole_results();

  const std::size_t rows = rows_of(folder, "sections.txt");
  const TemporaryFolder whole;
  c.set_times(0.0, 1e6);
  std::filesystem::copy(
      folder.path(), whole.path(),
      std::filesystem::copy_options::recursive | std::filesystem::copy_options::overwrite_existing);
  setenv(mark, whole.path().c_str(), 1);
  RunningProgram second(whole.path(),
                        job_of(2, {"-f", "data.json", "-nodisplay", "--restart", "kept"}),
                        by_mpiexec());
  EXPECT_TRUE(comes_true([&] { return rows_of(whole, "sections.txt") > rows + 10; }));
}

TEST_F(LongMpiRun, EndsWhenAnyOfItsRanksIsAsked) {
  const auto program = start(3);
  const pid_t process = process_of(2);
  ASSERT_GT(process, 0);
  kill(process, SIGTERM);
  const RunResult result = program->wait();
  EXPECT_EQ(result.status, 128 + SIGTERM) << result.err;
  EXPECT_EQ(occurrences(result.err, "The run was interrupted at t = "), 1) << result.err;
  expect_whole_results();
}

TEST_F(LongMpiRun, EndsWhileItsRanksStepWithoutOrders) {
  record_every(2.0);
  for (const int rank : {0, 2}) {
    const auto program = start(3);
    const pid_t process = process_of(rank);
    ASSERT_GT(process, 0);
    kill(process, SIGTERM);
    const RunResult result = program->wait();
    EXPECT_EQ(result.status, 128 + SIGTERM) << result.err;
    EXPECT_EQ(occurrences(result.err, "The run was interrupted at t = "), 1) << result.err;
    expect_whole_results();
    EXPECT_TRUE(comes_true([&] { return !has_left_processes(); }));
    std::filesystem::remove(folder.file("sections.txt"));
  }
}

TEST_F(LongMpiRun, KeepsACheckpointWhileItsRanksStepWithoutOrders) {
  record_every(2.0);
  const auto program = start(2, {"--checkpoint", "kept"});
  program->send(SIGUSR1);
  EXPECT_TRUE(comes_true([&] { return folder.has("kept.a"); }));
  EXPECT_TRUE(program->is_running());
}

TEST_F(LongMpiRun, KeepsACheckpointWhenMpiexecIsAsked) {
  const auto program = start(2, {"--checkpoint", "kept"});
  EXPECT_FALSE(folder.has("kept.a"));
  program->send(SIGUSR1);
  EXPECT_TRUE(comes_true([&] { return folder.has("kept.a"); }));
  EXPECT_TRUE(program->is_running());
}

TEST_F(LongMpiRun, EndsOnAllRanksWhenOneIsKilled) {
  for (const int rank : {0, 2}) {
    const auto program = start(3);
    const pid_t process = process_of(rank);
    ASSERT_GT(process, 0);
    kill(process, SIGKILL);
    const RunResult result = program->wait();
    EXPECT_NE(result.status, 0);
    EXPECT_FALSE(result.timed_out);
    EXPECT_TRUE(comes_true([&] { return !has_left_processes(); }));
    expect_whole_results();
    std::filesystem::remove(folder.file("sections.txt"));
  }
}
