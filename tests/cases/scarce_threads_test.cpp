// A machine that gives the run no threads: it goes on without them.
#include <sys/resource.h>

#include "cases/ReportTest.hpp"

namespace {

using support::contains;
using support::RunResult;

class ScarceThreads : public ReportTest {
 protected:
  ScarceThreads() {
    c = support::full_case(60, 40);  // enough cells for four threads
    c.set_times(0.0, 0.3);
    c.add_snapshots({0.0, 0.1, 0.2});
    c.add_gauges({{0.6, 0.2}}, 0.05);
    c.data["output"]["time step enveloppe of results"] = 0.05;
    setenv("OMP_NUM_THREADS", "4", 1);
  }
  ~ScarceThreads() override { unsetenv("OMP_NUM_THREADS"); }

  /// A thread asks for more memory than the run may have.
  const support::RunOptions no_threads = {.address_space = std::size_t{2} << 30,
                                          .limits = {{RLIMIT_STACK, std::size_t{1} << 36}},
                                          .time_limit = 60.0};
};

TEST_F(ScarceThreads, CostTimeAndNoResult) {
  if (!support::memory_can_be_limited) GTEST_SKIP() << "a sanitizer maps terabytes";
  run_well();
  const auto files = files_of(folder);
  const RunResult result = run(no_threads);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err,
            "Warning: the system gives 1 of 4 threads: the run is slower, its results stay "
            "the same.\nWarning: a thread that writes results couldn't be started (Resource "
            "temporarily unavailable). The run waits for such results instead; they stay the "
            "same.\n");
  EXPECT_EQ(files_of(folder), files);
}

TEST_F(ScarceThreads, LetAReportTellWhatTheRunHad) {
  if (!support::memory_can_be_limited) GTEST_SKIP() << "a sanitizer maps terabytes";
  c.write(folder);
  const RunResult result = support::run_program(
      folder.path(), {"-f", "data.json", "-nodisplay", "--report", "report.json"}, no_threads);
  EXPECT_FALSE(result.timed_out);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(report()["execution"]["threads"], 1);
  EXPECT_EQ(report()["outcome"]["status"], "complete");
}

}  // namespace
