#include "ranks/writers.hpp"

#include <gtest/gtest.h>

TEST(Writers, AreTheFirstOfTheirMachines) {
  EXPECT_EQ(ranks::writers_of({0, 0, 0}, 0), (std::vector<int>{0, 0, 0}));
  EXPECT_EQ(ranks::writers_of({0, 1, 0, 1}, 0), (std::vector<int>{0, 1, 0, 1}));
}

TEST(Writers, AreAsManyAsAreAskedFor) {
  EXPECT_EQ(ranks::writers_of({0, 0, 0, 0}, 1), (std::vector<int>{0, 0, 0, 0}));
  EXPECT_EQ(ranks::writers_of({0, 0, 0, 0, 0}, 2), (std::vector<int>{0, 0, 0, 3, 3}));
  EXPECT_EQ(ranks::writers_of({0, 1, 0, 1}, 2), (std::vector<int>{0, 1, 0, 1}));
  EXPECT_EQ(ranks::writers_of({0, 1, 0, 1}, 4), (std::vector<int>{0, 1, 2, 3}));
  EXPECT_EQ(ranks::writers_of({0, 0, 0}, 7), (std::vector<int>{0, 1, 2}));
}
