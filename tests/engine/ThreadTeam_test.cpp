#include "engine/ThreadTeam.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

TEST(ThreadTeam, EveryMemberRunsOncePerRound) {
  for (const int size : {1, 2, 3, 7}) {
    engine::ThreadTeam team(size);
    std::vector<int> calls(static_cast<std::size_t>(size), 0);
    for (int round = 1; round <= 500; ++round) {
      team.run([&](int member) { ++calls[static_cast<std::size_t>(member)]; });
      for (const int count : calls) ASSERT_EQ(count, round) << size;
    }
  }
}

TEST(ThreadTeam, ASmallMeshGetsOneThreadAndALargeOneWhatIsAskedFor) {
  setenv("OMP_NUM_THREADS", "3", 1);
  EXPECT_EQ(engine::threads_for(1999), 1);
  EXPECT_EQ(engine::threads_for(2000), 2);
  EXPECT_EQ(engine::threads_for(1000000), 3);
  unsetenv("OMP_NUM_THREADS");
  EXPECT_GE(engine::threads_for(1000000), 1);
}
