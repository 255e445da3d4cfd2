#include "engine/host/SharedList.hpp"

#include <gtest/gtest.h>

#include <vector>

#include "engine/ThreadTeam.hpp"

namespace {

/// What a member takes until nothing is left.
std::vector<int> all_for(engine::SharedList& list, int member) {
  std::vector<int> taken;
  for (int k = list.take(member); k >= 0; k = list.take(member)) taken.push_back(k);
  return taken;
}

}  // namespace

TEST(SharedList, GivesAMemberItsOwnShareFirstAndThenTheBacksOfTheOthers) {
  engine::SharedList list(3);
  list.deal(7);  // 0 1, 2 3, 4 5 6
  EXPECT_EQ(all_for(list, 1), (std::vector{2, 3, 6, 5, 4, 1, 0}));
  EXPECT_EQ(list.take(0), -1);
  EXPECT_EQ(list.take(2), -1);
}

TEST(SharedList, IsDealtAnew) {
  engine::SharedList list(2);
  list.deal(3);
  list.take(0);
  list.deal(1);
  EXPECT_EQ(all_for(list, 0), (std::vector{0}));
  list.deal(0);
  EXPECT_EQ(list.take(1), -1);
}

TEST(SharedList, GivesEveryEntryToOneThreadOnly) {
  constexpr std::size_t count = 101;
  for (const int size : {1, 2, 3, 7}) {
    engine::ThreadTeam team(size);
    engine::SharedList list(size);
    std::vector<int> times_taken(count, 0);
    for (int round = 1; round <= 200; ++round) {
      list.deal(count);
      team.run([&](int member) {
        for (const int k : all_for(list, member)) ++times_taken[static_cast<std::size_t>(k)];
      });
      for (const int times : times_taken) ASSERT_EQ(times, round) << size;
    }
  }
}
