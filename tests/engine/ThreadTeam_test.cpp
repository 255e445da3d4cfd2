#include "engine/ThreadTeam.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <thread>
#include <vector>

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

TEST(ThreadTeam, TheCallerDoesTheSharesOfThreadsThatDoNotGetACore) {
  engine::ThreadTeam team(64);
  int of_caller = 0;
  const std::thread::id caller = std::this_thread::get_id();
  for (int round = 0; round < 100; ++round) {
    team.run([&](int) {
      if (std::this_thread::get_id() == caller) ++of_caller;
    });
  }
  EXPECT_GT(of_caller, 100);  // one in every round is its own
}

TEST(ThreadTeam, ASmallMeshGetsOneThreadAndALargeOneWhatIsAskedFor) {
  setenv("OMP_NUM_THREADS", "3", 1);
  EXPECT_EQ(engine::threads_for(1999), 1);
  EXPECT_EQ(engine::threads_for(2000), 2);
  EXPECT_EQ(engine::threads_for(1000000), 3);
  unsetenv("OMP_NUM_THREADS");
  EXPECT_GE(engine::threads_for(1000000), 1);
}
