#include <cstdlib>

#include "cases/CaseTest.hpp"

namespace {

using Determinism = CaseTest;

TEST_F(Determinism, TwoRunsOfACaseWriteTheSameBytes) {
  c = support::full_case(12, 9);
  c.set_times(0.0, 1.5);
  c.data["output"]["time step enveloppe of results"] = 0.01;
  const support::RunResult first = run_well();
  const auto files = files_of(folder);
  EXPECT_EQ(files.count("out/pic_1_25.txt"), 1U);

  const support::TemporaryFolder other;
  c.write(other);
  const support::RunResult second = support::run_case(other);
  EXPECT_EQ(second.status, 0);
  EXPECT_EQ(second.out, first.out);
  EXPECT_EQ(files_of(other), files);
}

/// Sets a variable of the environment, for the programs that a test runs, until its end.
class Setting {
 public:
  Setting(const char* name, const std::string& value) : name_(name) {
    setenv(name, value.c_str(), 1);
  }
  ~Setting() { unsetenv(name_); }
  Setting(const Setting&) = delete;
  Setting& operator=(const Setting&) = delete;

 private:
  const char* name_;
};

TEST_F(Determinism, EveryPathWritesTheSameBytesOnAnyNumberOfThreads) {
  c = support::full_case(113, 65);  // 14,690 cells: enough for seven threads
  c.set_times(0.0, 0.3);
  c.data["output"]["maxima of flow"] = {{"file", "maxima.txt"}, {"arrival depth", 0.4}};
  c.data["output"]["final state"] = "final.txt";
  const Setting objects("QUILLMERE_ENGINE", "objects");
  const support::RunResult first = run();  // its shallow end races, and that is told
  EXPECT_EQ(first.status, 0);
  const auto files = files_of(folder);
  const Setting emulated("QUILLMERE_DEVICE", "emulated");
  for (const char* path : {"tables", "device"}) {
    const Setting tables("QUILLMERE_ENGINE", path);
    for (const char* threads : {"1", "2", "3", "7"}) {
      const Setting count("OMP_NUM_THREADS", threads);
      const support::RunResult result = run();
      EXPECT_EQ(result.status, 0);
      EXPECT_EQ(result.err, first.err);
      EXPECT_EQ(files_of(folder), files) << path << ", " << threads;
    }
  }
}

TEST_F(Determinism, AForcedPathThatCannotRunIsRefused) {
  c = support::full_case();
  {
    const Setting fables("QUILLMERE_ENGINE", "fables");
    expect_stop("Error. QUILLMERE_ENGINE is \"fables\", expected objects, tables or device.\n");
  }
  const Setting device("QUILLMERE_ENGINE", "device");
  expect_stop(
      "Error. A graphics card is asked for, but this program was built without support for cards "
      "(-DQUILLMERE_CUDA=ON); the device \"emulated\" runs what a card would run on the "
      "processor.\n");
  const Setting abacus("QUILLMERE_DEVICE", "abacus");
  expect_stop("Error. The device is \"abacus\", expected card, emulated or watched.\n");
}

TEST_F(Determinism, TheCommandLineChoosesADevice) {
  c = support::full_case();
  c.set_times(0.0, 0.3);
  run();
  const auto files = files_of(folder);
  const Setting objects("QUILLMERE_ENGINE", "objects");
  const auto run_on = [&](const std::string& device) {
    return support::run_program(folder.path(),
                                {"-f", "data.json", "-nodisplay", "--device", device});
  };
  for (const char* device : {"emulated", "watched"}) {
    EXPECT_EQ(run_on(device).status, 0);
    EXPECT_EQ(files_of(folder), files) << device;
  }
  EXPECT_EQ(run_on("abacus").err,
            "Error. The device is \"abacus\", expected card, emulated or watched.\n");
  EXPECT_EQ(run_on("--progress").err,
            "Error. --device needs card, emulated or watched behind it.\n");
}

TEST_F(Determinism, ARunOverTheResultsOfAnotherWritesTheSameBytes) {
  c = support::full_case();
  run_well();
  const auto files = files_of(folder);
  run_well();
  EXPECT_EQ(files_of(folder), files);
}

TEST_F(Determinism, OutputsDoNotChangeTheFlow) {
  c = support::full_case();
  c.add_snapshots({2.0});
  c.data["output"].erase("gauges");
  c.data["output"].erase("discharges");
  c.data["output"]["time step enveloppe of results"] = 1e9;
  run_well();
  const std::string alone = folder.read("out/pic_2_00.txt");
  ASSERT_NE(alone, "");

  c.add_gauges({{1.2, 1.1}}, 1e-9);  // at every pass, like the others
  c.add_sections({c.edges_across(1)}, 1e-9);
  c.data["output"]["time step enveloppe of results"] = 1e-9;
  c.add_snapshots({0.0, 0.01, 0.1, 0.11, 0.2, 0.21, 0.3, 2.0});
  run_well();
  EXPECT_EQ(folder.read("out/pic_2_00.txt"), alone);
}

}  // namespace
