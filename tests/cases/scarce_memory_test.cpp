// A run that may not take the memory, or write the bytes, that it needs: it says so and ends, and
// no result is damaged.
#include <sys/resource.h>

#include "cases/ReportTest.hpp"

namespace {

using support::contains;
using support::RunOptions;
using support::RunResult;

class Scarce : public ReportTest {
 protected:
  Scarce() {
    c = support::full_case(60, 40);
    c.set_times(0.0, 0.3);
    c.add_snapshots({0.0, 0.1, 0.2});
    c.add_gauges({{0.6, 0.2}}, 0.05);
    c.data["output"]["time step enveloppe of results"] = 0.05;
  }
  RunResult run_limited(const RunOptions& options) {
    return support::run_program(
        folder.path(), {"-f", "data.json", "-nodisplay", "--report", "report.json"}, options);
  }
  void remove_results() {
    std::filesystem::remove_all(folder.file("out"));
    std::filesystem::create_directories(folder.file("out"));
    std::filesystem::remove(folder.file("sections.txt"));
  }
  /// Snapshots are there as they should be, or not at all; lines are complete.
  void expect_undamaged(const std::map<std::string, std::string>& files) {
    for (const auto& [name, text] : files_of(folder)) {
      if (name.ends_with(".part") || name == "log.txt" || name == "report.json") continue;
      ASSERT_TRUE(files.count(name)) << name;
      if (name == "out/enveloppe.txt") {
        EXPECT_EQ(support::lines(text).size(), 4800U);
      } else if (contains(name, "pic_")) {
        EXPECT_EQ(text, files.at(name)) << name;
      } else {
        EXPECT_TRUE(support::starts_with(files.at(name), text)) << name;
        EXPECT_TRUE(text.empty() || text.back() == '\n') << name;
      }
    }
  }
};

TEST_F(Scarce, MemoryEndsTheRunWithOneMessage) {
  if (!support::memory_can_be_limited) GTEST_SKIP() << "a sanitizer maps terabytes";
  run_with_report();
  const auto files = files_of(folder);
  constexpr std::size_t quarter_of_a_megabyte = 1 << 18;
  int too_little = 0;
  bool is_enough = false;
  for (std::size_t memory = 0; !is_enough; memory += quarter_of_a_megabyte) {
    const RunOptions options = {.address_space = memory, .limits = {{RLIMIT_STACK, 1 << 20}}};
    const RunResult start = support::run_program(folder.path(), {"--version"}, options);
    if (memory == 0 || start.status != 0) continue;  // no limit; or no room for the program itself
    remove_results();
    const RunResult result = run_limited(options);
    ASSERT_EQ(result.signal, 0) << memory;
    is_enough = result.status == 0;
    expect_undamaged(files);
    if (is_enough) break;
    EXPECT_EQ(result.status, 255);
    const std::vector<std::string> messages = support::lines(result.err);
    ASSERT_FALSE(messages.empty());
    EXPECT_EQ(messages.back(),
              "Error. There is not enough memory for this run. The results that are complete "
              "stay.");
    ++too_little;
  }
  EXPECT_GT(too_little, 5);
}

TEST_F(Scarce, SizeOfFilesIsLikeAFullDisk) {
  run_with_report();
  const auto files = files_of(folder);
  for (const std::size_t bytes : {100, 3000, 20000, 100000}) {
    remove_results();
    const RunResult result = run_limited({.limits = {{RLIMIT_FSIZE, bytes}}});
    EXPECT_EQ(result.signal, 0) << bytes;
    EXPECT_EQ(result.status, 255) << bytes;
    EXPECT_TRUE(contains(result.err, "couldn't be written completely: File too large.\n") ||
                contains(result.err, "log.txt couldn't be written completely"))
        << result.err;
    expect_undamaged(files);
  }
}

}  // namespace
