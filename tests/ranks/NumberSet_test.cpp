#include "ranks/NumberSet.hpp"

#include <gtest/gtest.h>

#include <random>
#include <set>

namespace {

using cases::Number;
using Numbers = std::vector<Number>;

void expect_same(const ranks::NumberSet& numbers, const std::set<Number>& expected) {
  EXPECT_EQ(numbers.size(), expected.size());
  EXPECT_EQ(numbers.numbers(), Numbers(expected.begin(), expected.end()));
  Number place = 0;
  for (const Number number : expected) EXPECT_EQ(numbers.place_of(number), place++) << number;
}

}  // namespace

TEST(NumberSet, HoldsEachNumberOfItsColumnsOnce) {
  const Numbers left = {7, 3, 3, 12}, right = {-1, 7, -1, 511};
  expect_same(ranks::NumberSet({left, right}), {3, 7, 12, 511});
}

TEST(NumberSet, KnowsThePlacesOfNumbersNearAndFar) {
  std::mt19937 random(5);
  for (const Number most : {63, 64, 65, 511, 512, 513, 5000, 2147483647}) {
    std::uniform_int_distribution<Number> number(0, most);
    Numbers column = {0, most};
    for (int k = 0; k < 700; ++k) column.push_back(number(random));
    expect_same(ranks::NumberSet({column}), {column.begin(), column.end()});
  }
}

TEST(NumberSet, OfNothingIsEmpty) {
  EXPECT_EQ(ranks::NumberSet().size(), 0U);
  EXPECT_TRUE(ranks::NumberSet({Numbers{-1, -1}}).numbers().empty());
}
