#include "utils/stop.hpp"

#include <gtest/gtest.h>

#include <string>

#include "support/fatal.hpp"
#include "support/text.hpp"

namespace {

using testing::internal::CaptureStderr;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStderr;
using testing::internal::GetCapturedStdout;

TEST(Fatal, ThrowsItsMessageAndTheStatus) {
  EXPECT_FATAL(utils::fatal("What went wrong.\n"), 255, testing::Eq("What went wrong.\n"));
  EXPECT_FATAL(utils::fatal("Unknown ID.\n", 1), 1, testing::Eq("Unknown ID.\n"));
}

TEST(Fatal, MayTellTheErrorOnStandardOutput) {
  EXPECT_FATAL(utils::fatal("", 1, "Unknown ID.\n"), 1, testing::Eq(""));
  EXPECT_FATAL_OUTPUT(utils::fatal("", 1, "Unknown ID.\n"), 1, testing::Eq("Unknown ID.\n"));
}

TEST(Fatal, IsSilent) {
  CaptureStdout();
  CaptureStderr();
  EXPECT_THROW(utils::fatal("What went wrong.\n", 1, "words\n"), utils::FatalError);
  EXPECT_EQ(GetCapturedStderr() + GetCapturedStdout(), "");
}

TEST(Stop, ThrowsTheStatusAlone) {
  EXPECT_FATAL(utils::stop(0), 0, testing::Eq(""));
  EXPECT_FATAL(utils::stop(-1), 255, testing::Eq(""));
}

TEST(FatalErrorText, IsWhatWithoutItsLineEnd) {
  EXPECT_STREQ(utils::FatalError("Unknown ID.\n").what(), "Unknown ID.");
  EXPECT_STREQ(utils::FatalError("", 1, "Unknown ID.\n").what(), "Unknown ID.");
}

TEST(Warn, WritesOneMarkedLineToStandardErrorOnly) {
  CaptureStdout();
  CaptureStderr();
  utils::warn("something is odd.");
  EXPECT_EQ(GetCapturedStderr(), "Warning: something is odd.\n");
  EXPECT_EQ(GetCapturedStdout(), "");
}

std::string warnings(int count) {
  CaptureStderr();
  {
    utils::RepeatedWarning repeated("odd edges.");
    for (int i = 0; i < count; ++i) repeated.add("edge " + std::to_string(i) + " is odd.");
  }
  return GetCapturedStderr();
}

TEST(RepeatedWarning, SaysNothingWithoutAWarning) { EXPECT_EQ(warnings(0), ""); }

TEST(RepeatedWarning, WritesUpToTenWarningsInFull) {
  EXPECT_EQ(warnings(1), "Warning: edge 0 is odd.\n");
  EXPECT_EQ(support::lines(warnings(10)).size(), 10U);
  EXPECT_EQ(support::lines(warnings(10)).back(), "Warning: edge 9 is odd.");
}

TEST(RepeatedWarning, CountsTheWarningsFromTheEleventhOn) {
  const std::vector<std::string> eleven = support::lines(warnings(11));
  ASSERT_EQ(eleven.size(), 11U);
  EXPECT_EQ(eleven[9], "Warning: edge 9 is odd.");
  EXPECT_EQ(eleven[10], "Warning: 1 more odd edges.");
  EXPECT_EQ(support::lines(warnings(5000)).back(), "Warning: 4990 more odd edges.");
}

}  // namespace
