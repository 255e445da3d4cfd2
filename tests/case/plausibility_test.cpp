#include "case/plausibility.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace plausibility;

TEST(Plausibility, SaysNothingAboutWhatIsUsual) {
  EXPECT_FALSE(on_run_time(0.0, 1.0));
  EXPECT_FALSE(on_courant_number(1.0));
  EXPECT_FALSE(on_dry_depth(0.0, false));
  EXPECT_FALSE(on_dry_depth(0.001, true));
  EXPECT_FALSE(on_interval("it", 1e-9));
  EXPECT_FALSE(on_friction("f", Outliers({0.0, 0.005, 0.03, 1.0}, is_strange_friction)));
  EXPECT_TRUE(on_hyetogram("f", 1, 0, {0.0, 1e-5}).empty());
  EXPECT_TRUE(on_soil("f", 1, cases::GreenAmptParameters{1e-6, 0.1, 0.2, 0.4, 1.0, 0.0}).empty());
  EXPECT_TRUE(on_soil("f", 1, cases::HortonParameters{1e-5, 1e-6, 1.0, 0.5, -1.0}).empty());
  EXPECT_FALSE(is_infiltration_below_zero(0.0));
  EXPECT_FALSE(is_deep_infiltration(100.0));
  EXPECT_TRUE(on_initial_infiltration("f", {}, {}).empty());
  EXPECT_FALSE(on_outflow("it", 0.1, 1.0, 0.001));
  EXPECT_FALSE(on_outflow("it", -0.1, 0.0, 0.001));
}

TEST(Plausibility, RemarksOnWhatIsNoNumber) {
  const double nan = std::nan("");
  EXPECT_TRUE(on_run_time(0.0, nan));
  EXPECT_TRUE(on_courant_number(nan));
  EXPECT_TRUE(on_interval("it", nan));
  EXPECT_TRUE(on_friction("f", Outliers({nan}, is_strange_friction)));
}

TEST(Plausibility, EndsAQuestionWithItsOwnMark) {
  EXPECT_EQ(sentence("it is wrong"), "it is wrong.");
  EXPECT_EQ(sentence("is it right?"), "is it right?");
}

TEST(Plausibility, FindsTheWorstOfPartsInWhateverOrderTheyCome) {
  const auto is_outside = [](double value) { return value > 1.0; };
  const std::vector<double> all = {0.0, 2.0, 9.0, 1.5, 9.0, 0.5};
  const Outliers expected(all, is_outside);
  EXPECT_EQ(expected.worst, 2U);
  Outliers even, odd;
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (is_outside(all[i])) (i % 2 == 0 ? even : odd).note(all[i], i);
  }
  for (const auto& [first, second] : {std::pair(even, odd), std::pair(odd, even)}) {
    Outliers sum = first;
    sum.add(second);
    EXPECT_EQ(sum.count, expected.count);
    EXPECT_EQ(sum.place(), expected.place());
    EXPECT_EQ(sum.largest, 9.0);
  }
  Outliers none;
  none.add({});
  EXPECT_EQ(none.count, 0);
}

}  // namespace
