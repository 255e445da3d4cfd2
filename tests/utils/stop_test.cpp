#include "utils/stop.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <iostream>
#include <string>
#include <thread>

#include "globals/Globals.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/text.hpp"
#include "utils/OutputFile.hpp"
#include "utils/WriterThread.hpp"

namespace {

using testing::ExitedWithCode;
using testing::internal::CaptureStderr;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStderr;
using testing::internal::GetCapturedStdout;

TEST(StopDeathTest, FatalWritesTheMessageAndEndsWithTheStatus) {
  EXPECT_EXIT(utils::fatal("What went wrong.\n"), ExitedWithCode(255), "^What went wrong\\.\n$");
  EXPECT_EXIT(utils::fatal("Unknown ID.\n", 1), ExitedWithCode(1), "^Unknown ID\\.\n$");
}

TEST(StopDeathTest, StopIsSilent) {
  EXPECT_EXIT(utils::stop(0), ExitedWithCode(0), "^$");
  EXPECT_EXIT(utils::stop(-1), ExitedWithCode(255), "^$");
}

TEST(StopDeathTest, EveryEarlyEndGoesToTheHandlerAlone) {
  const auto run = [] {
    utils::set_stop_handler([](int status, const std::string& message) {
      throw std::to_string(status) + " " + message;
    });
    std::string told;
    const auto note = [&told](const std::string& text) { told += text; };
    try {
      utils::fatal("Unknown ID.\n", 1);
    } catch (const std::string& text) {
      note(text);
    }
    try {
      utils::stop(3);
    } catch (const std::string& text) {
      note(text);
    }
    std::exit(told == "1 Unknown ID.\n3 " ? 40 : 41);
  };
  EXPECT_EXIT(run(), ExitedWithCode(40), "^$");
}

TEST(StopDeathTest, FatalErrorsAreThrownOnRequest) {
  const auto run = [] {
    utils::throw_fatal_errors();
    try {
      utils::fatal("Unknown ID.\n", 1);
    } catch (const utils::FatalError& error) {
      if (error.what() == std::string("Unknown ID.")) utils::stop(42);
    }
  };
  EXPECT_EXIT(run(), ExitedWithCode(42), "^$");
}

TEST(StopDeathTest, StopClosesTheLogWithAllItsLines) {
  const support::TemporaryFolder folder;
  const auto run = [&] {
    Globals::spyFile.open(folder.file("log.txt"));
    Globals::spyFile << "last words\n";
    utils::stop(-1);
  };
  EXPECT_EXIT(run(), ExitedWithCode(255), "");
  EXPECT_EQ(folder.read("log.txt"), "last words\n");
}

TEST(StopDeathTest, StopLetsAWriterFinishItsFile) {
  const support::TemporaryFolder folder;
  const auto run = [&] {
    utils::WriterThread writer;
    writer.hand_over([&] {
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
      utils::TextBuffer text;
      text << "complete\n";
      return utils::WholeFile(folder.file("picture.txt")).commit(text);
    });
    utils::stop(-1);
  };
  EXPECT_EXIT(run(), ExitedWithCode(255), "");
  EXPECT_EQ(folder.read("picture.txt"), "complete\n");
}

TEST(StopDeathTest, StopFlushesTheConsole) {
  const support::TemporaryFolder folder;
  const auto run = [&] {
    if (std::freopen(folder.file("console.txt").c_str(), "w", stdout) == nullptr) std::abort();
    std::cout << "12.500";
    utils::stop(-1);
  };
  EXPECT_EXIT(run(), ExitedWithCode(255), "");
  EXPECT_EQ(folder.read("console.txt"), "12.500");
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
