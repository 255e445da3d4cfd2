#include "physics/flow_extremes.hpp"

#include <gtest/gtest.h>

#include <array>
#include <limits>

namespace flow_extremes_test {

using physics::FlowExtremes;

constexpr double zero_depth = 1e-3;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

FlowExtremes extremes(double h, double qx, double qy) {
  return physics::extremes_of_state(h, qx, qy, physics::depth_terms(h, zero_depth));
}

TEST(FlowExtremes, AreTheSquaredSpeedAndItsRatioToTheDepth) {
  const FlowExtremes of_state = extremes(0.5, 1.5, -2.0);  // 3 and -4 m/s
  EXPECT_DOUBLE_EQ(of_state.speed_squared, 25.0);
  EXPECT_DOUBLE_EQ(of_state.speed_squared_per_depth, 50.0);
  EXPECT_EQ(of_state.not_finite, 0);
}

TEST(FlowExtremes, OfACriticalFlowHaveTheFroudeNumberOne) {
  const double h = 2.0, q = h * physics::celerity(h, zero_depth);
  EXPECT_DOUBLE_EQ(physics::froude_number(extremes(h, q, 0.0).speed_squared_per_depth), 1.0);
  EXPECT_DOUBLE_EQ(physics::froude_number(extremes(h, 0.0, -3.0 * q).speed_squared_per_depth), 3.0);
}

TEST(FlowExtremes, OfADryStateAreZero) {
  const FlowExtremes of_state = extremes(zero_depth, 1.0, 1.0);
  EXPECT_EQ(of_state.speed_squared, 0.0);
  EXPECT_EQ(of_state.speed_squared_per_depth, 0.0);
  EXPECT_EQ(of_state.not_finite, 0);
}

TEST(FlowExtremes, CountAStateThatIsNotFiniteAndNothingElseOfIt) {
  for (const auto& [h, qx, qy] :
       {std::array{nan, 0.0, 0.0}, std::array{1.0, nan, 0.0}, std::array{1.0, 0.0, nan},
        std::array{infinity, 0.0, 0.0}, std::array{1.0, -infinity, 0.0}}) {
    const FlowExtremes of_state = extremes(h, qx, qy);
    EXPECT_EQ(of_state.not_finite, 1);
    EXPECT_EQ(of_state.speed_squared, 0.0);
    EXPECT_EQ(of_state.speed_squared_per_depth, 0.0);
  }
}

TEST(FlowExtremes, OfTwoSetsAreTheLargerOnesAndTheSumOfTheCounts) {
  const FlowExtremes both = physics::united({4.0, 1.0, 2, 1}, {3.0, 7.0, 5, 3});
  EXPECT_EQ(both.speed_squared, 4.0);
  EXPECT_EQ(both.speed_squared_per_depth, 7.0);
  EXPECT_EQ(both.not_finite, 7);
  EXPECT_EQ(both.films, 4);
}

TEST(FlowExtremes, AStateBeyondTheLargestFroudeNumberIsAFilm) {
  const double critical = std::sqrt(9.81 * 0.5) * 0.5;  // m2/s, at 0.5 m
  const auto expect = [](bool is_film, double h, double qx, double qy, double dry) {
    EXPECT_EQ(physics::is_film(h, qx, qy, dry), is_film);
    EXPECT_EQ(physics::extremes_of_state(h, qx, qy, physics::depth_terms(h, dry)).films,
              is_film ? 1 : 0);
  };
  expect(true, 0.5, 20.001 * 0.6 * critical, 20.001 * -0.8 * critical, 1e-4);
  expect(false, 0.5, 19.999 * critical, 0.0, 1e-4);
  expect(false, 0.5, 100.0 * critical, 0.0, 0.5);
  expect(false, 0.5, nan, 0.0, 1e-4);
}

}  // namespace flow_extremes_test
