#include "output/Gauge.hpp"

#include <cmath>
#include <filesystem>

#include "output/OutputTest.hpp"

namespace {

using support::lines;
using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

class GaugeTest : public OutputTest {
 protected:
  /// Gauges that find the lower cell under points with y < x, the upper cell for y > x.
  std::unique_ptr<Gauge> gauges(const std::string& text, double start_time = 0.0) {
    const auto locate = [this](double x, double y) -> const ComputationalCell* {
      if (x < 0.0 || x > 1.0 || x == y) return nullptr;
      return y < x ? &cell(0) : &cell(1);
    };
    return std::make_unique<Gauge>(folder.write("gauges_in.txt", text), locate, start_time);
  }
  std::vector<std::string> result() { return lines(folder.read("result.txt")); }
};

TEST_F(GaugeTest, WritesFourTitlesPerPointAtSetUp) {
  gauges("2 result.txt 10 0.9 0.1 0 0.1 0.9 0");
  EXPECT_EQ(folder.read("result.txt"),
            "time [s]\ths [m]\thw [m]\tqx [m^3/s/m]\tqy [m^3/s/m]\ths [m]\thw [m]\tqx "
            "[m^3/s/m]\tqy [m^3/s/m]\t\n");
}

TEST_F(GaugeTest, WritesDepthAndDischargesAndAnEmptyFieldPerPoint) {
  cell(0).U.set_values(1.5, -0.25, 1.0 / 3.0);
  cell(1).U.set_values(1e-7, 123456.7, 0.0);
  const auto gauge = gauges("2 result.txt 10 0.9 0.1 0 0.1 0.9 0");
  record(*gauge);
  EXPECT_EQ(result().at(1), "0\t1.5\t-0.25\t0.333333\t\t1e-07\t123457\t0\t\t");
}

TEST_F(GaugeTest, WritesOnlyTheTimeWithoutPoints) {
  const auto gauge = gauges("0 result.txt 10");
  record(*gauge);
  record(*gauge);
  EXPECT_EQ(folder.read("result.txt"), "time [s]\t\n0\t\n10\t\n");
}

TEST_F(GaugeTest, WritesTheSameColumnsForTwoPointsInOneCell) {
  cell(0).U.set_values(2.0, 3.0, 4.0);
  const auto gauge = gauges("2 result.txt 10 0.9 0.1 0 0.8 0.2 5");
  record(*gauge);
  EXPECT_EQ(result().at(1), "0\t2\t3\t4\t\t2\t3\t4\t\t");
}

TEST_F(GaugeTest, IsDueFromItsScheduledTimeOnWithoutTolerance) {
  const auto gauge = gauges("0 result.txt 10", 2.5);
  EXPECT_FALSE(gauge->CheckTime(std::nextafter(2.5, 0.0)));
  EXPECT_TRUE(gauge->CheckTime(2.5));
  record(*gauge);
  EXPECT_FALSE(gauge->CheckTime(std::nextafter(12.5, 0.0)));
  EXPECT_TRUE(gauge->CheckTime(12.5));
  EXPECT_TRUE(gauge->CheckTime(1e9));
}

TEST_F(GaugeTest, WritesTheScheduledTimeNotTheTimeOfTheRecording) {
  const auto gauge = gauges("0 result.txt 10", 0.5);
  Globals::t = 0.75;
  record(*gauge);
  Globals::t = 13.0;
  record(*gauge);
  EXPECT_EQ(result().at(1), "0.5\t");
  EXPECT_EQ(result().at(2), "10.5\t");
}

TEST_F(GaugeTest, CatchesUpOneRecordingAtATime) {
  const auto gauge = gauges("0 result.txt 10");
  int recordings = 0;
  for (; gauge->CheckTime(35.0) && recordings < 100; ++recordings) record(*gauge);
  EXPECT_EQ(recordings, 4);
  EXPECT_EQ(folder.read("result.txt"), "time [s]\t\n0\t\n10\t\n20\t\n30\t\n");
}

TEST_F(GaugeTest, WritesTheStateOfTheTriggerThoughTheCellChangesAfterTheCopy) {
  cell(0).U.set_values(1.0, 0.0, 0.0);
  const auto gauge = gauges("1 result.txt 10 0.9 0.1 0");
  gauge->WriteMeasure();
  Handoff::gauge.wait_for_copy();
  cell(0).U.set_values(99.0, 99.0, 99.0);
  Handoff::join_all();
  EXPECT_EQ(result().at(1), "0\t1\t0\t0\t\t");
}

TEST_F(GaugeTest, TruncatesAnEarlierResult) {
  folder.write("result.txt", "earlier\n");
  gauges("0 result.txt 10");
  EXPECT_EQ(folder.read("result.txt"), "time [s]\t\n");
}

TEST_F(GaugeTest, PutsTheOutputPrefixBeforeTheName) {
  Globals::g_outputPath = folder.path() + "/run1_";
  gauges("0 result.txt 10");
  EXPECT_TRUE(folder.has("run1_result.txt"));
}

TEST_F(GaugeTest, LogsTheNameAsRead) {
  Globals::spyFile.open(folder.file("log.txt"));
  gauges("0 result.txt 10");
  Globals::spyFile.close();
  EXPECT_EQ(folder.read("log.txt"), " Gauge results written in result.txt \n");
}

TEST_F(GaugeTest, WarnsAboutAPointInNoCellWithItsNumberAndPlace) {
  CaptureStderr();
  gauges("3 result.txt 10 0.9 0.1 0 451234.25 0.5 0 0.1 0.9 0");
  const std::string warning = GetCapturedStderr();
  EXPECT_EQ(lines(warning).size(), 1U);
  EXPECT_TRUE(support::starts_with(
      warning, "Warning: gauge 1 (counted from 0) at (451234.25, 0.5) lies in no cell"))
      << warning;
}

TEST_F(GaugeTest, WritesNanForAPointInNoCellWithTheSameTabs) {
  CaptureStderr();
  cell(1).U.set_values(1.0, 2.0, 3.0);
  const auto gauge = gauges("2 result.txt 10 7 7 0 0.1 0.9 0");
  GetCapturedStderr();
  record(*gauge);
  record(*gauge);
  EXPECT_EQ(result().at(1), "0\tnan\tnan\tnan\t\t1\t2\t3\t\t");
  EXPECT_EQ(result().at(2), "10\tnan\tnan\tnan\t\t1\t2\t3\t\t");
}

TEST_F(GaugeTest, DoesNotCareWhereLinesEnd) {
  gauges("\n 1\nresult.txt\t10\n0.9\n0.1\r\n0\nanything after");
  EXPECT_EQ(result().size(), 1U);
}

TEST_F(GaugeTest, SaysSoAndAsksForTheEndOfTheRunWhenTheResultCannotBeCreated) {
  Globals::g_outputPath = folder.file("missing/");
  CaptureStderr();
  const auto gauge = gauges("1 result.txt 10 0.9 0.1 0");
  EXPECT_EQ(GetCapturedStderr(),
            "Warning: The file " + folder.file("missing/result.txt") + " couldn't be created.\n");
  EXPECT_FALSE(Thread::has_failed);
  CaptureStderr();
  record(*gauge);
  EXPECT_EQ(GetCapturedStderr(), "   The file gauges.txt couldn't be opened!\n");
  EXPECT_TRUE(Thread::has_failed);
}

TEST_F(GaugeTest, EndsTheRunWithoutItsFile) {
  EXPECT_EXIT(Gauge("missing.txt", nullptr, 0.0), testing::ExitedWithCode(255),
              "^Fatal error. Impossible to open file missing\\.txt\\.\n$");
}

}  // namespace
