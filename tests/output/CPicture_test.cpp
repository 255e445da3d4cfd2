#include "output/CPicture.hpp"

#include <cmath>
#include <filesystem>

#include "output/OutputTest.hpp"

namespace {

class CPictureTest : public OutputTest {
 protected:
  CPictureTest() { folder.write("out/exists", ""); }
  CPicture pictures(const std::vector<double>& times) {
    return CPicture({times}, folder.path() + "/out/", contents);
  }
  /// Writes the next snapshot and answers the name of its file, which is removed.
  std::string write(CPicture& picture) {
    picture.WriteMeasure(flow);
    picture.wait();
    std::string name;
    for (const auto& file : std::filesystem::directory_iterator(folder.file("out"))) {
      if (file.path().filename() == "exists") continue;
      EXPECT_EQ(name, "");
      name = file.path().filename();
    }
    std::filesystem::remove(folder.file("out/" + name));
    return name;
  }
  /// The name of the file of a time.
  std::string name_of(double time) {
    CPicture picture = pictures({time});
    return write(picture);
  }
};

TEST_F(CPictureTest, NamesAFileAfterItsTimeCutOffAtTwoDecimals) {
  EXPECT_EQ(name_of(12.5), "pic_12_50.txt");
  EXPECT_EQ(name_of(3600), "pic_3600_00.txt");
  EXPECT_EQ(name_of(0), "pic_0_00.txt");
  EXPECT_EQ(name_of(0.125), "pic_0_12.txt");
  EXPECT_EQ(name_of(0.129), "pic_0_12.txt");
  EXPECT_EQ(name_of(0.999), "pic_0_99.txt");
  EXPECT_EQ(name_of(1234567.891), "pic_1234567_89.txt");
  EXPECT_EQ(name_of(-1.5), "pic_-1_50.txt");
}

TEST_F(CPictureTest, RoundsToSixDecimalsBeforeItCutsOff) {
  EXPECT_EQ(name_of(0.9999999), "pic_1_00.txt");
  EXPECT_EQ(name_of(1e-9), "pic_0_00.txt");
}

TEST_F(CPictureTest, WarnsAboutTimesOutOfOrderAndAboutEqualNames) {
  using testing::internal::CaptureStderr;
  using testing::internal::GetCapturedStderr;
  CaptureStderr();
  CPicture({{0.0, 10.0, 5.0, 20.0}}, "out/", contents);
  EXPECT_EQ(
      GetCapturedStderr(),
      "Warning: snapshot 2 (counted from 0), out/pic_5_00.txt, has an earlier time than the one "
      "before it: it will show a later flow.\n");
  CaptureStderr();
  CPicture({{0.121, 0.125, 0.13}}, "out/", contents);
  EXPECT_EQ(
      GetCapturedStderr(),
      "Warning: snapshot 1 (counted from 0), out/pic_0_12.txt, replaces an earlier snapshot of "
      "the same name.\n");
}

TEST_F(CPictureTest, IsDueWithinTheTolerance) {
  const CPicture picture = pictures({10.0});
  EXPECT_FALSE(picture.CheckTime(10.0 - 2e-8, 1e-8));
  EXPECT_TRUE(picture.CheckTime(10.0 - 1e-8, 1e-8));
  EXPECT_TRUE(picture.CheckTime(10.0, 1e-8));
  EXPECT_TRUE(picture.CheckTime(1e9, 1e-8));
  EXPECT_FALSE(picture.CheckTime(std::nextafter(10.0, 0.0), 0.0));
}

TEST_F(CPictureTest, WritesEachSnapshotOnceInTheOrderOfTheFile) {
  CPicture picture = pictures({5.0, 1.0, 7.0});
  EXPECT_FALSE(picture.CheckTime(4.0, 0.0));
  for (const char* const name : {"pic_5_00.txt", "pic_1_00.txt", "pic_7_00.txt"}) {
    ASSERT_TRUE(picture.CheckTime(8.0, 0.0)) << name;
    EXPECT_EQ(write(picture), name);
  }
  EXPECT_FALSE(picture.CheckTime(8.0, 0.0));
}

TEST_F(CPictureTest, IsNeverDueWithoutTimes) {
  const CPicture picture = pictures({});
  EXPECT_FALSE(picture.CheckTime(0.0, 1e-8));
  EXPECT_FALSE(picture.CheckTime(1e300, 1e-8));
}

TEST_F(CPictureTest, ShowsTheStateOfTheTriggerThoughTheCellsChangeMeanwhile) {
  cell(0).U.set_values(1.0, 2.0, 3.0);
  cell(1).U.set_values(4.0, 5.0, 6.0);
  CPicture picture = pictures({0.0});
  picture.WriteMeasure(flow);
  for (const auto& changed : model->cells) changed->U.set_values(99.0, 99.0, 99.0);
  picture.wait();
  EXPECT_FALSE(picture.has_failed());
  EXPECT_EQ(folder.read("out/pic_0_00.txt"),
            "x\ty\tzb\th\tqx\tqy\n"
            "0.666667\t0.333333\t0\t1\t2\t3\n"
            "0.333333\t0.666667\t0\t4\t5\t6\n");
}

TEST_F(CPictureTest, AsksForTheEndOfTheRunWhenTheDiskIsFull) {
  std::filesystem::create_symlink("/dev/full", folder.file("out/pic_0_00.txt"));
  CPicture picture = pictures({0.0});
  testing::internal::CaptureStderr();
  picture.WriteMeasure(flow);
  picture.wait();
  EXPECT_TRUE(picture.has_failed());
  testing::internal::GetCapturedStderr();
}

}  // namespace
