#include "interfaces/TimeSeries.hpp"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/TemporaryFolder.hpp"
#include "support/fatal.hpp"

namespace {

class TimeSeriesTest : public testing::Test {
 protected:
  std::string write(const std::string& text) const { return folder.write("series.txt", text); }

  support::TemporaryFolder folder;
};

TEST_F(TimeSeriesTest, ReadsTheNumberOfSamplesAndTheSamples) {
  const TimeSeries series(write("3\n0 1.5\n10\t-2e1\n\n 30 +0.25 "));
  EXPECT_EQ(series.times, (std::vector<double>{0.0, 10.0, 30.0}));
  EXPECT_EQ(series.values, (std::vector<double>{1.5, -20.0, 0.25}));
  EXPECT_EQ(series.samples().count, 3);
  EXPECT_EQ(series.samples().times[1], 10.0);
  EXPECT_EQ(series.samples().times[2], 30.0);
}

TEST_F(TimeSeriesTest, IgnoresWhatFollowsTheLastSample) {
  const TimeSeries series(write("2 0 1 10 2 20 3 and a remark"));
  EXPECT_EQ(series.times, (std::vector<double>{0.0, 10.0}));
}

TEST_F(TimeSeriesTest, InterpolatesOnTheGivenInterval) {
  const TimeSeries series(write("3  0 1  10 3  30 -1"));
  EXPECT_DOUBLE_EQ(series.value_at(2.5, 0), 1.5);
  EXPECT_DOUBLE_EQ(series.value_at(25.0, 1), 0.0);
}

TEST_F(TimeSeriesTest, ExtendsTheFirstIntervalBeforeTheFirstSample) {
  const TimeSeries series(write("2  0 1  3600 2"));
  EXPECT_DOUBLE_EQ(series.value_at(-1800.0, 0), 0.5);
}

TEST_F(TimeSeriesTest, HoldsTheLastValuePastTheLastSample) {
  const TimeSeries series(write("3  0 1  10 3  30 -1"));
  EXPECT_EQ(series.value_at(30.0, 1), -1.0);
  EXPECT_EQ(series.value_at(1e9, 1), -1.0);
  EXPECT_EQ(series.value_at(1e9, 0), -1.0);
}

TEST_F(TimeSeriesTest, EdgesThatNameTheSameFileShareIt) {
  const std::string file = write("2 0 1 10 2");
  const std::string other = folder.write("other.txt", "2 0 5 10 6");
  const auto series = TimeSeries::from_file(file);
  EXPECT_EQ(series, TimeSeries::from_file(file));
  EXPECT_NE(series, TimeSeries::from_file(other));
  EXPECT_EQ(TimeSeries::from_file(other)->values.front(), 5.0);
}

TEST_F(TimeSeriesTest, ASeriesThatHasBeenReadIsSharedWhileItLives) {
  const std::string file = write("2 0 1 10 2");
  auto series = TimeSeries::share({file, {0.0, 5.0}, {3.0, 4.0}});
  EXPECT_EQ(series, TimeSeries::from_file(file));
  EXPECT_EQ(series->times, (std::vector<double>{0.0, 5.0}));
  EXPECT_EQ(series->values, (std::vector<double>{3.0, 4.0}));
  series.reset();
  EXPECT_EQ(TimeSeries::from_file(file)->values, (std::vector<double>{1.0, 2.0}));
}

TEST_F(TimeSeriesTest, ARelativeNameIsThatOfTheWorkingDirectory) {
  namespace fs = std::filesystem;
  const fs::path before = fs::current_path();
  write("2 0 1 10 2");
  fs::create_directory(folder.file("other"));
  folder.write("other/series.txt", "2 0 5 10 6");
  fs::current_path(folder.path());
  const auto here = TimeSeries::from_file("series.txt");
  EXPECT_EQ(here, TimeSeries::from_file("./other/../series.txt"));
  fs::current_path("other");
  const auto there = TimeSeries::from_file("series.txt");
  EXPECT_EQ(here, TimeSeries::from_file("../series.txt"));
  fs::current_path(before);
  EXPECT_EQ(here->values.front(), 1.0);
  EXPECT_EQ(there->values.front(), 5.0);
}

TEST_F(TimeSeriesTest, AFileThatNoEdgeHoldsAnyMoreIsReadAgain) {
  const std::string file = write("2 0 1 10 2");
  EXPECT_EQ(TimeSeries::from_file(file)->values.back(), 2.0);
  write("2 0 1 10 7");
  EXPECT_EQ(TimeSeries::from_file(file)->values.back(), 7.0);
}

/// The run ends with status 255 and exactly this message.
void expect_refusal(const std::string& file, const std::string& message) {
  EXPECT_FATAL(TimeSeries series(file), 255, testing::Eq(message));
}

TEST_F(TimeSeriesTest, FewerThanTwoSamplesEndTheRun) {
  const std::string file = write("1\n0 1\n");
  expect_refusal(file, "Error in file " + file +
                           ", line 1, header, number of samples: found \"1\", expected at least "
                           "2.\n");
}

TEST_F(TimeSeriesTest, MoreSamplesThanTheFileCanHoldEndTheRun) {
  const std::string file = write("1000000000\n0 1\n");
  expect_refusal(file, "Error in file " + file +
                           ", line 1, header, number of samples: found \"1000000000\", expected a "
                           "count from 0 to 1, the most that the rest of the file can hold.\n");
}

TEST_F(TimeSeriesTest, ATimeThatDoesNotIncreaseEndsTheRun) {
  for (const std::string time : {"10", "9.5"}) {
    const std::string file = write("3\n0 1\n10 2\n" + time + " 3\n");
    expect_refusal(file, "Error in file " + file +
                             ", line 4, sample 2 (of 0 to 2), time: found \"" + time +
                             "\", expected a time later than that of the sample before.\n");
  }
}

TEST_F(TimeSeriesTest, AMissingSampleEndsTheRun) {
  const std::string file = write("2\n0 1.25\n100.5 \n");
  expect_refusal(file, "Error in file " + file +
                           ", line 4, sample 1 (of 0 to 1), value: found the end of the file, "
                           "expected a finite number.\n");
}

TEST_F(TimeSeriesTest, AMissingFileEndsTheRun) {
  const std::string file = folder.file("absent.txt");
  expect_refusal(file, "Fatal error. Impossible to open file " + file + ".\n");
}

}  // namespace
