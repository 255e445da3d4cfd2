#include "physics/time_series.hpp"

#include <gtest/gtest.h>

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
