#include "output/CPicture.hpp"

#include <cmath>

#include "output/OutputTest.hpp"

namespace {

/// Keeps the names under which it was asked to write.
class WritingModel : public PhysicalModel {
 public:
  void printPicture(const std::string& name) override {
    Handoff::picture.release();
    names.push_back(name);
  }
  std::vector<std::string> names;
};

class CPictureTest : public OutputTest {
 protected:
  CPicture pictures(const std::string& text) {
    return CPicture(folder.write("snapshots_in.txt", text));
  }
  static void write(CPicture& picture, WritingModel& writer) {
    picture.WriteMeasure(&writer);
    Handoff::wait_for_copies();
    Handoff::join_all();
  }
  /// The name of the file of a time.
  std::string name_of(const std::string& time) {
    Globals::g_outputPath = "out/";
    CPicture picture = pictures("1 " + time);
    WritingModel writer;
    write(picture, writer);
    return writer.names.at(0);
  }
};

TEST_F(CPictureTest, NamesAFileAfterItsTimeCutOffAtTwoDecimals) {
  EXPECT_EQ(name_of("12.5"), "out/pic_12_50.txt");
  EXPECT_EQ(name_of("3600"), "out/pic_3600_00.txt");
  EXPECT_EQ(name_of("0"), "out/pic_0_00.txt");
  EXPECT_EQ(name_of("0.125"), "out/pic_0_12.txt");
  EXPECT_EQ(name_of("0.129"), "out/pic_0_12.txt");
  EXPECT_EQ(name_of("0.999"), "out/pic_0_99.txt");
  EXPECT_EQ(name_of("1234567.891"), "out/pic_1234567_89.txt");
  EXPECT_EQ(name_of("-1.5"), "out/pic_-1_50.txt");
}

TEST_F(CPictureTest, RoundsToSixDecimalsBeforeItCutsOff) {
  EXPECT_EQ(name_of("0.9999999"), "out/pic_1_00.txt");
  EXPECT_EQ(name_of("1e-9"), "out/pic_0_00.txt");
}

TEST_F(CPictureTest, WarnsAboutTimesOutOfOrderAndAboutEqualNames) {
  using testing::internal::CaptureStderr;
  using testing::internal::GetCapturedStderr;
  Globals::g_outputPath = "out/";
  CaptureStderr();
  pictures("4  0 10 5 20");
  EXPECT_EQ(
      GetCapturedStderr(),
      "Warning: snapshot 2 (counted from 0), out/pic_5_00.txt, has an earlier time than the one "
      "before it: it will show a later flow.\n");
  CaptureStderr();
  pictures("3  0.121 0.125 0.13");
  EXPECT_EQ(
      GetCapturedStderr(),
      "Warning: snapshot 1 (counted from 0), out/pic_0_12.txt, replaces an earlier snapshot of "
      "the same name.\n");
}

TEST_F(CPictureTest, IsDueWithinTheTolerance) {
  const CPicture picture = pictures("1 10");
  EXPECT_FALSE(picture.CheckTime(10.0 - 2e-8, 1e-8));
  EXPECT_TRUE(picture.CheckTime(10.0 - 1e-8, 1e-8));
  EXPECT_TRUE(picture.CheckTime(10.0, 1e-8));
  EXPECT_TRUE(picture.CheckTime(1e9, 1e-8));
  EXPECT_FALSE(picture.CheckTime(std::nextafter(10.0, 0.0), 0.0));
}

TEST_F(CPictureTest, WritesEachSnapshotOnceInTheOrderOfTheFile) {
  CPicture picture = pictures("3\n5\n1\n7\n");
  WritingModel writer;
  EXPECT_FALSE(picture.CheckTime(4.0, 0.0));
  for (int i = 0; i < 3; ++i) {
    ASSERT_TRUE(picture.CheckTime(8.0, 0.0)) << i;
    write(picture, writer);
  }
  EXPECT_FALSE(picture.CheckTime(8.0, 0.0));
  const std::string path = folder.path();
  EXPECT_EQ(writer.names, (std::vector<std::string>{path + "/pic_5_00.txt", path + "/pic_1_00.txt",
                                                    path + "/pic_7_00.txt"}));
}

TEST_F(CPictureTest, IsNeverDueWithoutTimes) {
  const CPicture picture = pictures("0");
  EXPECT_FALSE(picture.CheckTime(0.0, 1e-8));
  EXPECT_FALSE(picture.CheckTime(1e300, 1e-8));
}

TEST_F(CPictureTest, KeepsTheOutputFolderOfItsConstruction) {
  CPicture picture = pictures("1 2");
  const std::string path = folder.path();
  Globals::g_outputPath = "elsewhere/";
  WritingModel writer;
  write(picture, writer);
  EXPECT_EQ(writer.names.at(0), path + "/pic_2_00.txt");
}

TEST_F(CPictureTest, ShowsTheStateOfTheTriggerThoughTheCellsChangeAfterTheCopy) {
  model->cell_value_rows.allocate(2, 3);
  cell(0).U.set_values(1.0, 2.0, 3.0);
  cell(1).U.set_values(4.0, 5.0, 6.0);
  CPicture picture = pictures("1 0");
  picture.WriteMeasure(model.get());
  Handoff::picture.wait_for_copy();
  for (const auto& changed : model->cells) changed->U.set_values(99.0, 99.0, 99.0);
  Handoff::join_all();
  EXPECT_EQ(folder.read("pic_0_00.txt"),
            "x\ty\tzb\th\tqx\tqy\n"
            "0.666667\t0.333333\t0\t1\t2\t3\n"
            "0.333333\t0.666667\t0\t4\t5\t6\n");
}

TEST_F(CPictureTest, EndsTheRunWithoutItsFile) {
  EXPECT_EXIT(CPicture("missing.txt"), testing::ExitedWithCode(255),
              "^Fatal error. Impossible to open file missing\\.txt\\.\n$");
}

}  // namespace
