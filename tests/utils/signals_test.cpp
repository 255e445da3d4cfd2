#include "utils/signals.hpp"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>

namespace {

using testing::ExitedWithCode;
using testing::KilledBySignal;

TEST(InterruptionDeathTest, NotesTheFirstSignal) {
  const auto run = [](int signal) {
    utils::listen_for_interruption();
    if (utils::interrupting_signal() != 0) std::abort();
    std::raise(signal);
    std::exit(utils::interrupting_signal());
  };
  EXPECT_EXIT(run(SIGINT), ExitedWithCode(SIGINT), "^$");
  EXPECT_EXIT(run(SIGTERM), ExitedWithCode(SIGTERM), "^$");
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
