// Standard streams that are closed, full, or pipes that nobody reads: the run goes on without them.
#include <fcntl.h>
#include <unistd.h>

#include "cases/CaseTest.hpp"

namespace {

using support::RunOptions;
using support::RunResult;

/// The writing end of a pipe that nobody reads.
class BrokenPipe {
 public:
  BrokenPipe() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return;
    close(ends[0]);
    file = ends[1];
  }
  ~BrokenPipe() { close(file); }
  BrokenPipe(const BrokenPipe&) = delete;
  BrokenPipe& operator=(const BrokenPipe&) = delete;

  int file = -1;
};

class StandardStreams : public CaseTest {
 protected:
  StandardStreams() { c = support::full_case(); }

  static std::string warning(const std::string& reason) {
    return "Warning: nothing more can be written to standard output: " + reason + ".\n";
  }
};

TEST_F(StandardStreams, AreNeverReplacedByAResult) {
  run_well();
  const auto files = files_of(folder);
  const std::vector<std::vector<int>> subsets = {{0}, {1}, {2}, {0, 1}, {0, 2}, {1, 2}, {0, 1, 2}};
  for (const std::vector<int>& closed : subsets) {
    for (const auto& [name, text] : files) {
      if (support::starts_with(name, "out/")) std::filesystem::remove(folder.file(name));
    }
    const RunResult result = run({.closed = closed});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(files_of(folder), files) << closed.front() << " and " << closed.size() - 1 << " more";
  }
}

TEST_F(StandardStreams, MayBeAPipeThatNobodyReads) {
  run_well();
  const auto files = files_of(folder);
  const BrokenPipe pipe;
  const RunResult without_console = run({.out = pipe.file});
  EXPECT_EQ(without_console.signal, 0);
  EXPECT_EQ(without_console.status, 0);
  EXPECT_EQ(without_console.err, warning("Broken pipe"));
  EXPECT_EQ(files_of(folder), files);

  c.add_gauges({{0.6, 0.2}, {-5.0, -5.0}}, 0.25);  // a warning, which nobody reads
  run();
  const auto files_with_warning = files_of(folder);
  const RunResult without_errors = run({.err = pipe.file});
  EXPECT_EQ(without_errors.signal, 0);
  EXPECT_EQ(without_errors.status, 0);
  EXPECT_EQ(files_of(folder), files_with_warning);
}

TEST_F(StandardStreams, MayBeFull) {
  run_well();
  const auto files = files_of(folder);
  const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
  const RunResult result = run({.out = full});
  close(full);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, warning("No space left on device"));
  EXPECT_EQ(files_of(folder), files);
}

TEST_F(StandardStreams, MustTakeWhatIsOnlyMeantForThem) {
  const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
  for (const char* const option : {"--help", "--version"}) {
    const RunResult result = support::run_program(folder.path(), {option}, {.out = full});
    EXPECT_EQ(result.status, 255) << option;
    EXPECT_EQ(result.err, warning("No space left on device")) << option;
  }
  // A longer text fails before the last of it is flushed.
  const RunResult result = support::run_program(folder.path(), {"--schema"}, {.out = full});
  EXPECT_EQ(result.status, 255);
  EXPECT_TRUE(support::contains(result.err, "nothing more can be written to standard output"));
  close(full);
}

}  // namespace
