#include "support/child_process.hpp"

#include <gtest/gtest.h>

#include <csignal>
#include <iostream>

#include "support/Error.hpp"

namespace {

TEST(TryApart, TellsTheMessageOfAnError) {
  EXPECT_EQ(tools::try_apart("for a test", [] { throw tools::Error("no mesh"); }), "no mesh");
}

TEST(TryApart, IsSilentWhereAllIsWell) {
  testing::internal::CaptureStdout();
  EXPECT_EQ(tools::try_apart("for a test", [] { std::cout << "words" << std::endl; }), "");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(TryApart, TellsThatAnActionCrashed) {
  EXPECT_EQ(tools::try_apart("for a test", [] { std::raise(SIGSEGV); }), std::nullopt);
  EXPECT_EQ(tools::try_apart("for a test", [] { throw std::bad_alloc(); }), std::nullopt);
}

}  // namespace
