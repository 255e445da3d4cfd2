// SIGINT, SIGTERM and SIGHUP: the first ends a run cleanly after its step, the second at once, but
// for the line that is being written.
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <thread>

#include "cases/CaseTest.hpp"

namespace {

using support::contains;
using support::lines;
using support::RunningProgram;
using support::RunResult;

const std::vector<std::string> arguments = {"-f", "data.json", "-nodisplay"};

void pause_until(const std::function<bool()>& condition) {
  for (int i = 0; i < 60000 && !condition(); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

/// The reading end of a pipe whose other end is the file of a name, and which nobody empties.
class Pipe {
 public:
  explicit Pipe(const std::string& name) {
    if (mkfifo(name.c_str(), 0600) == 0) file_ = open(name.c_str(), O_RDONLY | O_NONBLOCK);
    fcntl(file_, F_SETPIPE_SZ, size);
  }
  ~Pipe() { close(file_); }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  static constexpr int size = 4096;
  int bytes_waiting() const {
    int count = 0;
    ioctl(file_, FIONREAD, &count);
    return count;
  }

 private:
  int file_ = -1;
};

class Signals : public CaseTest {
 protected:
  Signals() {
    c.west = "-3 -0.1";
    c.set_times(0.0, 1e6);  // far more than is waited for
    c.data["output"]["time step enveloppe of results"] = 1e-9;
    c.add_gauges({{0.6, 0.2}}, 1e-9);
    record_passes();
  }
};

TEST_F(Signals, EndTheRunAfterItsStepWithCompleteResults) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    c.set_times(0.0, 1e6);
    c.write(folder);
    std::filesystem::remove(folder.file("passes.txt"));
    RunningProgram program(folder.path(), arguments);
    pause_until([&] { return lines(folder.read("passes.txt")).size() > 50; });
    program.send(signal);
    const RunResult result = program.wait();
    EXPECT_EQ(result.signal, 0);
    EXPECT_EQ(result.status, 128 + signal);
    EXPECT_TRUE(support::starts_with(result.err, "The run was interrupted at t = ")) << result.err;
    EXPECT_EQ(lines(result.err).size(), 1U);
    EXPECT_EQ(result.out.back(), '\r');
    const std::vector<std::string> log = lines(folder.read("log.txt"));
    ASSERT_GE(log.size(), 2U);
    EXPECT_TRUE(support::starts_with(log[log.size() - 2], "Simulation interrupted at t = "));
    EXPECT_TRUE(support::starts_with(log.back(), "Total execution time: "));
    EXPECT_FALSE(folder.has("out/enveloppe.txt.part"));

    // A run that was told to end there gives the same files.
    const std::string envelope = folder.read("out/enveloppe.txt");
    const std::string gauges = folder.read("out/gauges.txt");
    const std::string passes = folder.read("passes.txt");
    c.set_times(0.0, pass_times().back() + 0.1 * step_at_rest());
    run_well();
    EXPECT_EQ(folder.read("passes.txt"), passes);
    EXPECT_EQ(folder.read("out/gauges.txt"), gauges);
    EXPECT_EQ(folder.read("out/enveloppe.txt"), envelope);
  }
}

TEST_F(Signals, ReachARunOfTestsThatAScriptStartsInTheBackground) {
  c.write(folder);
  const auto before = std::signal(SIGINT, SIG_IGN);
  RunningProgram program(folder.path(), arguments, {.time_limit = 20.0});
  std::signal(SIGINT, before);
  pause_until([&] { return !lines(folder.read("passes.txt")).empty(); });
  program.send(SIGINT);
  EXPECT_EQ(program.wait().status, 128 + SIGINT);
}

TEST_F(Signals, EndARunAtOnceTheSecondTime) {
  c.data["output"]["time step enveloppe of results"] = 1e9;
  const Pipe pipe(folder.file("passes.txt"));
  c.write(folder);
  RunningProgram program(folder.path(), arguments);
  // The pipe is full, and the run waits for its writer, when no more bytes come.
  int before = -1;
  pause_until([&] {
    const int now = pipe.bytes_waiting();
    const bool is_full = now == before && now > Pipe::size / 2;
    before = now;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    return is_full;
  });
  program.send(SIGTERM);
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_TRUE(program.is_running());
  program.send(SIGINT);
  const RunResult result = program.wait();
  EXPECT_EQ(result.signal, SIGINT);
  EXPECT_FALSE(result.timed_out);
}

TEST_F(Signals, EndASetUpAtOnce) {
#ifdef __SANITIZE_THREAD__
  GTEST_SKIP() << "this sanitizer holds a signal back as long as a file is being opened";
#endif
  c.write(folder);
  std::filesystem::remove(folder.file("nodes.txt"));
  ASSERT_EQ(mkfifo(folder.file("nodes.txt").c_str(), 0600), 0);
  RunningProgram program(folder.path(), arguments);
  pause_until([&] { return contains(folder.read("log.txt"), "Reading nodes in: nodes.txt\n"); });
  program.send(SIGINT);
  EXPECT_EQ(program.wait().signal, SIGINT);
}

}  // namespace
