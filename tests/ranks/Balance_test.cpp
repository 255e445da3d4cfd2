// When cells are worth to be moved to other ranks.
#include "ranks/Balance.hpp"

#include <gtest/gtest.h>

#include <array>

using ranks::Balance;

namespace {

constexpr std::array<double, 4> equally_busy = {1.0, 1.05, 0.95, 1.0};
constexpr std::array<double, 4> one_works = {0.1, 3.7, 0.1, 0.1};  // the mean is 1

}  // namespace

TEST(Balance, LeavesRanksAloneThatAreBusyForAboutAsLong) {
  Balance balance(0.0);
  for (int look = 0; look < 1000; ++look) balance.add_look(equally_busy);
  EXPECT_FALSE(balance.is_time());
  EXPECT_NEAR(balance.imbalance(), 1.05, 1e-12);
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
  EXPECT_TRUE(balance.pays(equally_busy));
  EXPECT_TRUE(balance.is_time());
  EXPECT_FALSE(balance.pays(std::array<double, 4>{0.5, 0.4, 0.1, 3.0}));
  EXPECT_FALSE(balance.is_time());  // it has to be lost again before anybody asks again
  balance.add_look(one_works);
  EXPECT_FALSE(balance.is_time());
}

TEST(Balance, OfARunIsThatOfTheTimesThatAllWaitedFor) {
  Balance balance(1.0);
  EXPECT_EQ(balance.imbalance(), 1.0);
  balance.add_look(one_works);
  balance.add_look(std::array<double, 4>{3.0, 3.0, 3.0, 3.0});
  EXPECT_DOUBLE_EQ(balance.imbalance(), (3.7 + 3.0) / (1.0 + 3.0));
}
