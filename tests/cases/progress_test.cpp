// "--progress": how far a run is, on standard error.
#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <unistd.h>

#include <csignal>
#include <regex>

#include "cases/CaseTest.hpp"

namespace {

using support::RunningProgram;
using support::RunResult;

/// A terminal of its own: the program writes to `program_side`.
class Terminal {
 public:
  Terminal() : own_side_(posix_openpt(O_RDWR | O_NOCTTY)) {
    grantpt(own_side_);
    unlockpt(own_side_);
    program_side = open(ptsname(own_side_), O_RDWR | O_NOCTTY);
  }
  ~Terminal() {
    close(program_side);
    close(own_side_);
  }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  /// What has been written; waits for more for a time at most.
  std::string read_some(int milliseconds) {
    pollfd waiting = {own_side_, POLLIN, 0};
    if (poll(&waiting, 1, milliseconds) <= 0) return "";
    char text[4096];
    const ssize_t size = read(own_side_, text, sizeof text);
    return {text, size > 0 ? static_cast<std::size_t>(size) : 0};
  }

  int program_side;

 private:
  int own_side_;
};

class ProgressOption : public CaseTest {
 protected:
  const std::vector<std::string> arguments = {"-f", "data.json", "-nodisplay", "--progress"};
};

TEST_F(ProgressOption, RewritesALineOnATerminal) {
  c.west = "-3 -0.1";
  c.set_times(0.0, 1e6);  // far more than is waited for
  for (const char* const path : {"tables", "objects"}) {
    setenv("QUILLMERE_ENGINE", path, 1);
    c.write(folder);
    Terminal terminal;
    RunningProgram program(folder.path(), arguments, {.err = terminal.program_side});
    std::string shown;
    for (int i = 0; i < 600 && support::split(shown, '\r').size() < 4; ++i) {
      shown += terminal.read_some(100);
    }
    program.send(SIGINT);
    const RunResult result = program.wait();
    for (int i = 0; i < 50 && !support::contains(shown, "interrupted"); ++i) {
      shown += terminal.read_some(100);
    }
    unsetenv("QUILLMERE_ENGINE");
    EXPECT_EQ(result.status, 128 + SIGINT);
    const std::regex line(
        R"(\r +\d+\.\d %  step [0-9.e-]+ s  24 wet cells  fastest [0-9.e-]+ m/s  )"
        R"(\d+:\d\d:\d\d gone  (\d+:\d\d:\d\d|\?) left\x1b\[K)");
    const std::ptrdiff_t lines = std::distance(
        std::sregex_iterator(shown.begin(), shown.end(), line), std::sregex_iterator());
    EXPECT_GE(lines, 3) << shown;
    // The terminal turns a line end into two characters.
    EXPECT_TRUE(support::contains(shown, "left\033[K\r\nThe run was interrupted")) << shown;
  }
}

TEST_F(ProgressOption, SaysNothingElsewhereBeforeThirtySecondsAreOver) {
  c.write(folder);
  const RunResult silent = support::run_case(folder);
  const RunResult result = support::run_program(folder.path(), arguments);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out, silent.out);
}

}  // namespace
