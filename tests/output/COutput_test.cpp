#include "output/COutput.hpp"

#include "output/OutputTest.hpp"

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

class COutputTest : public OutputTest {
 protected:
  /// Writes a line on the thread of the gauges, as a recording does.
  void write(utils::LineFile& out, const std::vector<const ComputationalCell*>& cells, double time,
             std::vector<HydraulicVariableSWE>& buffer) {
    Handoff::gauge.start([&] { Globals::myOutput.Write(out, cells, time, buffer); });
    Handoff::wait_for_copies();
    Handoff::join_all();
  }
};

TEST_F(COutputTest, AppendsOneLineOfTimeAndStates) {
  utils::LineFile out;
  out.open(folder.file("lines.txt"));
  cell(0).U.set_values(1.0, 2.0, 3.0);
  cell(1).U.set_values(0.5, 0.0, -0.0);
  std::vector<HydraulicVariableSWE> buffer(2);
  write(out, {&cell(1), &cell(0)}, 12.25, buffer);
  write(out, {&cell(0), &cell(0)}, 1234567.0, buffer);
  EXPECT_EQ(folder.read("lines.txt"),
            "12.25\t0.5\t0\t-0\t\t1\t2\t3\t\t\n1.23457e+06\t1\t2\t3\t\t1\t2\t3\t\t\n");
}

TEST_F(COutputTest, CopiesTheWholeStateIntoTheBuffer) {
  utils::LineFile out;
  out.open(folder.file("lines.txt"));
  cell(0).U.set_values(1.0, 2.0, 3.0, 4.0, 5.0, 6.0);
  std::vector<HydraulicVariableSWE> buffer(1);
  write(out, {&cell(0)}, 0.0, buffer);
  EXPECT_EQ(buffer[0].h, 1.0);
  EXPECT_EQ(buffer[0].qx, 2.0);
  EXPECT_EQ(buffer[0].qy, 3.0);
  EXPECT_EQ(buffer[0].hs, 4.0);
  EXPECT_EQ(buffer[0].qsx, 5.0);
  EXPECT_EQ(buffer[0].qsy, 6.0);
}

TEST_F(COutputTest, KeepsTheBufferOfAPointWithoutACell) {
  utils::LineFile out;
  out.open(folder.file("lines.txt"));
  std::vector<HydraulicVariableSWE> buffer(1);
  buffer[0].set_values(7.0, 8.0, 9.0);
  write(out, {nullptr}, 0.0, buffer);
  EXPECT_EQ(folder.read("lines.txt"), "0\t7\t8\t9\t\t\n");
}

TEST_F(COutputTest, FailsOnAFileThatIsNotOpenAndStillLetsTheLoopGoOn) {
  utils::LineFile out;
  std::vector<HydraulicVariableSWE> buffer;
  CaptureStderr();
  write(out, {}, 0.0, buffer);
  EXPECT_EQ(GetCapturedStderr(), "   The file gauges.txt couldn't be opened!\n");
  EXPECT_TRUE(Thread::has_failed);
  EXPECT_TRUE(Mutex::gauge.try_acquire()) << "the permit was not given back";
  Mutex::gauge.release();
}

}  // namespace
