#include "utils/signals.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <semaphore>
#include <thread>
#include <utility>

#include "support/TemporaryFolder.hpp"

namespace {

using testing::ExitedWithCode;
using testing::KilledBySignal;

TEST(CheckpointWishDeathTest, IsNotedOncePerSignal) {
  const auto run = [] {
    utils::listen_for_checkpoint_wishes();
    if (utils::take_checkpoint_wish()) std::abort();
    for (int i = 0; i < 2; ++i) {
      std::raise(SIGUSR1);
      if (!utils::take_checkpoint_wish() || utils::take_checkpoint_wish()) std::abort();
    }
    std::exit(0);
  };
  EXPECT_EXIT(run(), ExitedWithCode(0), "^$");
}

TEST(InterruptionDeathTest, NotesTheFirstSignal) {
  const auto run = [](int signal) {
    utils::listen_for_interruption();
    if (utils::interrupting_signal() != 0) std::abort();
    std::raise(signal);
    std::exit(utils::interrupting_signal());
  };
  EXPECT_EXIT(run(SIGINT), ExitedWithCode(SIGINT), "^$");
  EXPECT_EXIT(run(SIGTERM), ExitedWithCode(SIGTERM), "^$");
  EXPECT_EXIT(run(SIGHUP), ExitedWithCode(SIGHUP), "^$");
}

TEST(InterruptionDeathTest, EndsTheProcessAtTheFirstSignalUntilItListens) {
  const auto run = [](int signal) {
    utils::end_between_lines();
    std::raise(signal);
    std::exit(0);
  };
  EXPECT_EXIT(run(SIGINT), KilledBySignal(SIGINT), "^$");
  EXPECT_EXIT(run(SIGHUP), KilledBySignal(SIGHUP), "^$");
}

void write_line() {
  if (write(STDERR_FILENO, "a whole line", 12) != 12) std::abort();
}

TEST(InterruptionDeathTest, WaitsForTheLineThatIsBeingWritten) {
  const auto run = [] {
    utils::listen_for_interruption();
    std::raise(SIGINT);
    {
      const utils::LineUnderWay line;
      std::raise(SIGTERM);
      write_line();
    }
    write_line();
  };
  EXPECT_EXIT(run(), KilledBySignal(SIGTERM), "^a whole line$");
}

TEST(InterruptionDeathTest, DoesNotWaitWhenItIsAskedAThirdTime) {
  const auto run = [] {
    utils::listen_for_interruption();
    for (const int signal : {SIGINT, SIGINT}) std::raise(signal);
  };
  const auto run_in_line = [&] {
    const utils::LineUnderWay line;
    run();
    std::raise(SIGTERM);
    write_line();
  };
  EXPECT_EXIT(run_in_line(), KilledBySignal(SIGTERM), "^$");
}

TEST(InterruptionDeathTest, WaitsForLinesOfOtherThreadsAndLetsNoneBegin) {
  const auto run = [](const std::function<void()>& end) {
    utils::end_between_lines();
    std::binary_semaphore has_begun{0};
    std::thread writer([&] {
      const utils::LineUnderWay line;
      has_begun.release();
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
      write_line();
    });
    has_begun.acquire();
    end();
    const utils::LineUnderWay line;
    write_line();
  };
  EXPECT_EXIT(run([] { std::raise(SIGTERM); }), KilledBySignal(SIGTERM), "^a whole line$");
  EXPECT_EXIT(run([] { utils::exit_between_lines(7); }), ExitedWithCode(7), "^a whole line$");
}

TEST(ExitBetweenLinesDeathTest, EndsAtOnceWhereNoLineIsBeingWritten) {
  EXPECT_EXIT(utils::exit_between_lines(255), ExitedWithCode(255), "^$");
}

TEST(WritesDeathTest, FailInsteadOfEndingTheProcess) {
  const auto run = [](const auto& write_in_vain) {
    utils::let_writes_fail();
    std::exit(write_in_vain());
  };
  const auto into_a_pipe_that_nobody_reads = [] {
    int ends[2];
    if (pipe(ends) != 0) std::abort();
    close(ends[0]);
    return write(ends[1], "x", 1) < 0 && errno == EPIPE ? 0 : 1;
  };
  const auto beyond_the_largest_size = [] {
    const support::TemporaryFolder folder;
    const int file = open(folder.file("out.txt").c_str(), O_WRONLY | O_CREAT, 0600);
    rlimit limit;
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlim_t usual = std::exchange(limit.rlim_cur, 0);
    setrlimit(RLIMIT_FSIZE, &limit);
    const bool fails = write(file, "x", 1) < 0 && errno == EFBIG;
    limit.rlim_cur = usual;
    setrlimit(RLIMIT_FSIZE, &limit);
    return fails ? 0 : 1;
  };
  EXPECT_EXIT(run(into_a_pipe_that_nobody_reads), ExitedWithCode(0), "^$");
  EXPECT_EXIT(run(beyond_the_largest_size), ExitedWithCode(0), "^$");
}

TEST(InterruptionDeathTest, EndsTheProcessAtTheSecondSignalOfEitherKind) {
  const auto run = [](int first, int second) {
    utils::listen_for_interruption();
    std::raise(first);
    std::raise(second);
    std::exit(0);
  };
  EXPECT_EXIT(run(SIGINT, SIGINT), KilledBySignal(SIGINT), "^$");
  EXPECT_EXIT(run(SIGINT, SIGTERM), KilledBySignal(SIGTERM), "^$");
  EXPECT_EXIT(run(SIGTERM, SIGINT), KilledBySignal(SIGINT), "^$");
}

TEST(InterruptionDeathTest, LeavesAnIgnoredSignalIgnored) {
  const auto run = [] {
    std::signal(SIGINT, SIG_IGN);
    utils::listen_for_interruption();
    std::raise(SIGINT);
    std::exit(utils::interrupting_signal());
  };
  EXPECT_EXIT(run(), ExitedWithCode(0), "^$");
}

}  // namespace
