#include "utils/PlacedSum.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace {

using utils::PlacedSum;

std::uint64_t placed_sum_of(const std::vector<double>& values, std::uint64_t first = 0,
                            std::uint64_t column = 0) {
  PlacedSum sum(column);
  sum.add_column(first, std::span(values));
  return sum.value();
}

}  // namespace

TEST(PlacedSum, OfPartsAddsUpToThatOfTheWhole) {
  const std::vector<double> whole = {1.0, -2.5, 0.0, 7.0, 1.0};
  const std::vector<double> begin(whole.begin(), whole.begin() + 2);
  const std::vector<double> end(whole.begin() + 2, whole.end());
  EXPECT_EQ(placed_sum_of(whole), placed_sum_of(end, 2) + placed_sum_of(begin));
}

TEST(PlacedSum, ShowsAnyChange) {
  const std::vector<double> values(100, 0.0);
  const std::uint64_t before = placed_sum_of(values);
  for (std::size_t i = 0; i < values.size(); ++i) {
    std::vector<double> changed = values;
    changed[i] = -0.0;
    EXPECT_NE(placed_sum_of(changed), before) << i;
  }
  EXPECT_NE(placed_sum_of({1.0, 2.0}), placed_sum_of({2.0, 1.0}));
  EXPECT_NE(placed_sum_of({1.0, 2.0}), placed_sum_of({1.0, 2.0}, 1));
  EXPECT_NE(placed_sum_of({1.0, 2.0}), placed_sum_of({1.0, 2.0}, 0, 1));
  EXPECT_NE(placed_sum_of({0.0}), placed_sum_of({}));
  EXPECT_NE(placed_sum_of({0.0, 0.0}), placed_sum_of({0.0}));
}

TEST(PlacedSum, OfSeveralValuesAtAPlaceTellsTheirOrderAndNumber) {
  const auto of_values = [](auto... values) {
    PlacedSum sum;
    sum.add(3, values...);
    return sum.value();
  };
  EXPECT_NE(of_values(1, 2.5), of_values(2.5, 1));
  EXPECT_NE(of_values(1.0F), of_values(1.0));
  const auto of_list = [](const std::vector<int>& values) {
    PlacedSum sum;
    sum.add_list(3, std::span(values));
    return sum.value();
  };
  EXPECT_NE(of_list({1, 2}), of_list({2, 1}));
  EXPECT_NE(of_list({1, 0}), of_list({1}));
  EXPECT_NE(of_list({0}), of_list({}));
}
