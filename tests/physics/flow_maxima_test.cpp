#include "physics/flow_maxima.hpp"

#include <gtest/gtest.h>

#include <random>

namespace flow_maxima_test {

using physics::FlowMaxima;

constexpr double zero_depth = 1e-3, arrival_depth = 0.05, bed = 10.0;

struct State {
  double t, h, qx = 0.0, qy = 0.0;
};

FlowMaxima of(const std::vector<State>& states) {
  FlowMaxima maxima;
  for (const State& s : states) {
    maxima = physics::with_state(maxima, s.t, s.h, s.qx, s.qy, bed, zero_depth, arrival_depth);
  }
  return maxima;
}

TEST(FlowMaxima, OfNothingAreNoNumbersAndZeros) {
  const FlowMaxima dry = of({{0.0, 0.0}, {1.0, -1e-5}});
  EXPECT_EQ(dry.depth, 0.0);
  EXPECT_TRUE(std::isnan(dry.time_of_depth));
  EXPECT_TRUE(std::isnan(dry.level));
  EXPECT_EQ(dry.speed_squared, 0.0);
  EXPECT_EQ(dry.discharge_squared, 0.0);
  EXPECT_TRUE(std::isnan(dry.arrival));
  EXPECT_EQ(physics::time_under_water_until(dry, 9.0), 0.0);
}

TEST(FlowMaxima, AreEachOfTheirOwnTime) {
  const FlowMaxima m = of({{0.0, 1.0, 3.0, 4.0}, {1.0, 2.0, 6.0, 0.0}, {2.0, 0.5, 0.0, -4.0}});
  EXPECT_EQ(m.depth, 2.0);
  EXPECT_EQ(m.time_of_depth, 1.0);
  EXPECT_EQ(m.level, 12.0);
  EXPECT_EQ(m.discharge_squared, 36.0);  // of the second state
  EXPECT_EQ(m.speed_squared, 64.0);      // of the third one
}

TEST(FlowMaxima, TheStartCountsAndOfDepthsAlikeTheFirst) {
  const FlowMaxima m = of({{5.0, 2.0}, {6.0, 1.0}, {7.0, 2.0}});
  EXPECT_EQ(m.depth, 2.0);
  EXPECT_EQ(m.time_of_depth, 5.0);
  EXPECT_EQ(m.arrival, 5.0);
}

TEST(FlowMaxima, ADryStateHasADepthAndNothingElse) {
  const FlowMaxima m = of({{1.0, zero_depth, 7.0, 7.0}});
  EXPECT_EQ(m.depth, zero_depth);
  EXPECT_EQ(m.time_of_depth, 1.0);
  EXPECT_TRUE(std::isnan(m.level));
  EXPECT_EQ(m.discharge_squared, 0.0);
  EXPECT_EQ(m.speed_squared, 0.0);
}

TEST(FlowMaxima, TheTimeUnderWaterIsTheSumOfItsSpells) {
  const std::vector<State> states = {{0.0, 0.0}, {1.0, 0.1},  {3.0, 0.2}, {4.0, 0.05},
                                     {6.0, 0.0}, {10.0, 0.3}, {10.5, 0.3}};
  const FlowMaxima m = of(states);
  EXPECT_EQ(m.arrival, 1.0);
  EXPECT_EQ(m.under_water_since, 10.0);
  EXPECT_EQ(m.time_under_water, 3.0);  // from 1 s to 4 s, where the arrival depth is not exceeded
  EXPECT_EQ(physics::time_under_water_until(m, 10.5), 3.5);
  EXPECT_EQ(physics::time_under_water_until(m, 12.0), 5.0);
}

TEST(FlowMaxima, ADryCellIsNotUnderWaterWhereTheArrivalDepthIsZero) {
  const FlowMaxima m = physics::with_state({}, 1.0, 0.0, 0.0, 0.0, bed, zero_depth, 0.0);
  EXPECT_TRUE(std::isnan(m.arrival));
}

TEST(FlowMaxima, AStateThatIsNotedAgainChangesNothing) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> uniform(-1.0, 1.0);
  FlowMaxima once, twice;
  const auto note = [](FlowMaxima& m, const State& s) {
    m = physics::with_state(m, s.t, s.h, s.qx, s.qy, bed, zero_depth, arrival_depth);
  };
  for (int i = 0; i < 5000; ++i) {
    const State s = {0.1 * i, 0.3 * std::fabs(uniform(random)) - 0.05, uniform(random),
                     uniform(random)};
    note(once, s);
    note(twice, s);
    note(twice, s);
    ASSERT_EQ(once.depth, twice.depth);
    ASSERT_EQ(once.time_of_depth, twice.time_of_depth);
    ASSERT_EQ(once.speed_squared, twice.speed_squared);
    ASSERT_EQ(once.discharge_squared, twice.discharge_squared);
    ASSERT_EQ(physics::time_under_water_until(once, s.t),
              physics::time_under_water_until(twice, s.t));
  }
}

TEST(FlowMaxima, TheLargestSpeedIsThatOfTheFastestState) {
  std::mt19937 random(4);
  std::uniform_real_distribution<double> uniform(-1.0, 1.0);
  FlowMaxima m;
  double fastest = 0.0;
  for (int i = 0; i < 5000; ++i) {
    const double h = std::fabs(uniform(random)), qx = uniform(random), qy = uniform(random);
    m = physics::with_state(m, i, h, qx, qy, bed, zero_depth, arrival_depth);
    if (h > zero_depth) fastest = std::max(fastest, std::hypot(qx, qy) / h);
    ASSERT_NEAR(std::sqrt(m.speed_squared), fastest, 4e-16 * fastest);
  }
}

TEST(FlowMaxima, DoNotTakeStatesThatAreNoNumbers) {
  const FlowMaxima m = of({{0.0, 1.0, 1.0, 0.0}, {1.0, NAN, 1.0, 0.0}, {2.0, 0.5, NAN, 0.0}});
  EXPECT_EQ(m.depth, 1.0);
  EXPECT_EQ(m.level, 11.0);
  EXPECT_EQ(m.speed_squared, 1.0);
  EXPECT_EQ(m.discharge_squared, 1.0);
}

TEST(FlowMaxima, OfAllButNoWaterAreFinite) {
  const FlowMaxima m = physics::with_state({}, 0.0, 1e-200, 1e-100, 0.0, bed, 0.0, 0.0);
  EXPECT_TRUE(std::isfinite(m.speed_squared));
}

}  // namespace flow_maxima_test
