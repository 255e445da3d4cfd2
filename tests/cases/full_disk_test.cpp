// A disk without room: the run says so and ends, and what was written before stays whole.
#include <sys/mount.h>

#include "cases/CaseTest.hpp"

namespace {

using support::lines;
using support::RunResult;

std::string error_of(const std::string& name) {
  return "Error. The file " + name + " couldn't be written completely: No space left on device.\n";
}

class FullDisk : public CaseTest {
 protected:
  FullDisk() {
    c = support::full_case();
    c.set_times(0.0, 1000.0);  // far more than a disk without room lets it compute
    c.data["output"]["time step enveloppe of results"] = 0.25;
  }
  void fill(const std::string& name) {
    std::filesystem::create_directories(folder.file("out"));
    std::filesystem::remove(folder.file(name));
    std::filesystem::create_symlink("/dev/full", folder.file(name));
  }
  void expect_complete(const std::string& name, std::size_t rows, int tabs_per_row) {
    const std::string text = folder.read(name);
    ASSERT_FALSE(text.empty()) << name;
    EXPECT_EQ(text.back(), '\n') << name;
    EXPECT_EQ(lines(text).size(), rows) << name;
    for (const std::string& line : lines(text)) {
      EXPECT_EQ(support::occurrences(line, "\t"), tabs_per_row) << name << ": " << line;
    }
  }
};

TEST_F(FullDisk, EndsTheRunForEveryKindOfResult) {
  const std::vector<std::string> names = {"out/gauges.txt", "sections.txt", "out/pic_0_50.txt",
                                          "out/enveloppe.txt"};
  for (const std::string& name : names) {
    fill(name);
    expect_stop(error_of(name));
    std::filesystem::remove(folder.file(name));
  }
}

TEST_F(FullDisk, IsNoticedInTheLog) {
  c.set_times(0.0, 1.0);
  fill("log.txt");
  expect_stop("Error. The file log.txt couldn't be written completely (is the disk full?).\n");
}

TEST_F(FullDisk, LeavesTheOtherResultsWhole) {
  fill("out/enveloppe.txt");
  expect_stop(error_of("out/enveloppe.txt"));
  expect_complete("out/pic_0_00.txt", 25, 6);
  EXPECT_EQ(lines(folder.read("out/gauges.txt")).size(), 2U);
  EXPECT_EQ(folder.read("out/gauges.txt").back(), '\n');
  expect_complete("sections.txt", 1, 3);
}

/// A small disk of its own under the output folder.
class SmallDisk : public FullDisk {
 protected:
  SmallDisk() {
    std::filesystem::create_directories(folder.file("out"));
    is_mounted = mount("none", folder.file("out").c_str(), "tmpfs", 0, "size=64k") == 0;
  }
  ~SmallDisk() override {
    if (is_mounted) umount(folder.file("out").c_str());
  }
  bool is_mounted;
};

TEST_F(SmallDisk, ThatFillsUpEndsTheRunWithWholeFiles) {
  if (!is_mounted) GTEST_SKIP() << "a disk may not be mounted here";
  std::vector<double> times;
  for (int i = 0; i < 1000; ++i) times.push_back(0.25 * i);
  c.add_snapshots(times);
  c.add_gauges({{0.6, 0.2}}, 0.25);
  const RunResult result = run();
  EXPECT_EQ(result.status, 255);
  ASSERT_GE(lines(result.err).size(), 1U);
  for (const std::string& line : lines(result.err)) {
    EXPECT_TRUE(support::starts_with(line, "Error. The file out/")) << line;
    EXPECT_TRUE(support::contains(line, ": No space left on device.")) << line;
  }
  std::size_t snapshots = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder.file("out"))) {
    const std::string name = "out/" + entry.path().filename().string();
    EXPECT_NE(entry.path().extension(), ".part");
    if (!support::starts_with(name, "out/pic_")) continue;
    expect_complete(name, 25, 6);
    ++snapshots;
  }
  EXPECT_GT(snapshots, 5U);
  expect_complete("out/enveloppe.txt", 24, 3);
  EXPECT_EQ(folder.read("out/gauges.txt").back(), '\n');
  const std::string sections = folder.read("sections.txt");
  EXPECT_EQ(sections.back(), '\n');
}

}  // namespace
