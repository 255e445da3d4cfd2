#include "utils/Console.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

TEST(Console, ShowsLinesUntilItIsMuted) {
  std::ostringstream out;
  utils::Console console(out);
  console.show("one\n");
  console.mute();
  console.show("two\n");
  EXPECT_EQ(out.str(), "one\n");
}

TEST(Console, SaysOnceThatItCannotBeWrittenTo) {
  std::ofstream full("/dev/full");
  utils::Console console(full);
  CaptureStderr();
  console.show("one\n");
  console.show("two\n");
  EXPECT_EQ(GetCapturedStderr(),
            "Warning: nothing more can be written to standard output: No space left on device.\n");
}

}  // namespace
