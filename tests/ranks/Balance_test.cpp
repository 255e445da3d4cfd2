// When cells are worth to be moved to other ranks.
#include "ranks/Balance.hpp"

#include <gtest/gtest.h>

#include <array>

using ranks::Balance;

namespace {

using Looks = std::array<engine::Work, 4>;

// The mean is 1 s.
constexpr Looks equally_busy = {{{1.0, 100}, {1.05, 105}, {0.95, 95}, {1.0, 100}}};
constexpr Looks one_works = {{{0.1, 10}, {3.7, 370}, {0.1, 10}, {0.1, 10}}};
constexpr Looks one_is_slow = {{{0.8, 100}, {1.6, 100}, {0.8, 100}, {0.8, 100}}};

}  // namespace

TEST(Balance, LeavesRanksAloneThatAreBusyForAboutAsLong) {
  Balance balance(0.0);
  for (int look = 0; look < 1000; ++look) balance.add_look(equally_busy);
  EXPECT_FALSE(balance.is_time());
  EXPECT_NEAR(balance.seconds().imbalance(), 1.05, 1e-12);
  for (int look = 0; look < 1000; ++look) balance.add_look(one_is_slow);
  EXPECT_FALSE(balance.is_time());
  EXPECT_GT(balance.seconds().imbalance(), 1.3);
  EXPECT_NEAR(balance.cells().imbalance(), 1.025, 1e-12);
}

TEST(Balance, IsTimeOnceWaitingHasTakenLongerThanAMoveTakes) {
  Balance balance(10.0);
  for (int look = 0; look < 3; ++look) {
    balance.add_look(one_works);  // 2.7 s are lost
    EXPECT_FALSE(balance.is_time()) << look;
  }
  balance.add_look(one_works);
  EXPECT_TRUE(balance.is_time());
  balance.has_moved(5.0);
  EXPECT_FALSE(balance.is_time());
  balance.add_look(one_works);
  EXPECT_FALSE(balance.is_time());
  balance.add_look(one_works);
  EXPECT_TRUE(balance.is_time());
}

TEST(Balance, PaysIfAMoveGainsEnough) {
  Balance balance(10.0);
  for (int look = 0; look < 4; ++look) balance.add_look(one_works);
  EXPECT_TRUE(balance.pays(3.0, 1.5));
  EXPECT_TRUE(balance.is_time());
  EXPECT_FALSE(balance.pays(3.0, 2.5));
  EXPECT_FALSE(balance.is_time());  // it has to be lost again before anybody asks again
  balance.add_look(one_works);
  EXPECT_FALSE(balance.is_time());
  EXPECT_FALSE(balance.pays(1.05, 1.0));  // ranks that have the same to do and differ in speed
}

TEST(Balance, OfARunIsThatOfTheTimesThatAllWaitedFor) {
  Balance balance(1.0);
  EXPECT_EQ(balance.seconds().imbalance(), 1.0);
  balance.add_look(one_works);
  balance.add_look(Looks{{{3.0, 1}, {3.0, 1}, {3.0, 1}, {3.0, 1}}});
  EXPECT_DOUBLE_EQ(balance.seconds().imbalance(), (3.7 + 3.0) / (1.0 + 3.0));
  balance.has_moved(0.5);
  balance.has_moved(0.25);
  EXPECT_EQ(balance.moving(), 0.75);
}
