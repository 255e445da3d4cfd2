#include "case/recorded_end.hpp"

#include <gtest/gtest.h>

namespace {

using cases::RunTime;

std::string remark(double interval, const RunTime& run) {
  return cases::on_recorded_end("it", interval, run).value_or("");
}

}  // namespace

TEST(RecordedEnd, ARecordingAtTheEndNeverComes) {
  EXPECT_EQ(cases::last_recording({0.0, 10.0}, 1.0), 9.0);
  EXPECT_EQ(cases::last_recording({0.0, 10.0}, 9.9), 9.9);
  EXPECT_EQ(cases::last_recording({0.0, 10.0}, 10.0), 0.0);
  EXPECT_DOUBLE_EQ(cases::last_recording({5.0, 6.0}, 0.1), 5.9);  // 0.1 is more than a tenth
  EXPECT_EQ(cases::last_recording({5.0, 6.0}, 30.0), 5.0);
}

TEST(RecordedEnd, ARecordingLessThanAStepBeforeTheEndMayBeMissed) {
  EXPECT_EQ(cases::last_recording({0.0, 10.0, 0.2}, 9.9), 0.0);
  EXPECT_EQ(cases::last_recording({0.0, 10.0, 0.05}, 9.9), 9.9);
  EXPECT_EQ(cases::last_recording({0.0, 10.0, 20.0}, 1.0), 0.0);
}

TEST(RecordedEnd, AnIntervalUpToTheEndIsTheLongestOfThose) {
  EXPECT_EQ(cases::interval_up_to_the_end({0.0, 3600.0}, 360.0), 358.2);
  EXPECT_EQ(cases::interval_up_to_the_end({0.0, 8400.0}, 300.0), 298.5);
  EXPECT_EQ(cases::interval_up_to_the_end({100.0, 110.0}, 1e9), 9.95);
  EXPECT_EQ(cases::interval_up_to_the_end({0.0, 10.0, 2.0}, 10.0), 8.0);
  EXPECT_EQ(cases::interval_up_to_the_end({0.0, 10.0, 20.0}, 5.0), 5.0);
  EXPECT_EQ(cases::interval_up_to_the_end({0.0, 3600.0}, 36.0), 35.82);
}

TEST(RecordedEnd, AnIntervalThatRecordsTheEndStaysAsItIs) {
  EXPECT_EQ(cases::interval_up_to_the_end({0.0, 3610.0}, 1800.0), 1800.0);
  EXPECT_EQ(cases::interval_up_to_the_end({0.0, 70.0}, 0.2), 0.2);
}

TEST(RecordedEnd, IsNotLostWithSuchAnInterval) {
  for (const double duration : {0.37, 10.0, 1234.5, 1e6}) {
    for (const double part : {0.003, 0.01, 0.1, 0.3, 0.7, 1.0, 5.0}) {
      const RunTime run{7.0, 7.0 + duration};
      const double interval = cases::interval_up_to_the_end(run, part * duration);
      EXPECT_LE(interval, part * duration);
      EXPECT_GT(cases::last_recording(run, interval), run.end - 0.01 * duration);
      EXPECT_EQ(remark(interval, run), "");
      if (interval < 0.9 * part * duration) continue;
      EXPECT_EQ(remark(interval, {run.start, run.end, 0.004 * duration}), "");
    }
  }
}

TEST(RecordedEnd, SaysWhatIsLostAndWhichIntervalHelps) {
  EXPECT_EQ(remark(360.0, {0.0, 3600.0}),
            "it is 360 s: what happens after 3240 s, in the last 360 s of the run, is not "
            "recorded; with 358.2 s it is");
  EXPECT_EQ(remark(50.0, {0.0, 20.0}),
            "it is 50 s: what happens after 0 s, in the last 20 s of the run, is not recorded; "
            "with 19.9 s it is");
  EXPECT_EQ(remark(9.9, {0.0, 10.0, 0.2}),
            "it is 9.9 s: what happens after 0 s, in the last 10 s of the run, is not recorded; "
            "with 9.8 s it is");
}

TEST(RecordedEnd, AHundredthOfTheRunIsNoLoss) {
  EXPECT_EQ(remark(36.0, {0.0, 3600.0}), "");
  EXPECT_NE(remark(40.0, {0.0, 3600.0}), "");
}

TEST(RecordedEnd, NoIntervalBringsARecordingInTheLastStep) {
  EXPECT_EQ(remark(0.1, {0.0, 1.0, 0.1}), "");
  EXPECT_EQ(remark(0.1, {0.0, 1.0, 0.3}), "");
  EXPECT_EQ(remark(0.35, {0.0, 1.0, 0.3}), "");
  EXPECT_NE(remark(0.4, {0.0, 1.0, 0.3}), "");  // steps may begin at 0.6 and 0.9
  EXPECT_EQ(remark(0.1, {0.0, 1.0, 2.0}), "");
}

TEST(RecordedEnd, IsOfNoInterestWithoutARunOrAnInterval) {
  EXPECT_EQ(remark(1.0, {5.0, 5.0}), "");
  EXPECT_EQ(remark(0.0, {0.0, 5.0}), "");
  EXPECT_EQ(remark(-1.0, {0.0, 5.0}), "");
}
