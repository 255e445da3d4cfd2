#include "engine/ThreadTeam.hpp"

#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>

#include <cstdlib>
#include <set>
#include <thread>
#include <vector>

#include "support/NoThreads.hpp"
#include "support/run_program.hpp"

TEST(ThreadTeam, EveryShareRunsOncePerRound) {
  for (const int size : {1, 2, 3, 7}) {
    engine::ThreadTeam team(size);
    std::vector<int> calls(static_cast<std::size_t>(size), 0);
    for (int round = 1; round <= 500; ++round) {
      team.run([&](int share) { ++calls[static_cast<std::size_t>(share)]; });
      for (const int count : calls) ASSERT_EQ(count, round) << size;
    }
  }
}

TEST(ThreadTeam, OthersDoTheSharesOfThreadsThatDoNotGetACore) {
  constexpr std::size_t size = 64;
  engine::ThreadTeam team(size);
  std::vector<std::thread::id> threads(size);  // that ran each share of a round
  const auto some_thread_ran_two = [&] {
    return std::set<std::thread::id>(threads.begin(), threads.end()).size() < size;
  };
  int round = 0;
  for (; round < 10000; ++round) {
    team.run(
        [&](int share) { threads[static_cast<std::size_t>(share)] = std::this_thread::get_id(); });
    if (some_thread_ran_two()) break;
  }
  EXPECT_LT(round, 10000);
}

void expect_every_share_once(engine::ThreadTeam& team) {
  std::vector<int> calls(static_cast<std::size_t>(team.size()), 0);
  for (int round = 1; round <= 100; ++round) {
    team.run([&](int share) { ++calls[static_cast<std::size_t>(share)]; });
    for (const int count : calls) ASSERT_EQ(count, round);
  }
}

TEST(ThreadTeam, GoesOnAloneWhereNoThreadCanBeStarted) {
  const support::NoThreads none;
  engine::ThreadTeam team(4);
  EXPECT_EQ(team.size(), 1);
  expect_every_share_once(team);
}

TEST(ThreadTeamDeathTest, GoesOnWithTheThreadsThatCouldBeStarted) {
  if (!support::memory_can_be_limited) GTEST_SKIP() << "a sanitizer maps terabytes";
  const auto run = [] {
    constexpr rlim_t gigabyte = rlim_t{1} << 30;  // room for at most three of the stacks
    const rlimit memory{4 * gigabyte, 4 * gigabyte};
    setrlimit(RLIMIT_AS, &memory);
    pthread_attr_t attributes;
    pthread_getattr_default_np(&attributes);
    pthread_attr_setstacksize(&attributes, gigabyte);
    pthread_setattr_default_np(&attributes);
    engine::ThreadTeam team(8);
    if (team.size() < 2 || team.size() > 4) std::exit(1);
    expect_every_share_once(team);
    std::exit(testing::Test::HasFailure() ? 2 : 0);
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(0), "^$");
}

TEST(ThreadTeam, ASmallMeshGetsOneThreadAndALargeOneWhatIsAskedFor) {
  EXPECT_EQ(engine::threads_for(1999, 3), 1);
  EXPECT_EQ(engine::threads_for(2000, 3), 2);
  EXPECT_EQ(engine::threads_for(1000000, 3), 3);
  EXPECT_GE(engine::threads_for(1000000, 0), 1);
}
