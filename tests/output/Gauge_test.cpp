#include "output/Gauge.hpp"

#include <cmath>
#include <filesystem>
#include <sstream>

#include "output/OutputTest.hpp"

namespace {

using support::lines;
using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

class GaugeTest : public OutputTest {
 protected:
  std::unique_ptr<Gauge> gauges(const std::vector<physics::PlanPoint>& points,
                                double start_time = 0.0) {
    return gauges_with_prefix(prefix(), points, start_time);
  }
  std::unique_ptr<Gauge> gauges_with_prefix(const std::string& prefix,
                                            const std::vector<physics::PlanPoint>& points,
                                            double start_time = 0.0) {
    auto gauge = std::make_unique<Gauge>(cases::GaugeRequest{"result.txt", 10.0, points}, prefix,
                                         fields::WholeGround(contents), start_time);
    gauge->begin(log);
    return gauge;
  }
  /// Records, and waits until the line is written.
  void record(Gauge& gauge) {
    gauge.WriteMeasure(flow);
    gauge.wait();
  }
  std::ostringstream log;
  std::vector<std::string> result() { return lines(folder.read("result.txt")); }
};

TEST_F(GaugeTest, WritesFourTitlesPerPointAtSetUp) {
  gauges({{0.9, 0.1}, {0.1, 0.9}});
  EXPECT_EQ(folder.read("result.txt"),
            "time [s]\ths [m]\thw [m]\tqx [m^3/s/m]\tqy [m^3/s/m]\ths [m]\thw [m]\tqx "
            "[m^3/s/m]\tqy [m^3/s/m]\t\n");
}

TEST_F(GaugeTest, WritesDepthAndDischargesAndAnEmptyFieldPerPoint) {
  cell(0).U.set_values(1.5, -0.25, 1.0 / 3.0);
  cell(1).U.set_values(1e-7, 123456.7, 0.0);
  const auto gauge = gauges({{0.9, 0.1}, {0.1, 0.9}});
  record(*gauge);
  EXPECT_EQ(result().at(1), "0\t1.5\t-0.25\t0.333333\t\t1e-07\t123457\t0\t\t");
}

TEST_F(GaugeTest, WritesOnlyTheTimeWithoutPoints) {
  const auto gauge = gauges({});
  record(*gauge);
  record(*gauge);
  EXPECT_EQ(folder.read("result.txt"), "time [s]\t\n0\t\n10\t\n");
}

TEST_F(GaugeTest, WritesTheSameColumnsForTwoPointsInOneCell) {
  cell(0).U.set_values(2.0, 3.0, 4.0);
  const auto gauge = gauges({{0.9, 0.1}, {0.8, 0.2}});
  record(*gauge);
  EXPECT_EQ(result().at(1), "0\t2\t3\t4\t\t2\t3\t4\t\t");
}

TEST_F(GaugeTest, IsDueFromItsScheduledTimeOnWithoutTolerance) {
  const auto gauge = gauges({}, 2.5);
  EXPECT_FALSE(gauge->CheckTime(std::nextafter(2.5, 0.0)));
  EXPECT_TRUE(gauge->CheckTime(2.5));
  record(*gauge);
  EXPECT_FALSE(gauge->CheckTime(std::nextafter(12.5, 0.0)));
  EXPECT_TRUE(gauge->CheckTime(12.5));
  EXPECT_TRUE(gauge->CheckTime(1e9));
}

TEST_F(GaugeTest, WritesTheScheduledTimeNotTheTimeOfTheRecording) {
  const auto gauge = gauges({}, 0.5);
  record(*gauge);
  record(*gauge);
  EXPECT_EQ(result().at(1), "0.5\t");
  EXPECT_EQ(result().at(2), "10.5\t");
}

TEST_F(GaugeTest, CatchesUpOneRecordingAtATime) {
  const auto gauge = gauges({});
  int recordings = 0;
  for (; gauge->CheckTime(35.0) && recordings < 100; ++recordings) record(*gauge);
  EXPECT_EQ(recordings, 4);
  EXPECT_EQ(folder.read("result.txt"), "time [s]\t\n0\t\n10\t\n20\t\n30\t\n");
}

TEST_F(GaugeTest, WritesTheStateOfTheTriggerThoughTheCellChangesMeanwhile) {
  cell(0).U.set_values(1.0, 0.0, 0.0);
  const auto gauge = gauges({{0.9, 0.1}});
  gauge->WriteMeasure(flow);
  cell(0).U.set_values(99.0, 99.0, 99.0);
  gauge->wait();
  EXPECT_EQ(result().at(1), "0\t1\t0\t0\t\t");
}

TEST_F(GaugeTest, TruncatesAnEarlierResult) {
  folder.write("result.txt", "earlier\n");
  gauges({});
  EXPECT_EQ(folder.read("result.txt"), "time [s]\t\n");
}

TEST_F(GaugeTest, PutsTheOutputPrefixBeforeTheName) {
  gauges_with_prefix(folder.path() + "/run1_", {});
  EXPECT_TRUE(folder.has("run1_result.txt"));
}

TEST_F(GaugeTest, LogsTheNameAsRead) {
  gauges({});
  EXPECT_EQ(log.str(), " Gauge results written in result.txt \n");
}

TEST_F(GaugeTest, WarnsAboutAPointInNoCellWithItsNumberAndPlace) {
  CaptureStderr();
  gauges({{0.9, 0.1}, {451234.25, 0.5}, {0.1, 0.9}});
  const std::string warning = GetCapturedStderr();
  EXPECT_EQ(lines(warning).size(), 1U);
  EXPECT_TRUE(support::starts_with(
      warning, "Warning: gauge 1 (counted from 0) at (451234.25, 0.5) lies in no cell"))
      << warning;
}

TEST_F(GaugeTest, WritesNanForAPointInNoCellWithTheSameTabs) {
  CaptureStderr();
  cell(1).U.set_values(1.0, 2.0, 3.0);
  const auto gauge = gauges({{7.0, 7.0}, {0.1, 0.9}});
  GetCapturedStderr();
  record(*gauge);
  record(*gauge);
  EXPECT_EQ(result().at(1), "0\tnan\tnan\tnan\t\t1\t2\t3\t\t");
  EXPECT_EQ(result().at(2), "10\tnan\tnan\tnan\t\t1\t2\t3\t\t");
}

TEST_F(GaugeTest, SaysSoAndAsksForTheEndOfTheRunWhenTheResultCannotBeCreated) {
  CaptureStderr();
  const auto gauge = gauges_with_prefix(folder.file("missing/"), {{0.9, 0.1}});
  EXPECT_EQ(GetCapturedStderr(),
            "Warning: The file " + folder.file("missing/result.txt") + " couldn't be created.\n");
  EXPECT_FALSE(gauge->has_failed());
  CaptureStderr();
  gauge->WriteMeasure(flow);
  EXPECT_TRUE(gauge->has_failed());  // at once
  EXPECT_EQ(GetCapturedStderr(), "   The file gauges.txt couldn't be opened!\n");
}

TEST_F(GaugeTest, AsksForTheEndOfTheRunWhenTheDiskHasNoRoomForItsHeader) {
  std::filesystem::create_symlink("/dev/full", folder.file("result.txt"));
  CaptureStderr();
  EXPECT_TRUE(gauges({})->has_failed());
  GetCapturedStderr();
}

}  // namespace
