#include "utils/SmallVector.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Numbers = utils::SmallVector<int, 3>;

std::vector<int> entries(const Numbers& numbers) { return {numbers.begin(), numbers.end()}; }

Numbers counted_to(int n) {
  std::vector<int> values;
  for (int i = 0; i < n; ++i) values.push_back(i);
  return Numbers(values);
}

TEST(SmallVector, KeepsWhatIsAddedInOrderHereAndElsewhere) {
  Numbers numbers;
  std::vector<int> expected;
  EXPECT_TRUE(numbers.empty());
  for (int i = 0; i < 50; ++i) {
    numbers.push_back(7 * i);
    expected.push_back(7 * i);
    ASSERT_EQ(entries(numbers), expected);
    ASSERT_EQ(numbers.size(), expected.size());
    ASSERT_EQ(numbers[static_cast<std::size_t>(i)], 7 * i);
  }
}

TEST(SmallVector, TakesTheEntriesOfARange) {
  EXPECT_EQ(entries(counted_to(2)), (std::vector<int>{0, 1}));
  EXPECT_EQ(entries(counted_to(5)), (std::vector<int>{0, 1, 2, 3, 4}));
}

TEST(SmallVector, HoldsItsInlineEntriesInItself) {
  const Numbers three = counted_to(3);
  const auto* const begin = reinterpret_cast<const char*>(&three);
  const auto* const entry = reinterpret_cast<const char*>(&three[2]);
  EXPECT_GE(entry, begin);
  EXPECT_LT(entry, begin + sizeof three);
  EXPECT_EQ(sizeof(utils::SmallVector<void*, 3>), 3 * sizeof(void*) + 8);
}

TEST(SmallVector, GrowsWithZerosAndShrinks) {
  Numbers numbers = counted_to(2);
  numbers.resize(5);
  EXPECT_EQ(entries(numbers), (std::vector<int>{0, 1, 0, 0, 0}));
  numbers.resize(1);
  EXPECT_EQ(entries(numbers), (std::vector<int>{0}));
  numbers.resize(2);
  EXPECT_EQ(entries(numbers), (std::vector<int>{0, 0}));
}

TEST(SmallVector, IsEmptyAfterItWasClearedAndCanBeFilledAgain) {
  for (const int n : {2, 9}) {
    Numbers numbers = counted_to(n);
    numbers.clear();
    EXPECT_TRUE(numbers.empty());
    numbers.push_back(4);
    EXPECT_EQ(entries(numbers), (std::vector<int>{4}));
  }
}

TEST(SmallVector, LetsItsEntriesBeChangedInPlace) {
  Numbers numbers = counted_to(5);
  numbers[4] = 40;
  for (int& number : numbers) ++number;
  EXPECT_EQ(entries(numbers), (std::vector<int>{1, 2, 3, 4, 41}));
}

}  // namespace
