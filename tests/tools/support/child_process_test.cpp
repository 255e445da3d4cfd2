#include "support/child_process.hpp"

#include <gtest/gtest.h>

#include <csignal>
#include <iostream>
#include <new>

#include "support/Error.hpp"

namespace {

TEST(TryApart, TellsTheMessageOfAnException) {
  EXPECT_EQ(tools::try_apart("for a test", [] { throw tools::Error("no mesh"); }), "no mesh");
  EXPECT_EQ(tools::try_apart("for a test", [] { throw std::bad_alloc(); }), "std::bad_alloc");
}

TEST(TryApart, IsSilentWhereAllIsWell) {
  testing::internal::CaptureStdout();
  EXPECT_EQ(tools::try_apart("for a test", [] { std::cout << "words" << std::endl; }), "");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(TryApart, TellsThatAnActionCrashed) {
  EXPECT_EQ(tools::try_apart("for a test", [] { std::raise(SIGSEGV); }), std::nullopt);
  EXPECT_EQ(tools::try_apart("for a test", [] { throw 1; }), std::nullopt);
}

}  // namespace
