// Results in NetCDF: what a run says where they cannot be written, and what stays then. What they
// hold is looked at in the tests of the exports, by an independent reader.
#include <sys/mount.h>

#include "cases/CaseTest.hpp"

namespace {

namespace fs = std::filesystem;
using support::contains;

class Results : public CaseTest {
 protected:
  Results() {
    c.data["output"]["results"] = "results.nc";
    c.data["output"]["results times"] = "times.txt";
    c.files["times.txt"] = "2 0 0.5";
  }
  int snapshots() { return static_cast<unsigned char>(folder.read("out/results.nc").at(7)); }
};

TEST_F(Results, AreWrittenAndNamedInTheLog) {
  run_well();
  EXPECT_EQ(snapshots(), 2);
  EXPECT_FALSE(folder.has("out/results.nc.part"));
  EXPECT_TRUE(contains(folder.read("log.txt"),
                       "  Results in NetCDF: written to out/results.nc, times read in times.txt"));
}

TEST_F(Results, TakeTheTimesOfTheSnapshotsAsText) {
  c.data["output"].erase("results times");
  c.add_snapshots({0.0, 0.25, 0.5});
  run_well();
  EXPECT_EQ(snapshots(), 3);
  EXPECT_TRUE(folder.has("out/pic_0_25.txt"));
}

TEST_F(Results, NeedTimes) {
  c.data["output"].erase("results times");
  expect_stop(
      "Error. \"output/results\" needs times: expected \"output/results times\" or "
      "\"output/snapshots of flow\".\n");
}

TEST_F(Results, NeedTimesThatIncrease) {
  c.files["times.txt"] = "3 0 0.5 0.5";
  expect_stop(
      "Error in file times.txt: snapshot 2 (counted from 0): found the time 0.5 after 0.5, "
      "expected times that increase, for the results in NetCDF.\n");
}

TEST_F(Results, HaveANameAndAPrecision) {
  c.data["output"]["results precision"] = "half";
  expect_stop("Error. \"output/results precision\": found \"half\", expected single or double.\n");
  c.data["output"]["results"] = "";
  expect_stop("Error. \"output/results\" is empty, expected the name of a file.\n");
}

TEST_F(Results, StayWhereTheirPlaceIsNoFile) {
  c.write(folder);
  const std::string refusal =
      "Error. The file out/results.nc couldn't be created: expected the name of a regular file, or "
      "a new one.\n";
  fs::create_symlink("/dev/full", folder.file("out/results.nc"));
  expect_stop(refusal);
  fs::remove(folder.file("out/results.nc"));
  fs::create_directory(folder.file("out/results.nc"));
  expect_stop(refusal);
}

TEST_F(Results, ReplaceTheFileThatALinkLeadsTo) {
  c.write(folder);
  folder.write("elsewhere.nc", "earlier");
  fs::create_symlink("../elsewhere.nc", folder.file("out/results.nc"));
  run_well();
  EXPECT_TRUE(fs::is_symlink(folder.file("out/results.nc")));
  EXPECT_EQ(folder.read("elsewhere.nc").substr(0, 3), "CDF");
}

TEST_F(Results, EndTheRunBeforeItsStepsWhereTheirFolderIsMissing) {
  c.data["output"]["results"] = "no/results.nc";
  expect_stop(
      "Error. The file out/no/results.nc couldn't be created: No such file or directory.\n");
}

TEST_F(Results, MayNotReplaceAnInput) {
  c.data["output"]["folder"] = "";
  c.data["output"]["results"] = "nodes.txt";
  expect_stop(
      "Error. The results (nodes.txt) would replace an input file of this run (nodes.txt).\n");
}

TEST_F(Results, OnAFullDiskEndTheRunAndKeepWhatWasWritten) {
  const std::string disk = folder.file("out/disk");  // of the results alone
  fs::create_directories(disk);
  if (mount("none", disk.c_str(), "tmpfs", 0, "size=512k") != 0) {
    GTEST_SKIP() << "a disk may not be mounted here";
  }
  c.nx = c.ny = 40;
  c.initial = [](double x, double) { return support::InitialState{x < 4.0 ? 2.0 : 1.0}; };
  c.set_times(0.0, 1000.0);
  c.data["output"]["results"] = "disk/results.nc";
  std::string times = "10000";
  for (int i = 0; i < 10000; ++i) times += " " + support::exact(0.1 * i);
  c.files["times.txt"] = times;
  const support::RunResult result = run();
  const std::string bytes = folder.read("out/disk/results.nc");
  umount(disk.c_str());
  EXPECT_EQ(result.status, 255);
  EXPECT_EQ(result.err,
            "Error. The file out/disk/results.nc couldn't be written completely: No space left "
            "on device.\n");
  constexpr std::size_t record = 8 + 6 * 4 * 3200;
  const auto count = static_cast<std::size_t>(bytes.at(7));
  EXPECT_GE(count, 1U);
  EXPECT_LT(bytes.size(), 512U * 1024U);
  EXPECT_GE(bytes.size(), count * record);
  EXPECT_LT(bytes.size() - count * record, 300000U);  // the mesh, and no record cut short
}

TEST_F(Results, ARunWithoutThemRefusesAReferenceThatMakesNoSense) {
  c.data["output"].erase("results");
  c.data["crs"] = "UTM 32";
  expect_stop("Error. \"crs\": found \"UTM 32\", expected EPSG: and a number.\n");
  c.data.erase("crs");
  c.data["epoch"] = "2026-02-30T00:00:00Z";
  expect_stop(
      "Error. \"epoch\": found \"2026-02-30T00:00:00Z\", expected a date and hour, UTC, as in "
      "2026-05-01T06:00:00Z.\n");
}

}  // namespace
