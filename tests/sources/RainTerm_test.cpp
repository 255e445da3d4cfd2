#include "sources/RainTerm.hpp"

#include <gtest/gtest.h>

#include "support/RunGlobals.hpp"
#include "support/TemporaryFolder.hpp"

namespace {

/// A storm in three intervals: 1, 2 and 5 m/s from 0, 100 and 200 s.
class RainTermTest : public testing::Test {
 protected:
  RainTermTest() {
    rain.times = {0.0, 100.0, 200.0};
    rain.intensities = {1.0, 2.0, 5.0};
  }

  /// Depth that the term adds at time t (s).
  double depth_at(double t) {
    HydraulicVariableSWE source;
    source.set_values(0.0, 3.0, 4.0);
    rain.compute_source_term(t, source, state, param);
    EXPECT_EQ(source.qx, 3.0);
    EXPECT_EQ(source.qy, 4.0);
    return source.h;
  }

  support::RunGlobals globals{0.01};
  RainTerm rain{4, 3, 30};
  HydraulicVariableSWE state;
  ParamCell param;
};

TEST_F(RainTermTest, ReadsPairsOfTimeAndIntensity) {
  const support::TemporaryFolder folder;
  utils::TextScanner file(folder.write("rain.txt", "0 1e-5\n600\t2.5e-5  1200 0\n 77"));
  RainTerm read(4, 3, 60);
  read.read_hyetogram(file, 3);
  EXPECT_EQ(read.times, (std::vector<double>{0.0, 600.0, 1200.0}));
  EXPECT_EQ(read.intensities, (std::vector<double>{1e-5, 2.5e-5, 0.0}));
  EXPECT_EQ(read.getID(), 4);
  EXPECT_EQ(read.get_dts(), 60.0);
}

TEST_F(RainTermTest, TellsWhetherItsIntervalsAreInOrder) {
  const support::TemporaryFolder folder;
  utils::TextScanner file(folder.write("rain.txt", "0 1  200 2  100 5   0 1  0 2"));
  RainTerm disordered(4, 3, 60), ordered(5, 2, 60);
  disordered.read_hyetogram(file, 3);
  ordered.read_hyetogram(file, 2);
  EXPECT_FALSE(disordered.is_in_order());
  EXPECT_TRUE(ordered.is_in_order());
}

TEST_F(RainTermTest, AHyetogramWithoutIntervalsBringsNoRain) {
  RainTerm empty(4, 0, 30);
  HydraulicVariableSWE source;
  empty.compute_source_term(1000.0, source, state, param);
  EXPECT_EQ(source.h, 0.0);
}

TEST_F(RainTermTest, FindsTheIntervalOfATime) {
  EXPECT_EQ(rain.current_hyetogram_index(-10.0), 0);
  EXPECT_EQ(rain.current_hyetogram_index(99.0), 0);
  EXPECT_EQ(rain.current_hyetogram_index(100.0), 1);
  EXPECT_EQ(rain.current_hyetogram_index(1e6), 2);
}

TEST_F(RainTermTest, NoRainFallsInTheFirstStep) {
  EXPECT_EQ(depth_at(0.0), 0.0);
  EXPECT_EQ(param.hyetogram_index, -1);
}

TEST_F(RainTermTest, FallsInBurstsAndRemembersThemInTheCell) {
  EXPECT_EQ(depth_at(20.0), 0.0);
  EXPECT_EQ(depth_at(31.0), 31.0);
  EXPECT_EQ(param.last_update_time, 31.0);
  EXPECT_EQ(param.hyetogram_index, 0);
  EXPECT_EQ(param.rain_dt, 30.0);
  EXPECT_EQ(depth_at(61.0), 0.0);
  EXPECT_EQ(depth_at(61.5), 30.5);
}

TEST_F(RainTermTest, AddsToTheDepthAlreadyThere) {
  HydraulicVariableSWE source;
  source.h = 0.5;
  rain.compute_source_term(31.0, source, state, param);
  EXPECT_EQ(source.h, 31.5);
}

TEST_F(RainTermTest, TheFirstIntensityFallsBeforeTheFirstStart) {
  rain.times = {500.0, 600.0, 700.0};
  EXPECT_EQ(depth_at(40.0), 40.0);
}

TEST_F(RainTermTest, WithAStepOfZeroRainFallsWheneverTimeHasPassed) {
  RainTerm steady(4, 3, 0);
  steady.times = rain.times;
  steady.intensities = rain.intensities;
  HydraulicVariableSWE source;
  steady.compute_source_term(0.0, source, state, param);
  EXPECT_EQ(source.h, 0.0);
  steady.compute_source_term(0.25, source, state, param);
  EXPECT_EQ(source.h, 0.25);
  steady.compute_source_term(0.75, source, state, param);
  EXPECT_EQ(source.h, 0.75);
}

TEST_F(RainTermTest, SplitsAtABreakpointExactly) {
  depth_at(90.0);
  EXPECT_EQ(depth_at(100.5), 10.0 * 1.0 + 0.5 * 2.0);
}

TEST_F(RainTermTest, ChargesIntervalsThatItLeapsOverAtTheOldIntensity) {
  depth_at(90.0);
  EXPECT_EQ(depth_at(210.0), 110.0 * 1.0 + 10.0 * 5.0);
}

TEST_F(RainTermTest, InTheLastBurstOfTheRunRainFallsInEveryStep) {
  Globals_Params::tEnd = 70.0;
  EXPECT_EQ(depth_at(39.0), 39.0);
  EXPECT_EQ(depth_at(39.5), 0.0);
  EXPECT_EQ(depth_at(40.0), 1.0);
  EXPECT_EQ(depth_at(40.5), 0.5);
}

TEST_F(RainTermTest, TheLastIntensityHasNoEnd) {
  depth_at(1000.0);
  EXPECT_EQ(depth_at(2000.0), 5000.0);
}

TEST_F(RainTermTest, ARunThatStartsLateStartsInItsInterval) {
  Globals_Params::tStart = 150.0;
  param.last_update_time = 150.0;
  EXPECT_EQ(depth_at(181.0), 62.0);
  EXPECT_EQ(param.hyetogram_index, 1);
}

}  // namespace
