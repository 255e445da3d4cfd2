#include "output/COutput.hpp"

#include "output/OutputTest.hpp"

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;
using COutputTest = OutputTest;

TEST_F(COutputTest, AppendsOneLineOfTimeAndStates) {
  utils::LineFile out;
  out.open(folder.file("lines.txt"));
  EXPECT_TRUE(COutput().Write(out, 12.25, {{0.5, 0.0, -0.0}, {1.0, 2.0, 3.0}}));
  EXPECT_TRUE(COutput().Write(out, 1234567.0, {{1.0, 2.0, 3.0}, {1.0, 2.0, 3.0}}));
  EXPECT_EQ(folder.read("lines.txt"),
            "12.25\t0.5\t0\t-0\t\t1\t2\t3\t\t\n1.23457e+06\t1\t2\t3\t\t1\t2\t3\t\t\n");
}

TEST_F(COutputTest, ShowsNoNumberForAPointWithoutACell) {
  utils::LineFile out;
  out.open(folder.file("lines.txt"));
  COutput().Write(out, 0.0, {GaugeState()});
  EXPECT_EQ(folder.read("lines.txt"), "0\tnan\tnan\tnan\t\t\n");
}

TEST_F(COutputTest, FailsOnAFileThatIsNotOpen) {
  utils::LineFile out;
  CaptureStderr();
  EXPECT_FALSE(COutput().Write(out, 0.0, {}));
  EXPECT_EQ(GetCapturedStderr(), "   The file gauges.txt couldn't be opened!\n");
}

}  // namespace
