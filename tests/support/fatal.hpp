// Expects that a run would end.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "utils/stop.hpp"

namespace support {

using TextOfError = const std::string& (utils::FatalError::*)() const;

inline testing::AssertionResult is_fatal(const std::function<void()>& statement, int status,
                                         const testing::Matcher<const std::string&>& message,
                                         TextOfError text = &utils::FatalError::text) {
  try {
    statement();
  } catch (const utils::FatalError& error) {
    if ((error.status() & 255) != status) {
      return testing::AssertionFailure() << "the status is " << error.status();
    }
    if (message.Matches((error.*text)())) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "the message is " << (error.*text)();
  }
  return testing::AssertionFailure() << "nothing ended the run";
}

/// The same with a regular expression that the message contains.
inline testing::AssertionResult is_fatal(const std::function<void()>& statement, int status,
                                         const char* pattern) {
  return is_fatal(statement, status,
                  testing::Matcher<const std::string&>(testing::ContainsRegex(pattern)));
}
inline testing::AssertionResult is_fatal(const std::function<void()>& statement, int status,
                                         const std::string& pattern) {
  return is_fatal(statement, status, pattern.c_str());
}

}  // namespace support

/// The statement ends a run with an exit status and a message: a matcher or a regular expression.
#define EXPECT_FATAL(statement, status, message) \
  EXPECT_TRUE(support::is_fatal([&] { statement; }, status, message))
/// The same of an error that is told on standard output.
#define EXPECT_FATAL_OUTPUT(statement, status, message) \
  EXPECT_TRUE(support::is_fatal([&] { statement; }, status, message, &utils::FatalError::output))
