#include "domain/Progress.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

class ProgressLines : public testing::Test {
 protected:
  Progress watched_run(bool is_terminal) {
    Progress progress(out, is_terminal, [this] { return now; });
    progress.begin(100.0, 200.0);
    return progress;
  }
  static fields::FlowSurvey flow() {
    fields::FlowSurvey flow;
    flow.wet_cells = 1234;
    flow.largest_speed = 2.5;
    return flow;
  }

  std::ostringstream out;
  double now = 50.0;
};

TEST_F(ProgressLines, RewriteOneLineOnATerminalAndLeaveItAtTheEnd) {
  Progress progress = watched_run(true);
  now = 60.0;
  progress.show(125.0, 0.05, flow());
  EXPECT_EQ(out.str(),
            "\r 25.0 %  step 0.05 s  1234 wet cells  fastest 2.5 m/s  0:00:10 gone  0:00:30 left"
            "\033[K");
  progress.end();
  EXPECT_TRUE(out.str().ends_with("\033[K\n"));
}

TEST_F(ProgressLines, StandOneBelowTheOtherInAFile) {
  Progress progress = watched_run(false);
  now = 50.0 + 3600.0;
  progress.show(150.0, 0.05, flow());
  EXPECT_EQ(out.str(),
            " 50.0 %  step 0.05 s  1234 wet cells  fastest 2.5 m/s  1:00:00 gone  1:00:00 left\n");
  progress.end();
  EXPECT_TRUE(out.str().ends_with("left\n"));
  EXPECT_FALSE(out.str().ends_with("\n\n"));
}

TEST_F(ProgressLines, AreDueTenTimesASecondOnATerminal) {
  Progress progress = watched_run(true);
  EXPECT_FALSE(progress.is_due());
  now += 0.09;
  EXPECT_FALSE(progress.is_due());
  now += 0.02;
  ASSERT_TRUE(progress.is_due());
  progress.show(110.0, 0.05, flow());
  EXPECT_FALSE(progress.is_due());
  now += 0.11;
  EXPECT_TRUE(progress.is_due());
}

TEST_F(ProgressLines, AreDueEveryThirtySecondsInAFile) {
  Progress progress = watched_run(false);
  now += 29.9;
  EXPECT_FALSE(progress.is_due());
  now += 0.2;
  EXPECT_TRUE(progress.is_due());
}

TEST_F(ProgressLines, AreRarerWhereALookAtTheFlowTakesLong) {
  Progress progress = watched_run(true);
  now += 0.2;
  ASSERT_TRUE(progress.is_due());
  now += 0.05;  // the look
  progress.show(110.0, 0.05, flow());
  now += 4.9;
  EXPECT_FALSE(progress.is_due());
  now += 0.2;
  EXPECT_TRUE(progress.is_due());
}

TEST_F(ProgressLines, TakeTheRemainingTimeFromTheRecentPace) {
  Progress progress = watched_run(true);
  now += 20.0;
  progress.show(101.0, 0.05, flow());  // slow at first
  for (int k = 1; k <= 12; ++k) {
    now += 1.0;
    progress.show(101.0 + 2.0 * k, 0.05, flow());  // then 2 s in a second
  }
  // 75 s remain.
  EXPECT_NE(out.str().substr(out.str().rfind('\r')).find("0:00:38 left"), std::string::npos)
      << out.str();
}

TEST_F(ProgressLines, DoNotGuessTheRemainingTimeOfARunThatStandsStill) {
  Progress progress = watched_run(true);
  now += 1.0;
  progress.show(100.0, 0.05, flow());
  EXPECT_NE(out.str().find("? left"), std::string::npos) << out.str();
}

}  // namespace
