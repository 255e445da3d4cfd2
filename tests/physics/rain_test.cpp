#include "physics/rain.hpp"

#include <gtest/gtest.h>

#include <array>

namespace rain_test {

constexpr double never = 1e20;  // s
constexpr double far_end = 1e9;

// Intensities in m/s, far above those of a storm, to keep the numbers short.
constexpr std::array<double, 3> times{0.0, 100.0, 200.0};
constexpr std::array<double, 3> intensities{1.0, 2.0, 5.0};
constexpr physics::Hyetogram storm{times.data(), intensities.data(), 3, 30.0};

physics::Hyetogram with_step(double step) { return {times.data(), intensities.data(), 3, step}; }

TEST(HyetogramIndex, IsTheLastIntervalThatHasStarted) {
  EXPECT_EQ(physics::hyetogram_index_at(storm, 99.9), 0);
  EXPECT_EQ(physics::hyetogram_index_at(storm, 100.0), 1);
  EXPECT_EQ(physics::hyetogram_index_at(storm, 199.9), 1);
  EXPECT_EQ(physics::hyetogram_index_at(storm, 1e6), 2);
}

TEST(HyetogramIndex, BeforeEveryStartIsTheFirst) {
  EXPECT_EQ(physics::hyetogram_index_at(storm, -50.0), 0);
}

TEST(RainAddition, WaitsUntilMoreThanABurstHasPassed) {
  const physics::RainClock clock{0.0, -1, never};
  EXPECT_EQ(physics::rain_addition(storm, clock, 0.0, 0.0, far_end).depth, 0.0);
  const auto at_burst = physics::rain_addition(storm, clock, 30.0, 0.0, far_end);
  EXPECT_EQ(at_burst.depth, 0.0);
  EXPECT_EQ(at_burst.clock.last_update_time, 0.0);
  EXPECT_EQ(at_burst.clock.hyetogram_index, -1);
  EXPECT_EQ(at_burst.clock.rain_dt, never);
}

TEST(RainAddition, BringsAllThatFellSinceTheLastOne) {
  const auto rain = physics::rain_addition(storm, {0.0, -1, never}, 31.0, 0.0, far_end);
  EXPECT_EQ(rain.depth, 31.0);
  EXPECT_EQ(rain.clock.last_update_time, 31.0);
  EXPECT_EQ(rain.clock.hyetogram_index, 0);
  EXPECT_EQ(rain.clock.rain_dt, 30.0);
}

TEST(RainAddition, SplitsAtOneBreakpointExactly) {
  const auto rain = physics::rain_addition(storm, {80.0, 0, 20.0}, 110.0, 0.0, far_end);
  EXPECT_EQ(rain.depth, 20.0 * 1.0 + 10.0 * 2.0);
  EXPECT_EQ(rain.clock.hyetogram_index, 1);
}

TEST(RainAddition, ChargesSkippedIntervalsAtTheOldIntensity) {
  const auto rain = physics::rain_addition(storm, {80.0, 0, 30.0}, 210.0, 0.0, far_end);
  EXPECT_EQ(rain.depth, 120.0 * 1.0 + 10.0 * 5.0);
  EXPECT_EQ(rain.clock.hyetogram_index, 2);
}

TEST(RainAddition, TheFirstOneStartsFromTheIntervalOfTheStartOfTheRun) {
  const auto rain =
      physics::rain_addition(with_step(60.0), {150.0, -1, never}, 215.0, 150.0, far_end);
  EXPECT_EQ(rain.depth, 50.0 * 2.0 + 15.0 * 5.0);
}

TEST(RainAddition, BeforeTheFirstStartTheFirstIntensityFalls) {
  const std::array<double, 2> late{500.0, 600.0};
  const std::array<double, 2> falling{3.0, 4.0};
  const physics::Hyetogram rain{late.data(), falling.data(), 2, 30.0};
  EXPECT_EQ(physics::rain_addition(rain, {0.0, -1, never}, 40.0, 0.0, far_end).depth, 120.0);
}

TEST(RainAddition, TheBurstBeforeABreakpointIsShortened) {
  const auto rain = physics::rain_addition(storm, {49.0, 0, 30.0}, 80.0, 0.0, far_end);
  EXPECT_EQ(rain.clock.rain_dt, 20.0);
  const auto next = physics::rain_addition(storm, rain.clock, 100.5, 0.0, far_end);
  EXPECT_EQ(next.depth, 20.0 * 1.0 + 0.5 * 2.0);
}

TEST(RainAddition, ABurstThatEndsAtABreakpointIsNotShortened) {
  const auto rain = physics::rain_addition(storm, {39.0, 0, 30.0}, 70.0, 0.0, far_end);
  EXPECT_EQ(rain.clock.rain_dt, 30.0);
}

TEST(RainAddition, WithoutAStepItRainsWheneverTimeHasPassed) {
  const physics::Hyetogram steady = with_step(0.0);
  const physics::RainClock clock{10.0, 0, never};
  EXPECT_EQ(physics::rain_addition(steady, clock, 10.0, 0.0, far_end).depth, 0.0);
  EXPECT_EQ(physics::rain_addition(steady, clock, 10.25, 0.0, far_end).depth, 0.25);
}

TEST(RainAddition, InTheLastBurstOfTheRunItRainsInEveryStep) {
  const double t_end = 90.0;
  const physics::RainClock clock{59.0, 0, 30.0};
  EXPECT_EQ(physics::rain_addition(storm, clock, 59.75, 0.0, t_end).depth, 0.0);
  EXPECT_EQ(physics::rain_addition(storm, clock, 60.0, 0.0, t_end).depth, 1.0);
  EXPECT_EQ(physics::rain_addition(storm, clock, 61.5, 0.0, t_end).depth, 2.5);
}

TEST(RainAddition, AHyetogramWithoutIntervalsBringsNothing) {
  const physics::Hyetogram none{nullptr, nullptr, 0, 30.0};
  const auto rain = physics::rain_addition(none, {0.0, -1, never}, 40.0, 0.0, far_end);
  EXPECT_EQ(rain.depth, 0.0);
  EXPECT_EQ(rain.clock.last_update_time, 0.0);
  EXPECT_EQ(rain.clock.hyetogram_index, -1);
}

TEST(SteadyRain, BringsItsIntensityTimesTheStep) {
  EXPECT_EQ(physics::steady_rain(0.25, 3.0), 0.75);
  EXPECT_EQ(physics::steady_rain(0.0, 3.0), 0.0);
}

TEST(RainAddition, TheLastIntensityLastsForEver) {
  EXPECT_EQ(physics::rain_addition(storm, {1e5, 2, 30.0}, 1e5 + 40.0, 0.0, far_end).depth, 200.0);
}

}  // namespace rain_test
