#include "physics/time_series.hpp"

#include <gtest/gtest.h>

namespace time_series_test {

namespace {

TEST(InterpolateLinear, TakesTheSamplesAtTheirTimes) {
  EXPECT_EQ(physics::interpolate_linear(10.0, 10.0, 20.0, 3.0, 7.0), 3.0);
  EXPECT_EQ(physics::interpolate_linear(20.0, 10.0, 20.0, 3.0, 7.0), 7.0);
}

TEST(InterpolateLinear, FollowsTheChordBetweenSamples) {
  EXPECT_DOUBLE_EQ(physics::interpolate_linear(12.5, 10.0, 20.0, 3.0, 7.0), 4.0);
}

TEST(InterpolateLinear, ExtendsTheChordBeforeTheInterval) {
  EXPECT_DOUBLE_EQ(physics::interpolate_linear(5.0, 10.0, 20.0, 3.0, 7.0), 1.0);
}

}  // namespace

namespace {

constexpr double times[] = {0.0, 10.0, 30.0}, values[] = {1.0, 2.0, 6.0};
constexpr physics::SampledSeries series = {times, values, 3};

}  // namespace

TEST(SampledSeries, AnIntervalStartsOrEndsAtASample) {
  EXPECT_EQ(physics::interval_that_starts(series, 0, 9.9), 0);
  EXPECT_EQ(physics::interval_that_starts(series, 0, 10.0), 1);
  EXPECT_EQ(physics::interval_that_ends(series, 0, 10.0), 0);
  EXPECT_EQ(physics::interval_that_ends(series, 0, 10.1), 1);
}

TEST(SampledSeries, TheLastIntervalGoesOnForEver) {
  EXPECT_EQ(physics::interval_that_starts(series, 0, 99.0), 1);
  EXPECT_EQ(physics::interval_that_ends(series, 1, 99.0), 1);
}

TEST(SampledSeries, IsInterpolatedAndKeepsItsLastValue) {
  EXPECT_EQ(physics::value_of_series(series, 1, 20.0), 4.0);
  EXPECT_EQ(physics::value_of_series(series, 0, -10.0), 0.0);
  EXPECT_EQ(physics::value_of_series(series, 1, 30.0), 6.0);
  EXPECT_EQ(physics::value_of_series(series, 0, 1e9), 6.0);
}

}  // namespace time_series_test
