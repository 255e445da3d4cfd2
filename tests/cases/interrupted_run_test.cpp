// A run that is killed at any moment leaves no damaged result under a result's name.
#include <algorithm>
#include <chrono>
#include <csignal>
#include <random>
#include <thread>

#include "cases/CaseTest.hpp"

namespace {

using support::lines;

const std::string earlier = "a complete result of an earlier run\n";

class InterruptedRun : public CaseTest {
 protected:
  InterruptedRun() {
    c.nx = c.ny = 20;
    c.west = "-3 -0.1";
    c.set_times(0.0, 1e6);  // far more than is waited for
    c.data["output"]["time step enveloppe of results"] = 1e-9;
    std::vector<double> times;
    for (int i = 0; i < 20000; ++i) times.push_back(0.01 * i);
    c.add_snapshots(times);
    c.add_gauges({{0.6, 0.2}, {3.3, 3.1}}, 1e-9);
    c.add_sections({c.edges_across(2)}, 1e-9);
  }
  /// Starts the run, waits until it has come to its loop, lets it go on, and sends the signals. One
  /// of them ends it: the system delivers them in its own order.
  void interrupt_after(std::chrono::milliseconds delay, const std::vector<int>& signals) {
    std::filesystem::remove(folder.file("sections.txt"));
    support::RunningProgram program(folder.path(), {"-f", "data.json", "-nodisplay"});
    for (int i = 0; i < 60000 && lines(folder.read("sections.txt")).empty(); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    std::this_thread::sleep_for(delay);
    for (const int signal : signals) program.send(signal);
    const support::RunResult result = program.wait();
    const bool has_ended_before_the_last = result.status == 128 + signals.front();
    ASSERT_TRUE(has_ended_before_the_last ||
                std::count(signals.begin(), signals.end(), result.signal))
        << result.signal << " " << result.status;
    ASSERT_FALSE(lines(folder.read("sections.txt")).empty());
  }
  /// Lines that the system takes in pieces, one after the other.
  void write_long_lines() {
    c.nx = c.ny = 4;
    c.data["output"]["time step enveloppe of results"] = 1e9;
    c.add_snapshots({});
    c.add_gauges(std::vector<support::Point>(gauges, {0.6, 0.2}), 1e-9);
    c.add_sections({c.edges_across(2)}, 1e-9);
    c.write(folder);
  }
  static constexpr int gauges = 4000;
  void expect_whole(const std::string& name, std::size_t rows, int tabs_per_row) {
    const std::string text = folder.read(name);
    if (text == earlier) return;
    ASSERT_FALSE(text.empty()) << name;
    EXPECT_EQ(text.back(), '\n') << name;
    EXPECT_EQ(lines(text).size(), rows) << name;
    for (const std::string& line : lines(text)) {
      ASSERT_EQ(support::occurrences(line, "\t"), tabs_per_row) << name << ": " << line;
    }
  }
  void expect_complete_lines(const std::string& name, std::size_t first, int tabs_per_row) {
    const std::vector<std::string> rows = lines(folder.read(name));
    for (std::size_t i = first; i < rows.size(); ++i) {
      ASSERT_EQ(support::occurrences(rows[i], "\t"), tabs_per_row) << name << ": " << rows[i];
    }
  }
};

TEST_F(InterruptedRun, LeavesOnlyCompleteResults) {
  c.write(folder);
  for (const char* name :
       {"out/pic_0_00.txt", "out/pic_0_05.txt", "out/pic_199_00.txt", "out/enveloppe.txt"}) {
    folder.write(name, earlier);
  }
  std::mt19937 random(99);
  std::uniform_int_distribution<int> delay(0, 60);
  std::string log;
  int snapshots = 0;
  for (int kill = 0; kill < 12; ++kill) {
    interrupt_after(std::chrono::milliseconds(delay(random)), {SIGKILL});
    for (const auto& entry : std::filesystem::directory_iterator(folder.file("out"))) {
      const std::string name = entry.path().filename().string();
      const bool is_snapshot =
          support::starts_with(name, "pic_") && entry.path().extension() == ".txt";
      if (!is_snapshot) continue;
      expect_whole("out/" + name, 801, 5);
      ++snapshots;
    }
    expect_whole("out/enveloppe.txt", 800, 3);
    expect_complete_lines("out/gauges.txt", 1, 9);
    expect_complete_lines("sections.txt", 0, 2);
    // The log of every run is the same as far as it goes.
    const std::string now = folder.read("log.txt");
    EXPECT_TRUE(support::contains(now, "  ZERO depth: 0.0001\n"));
    if (log.empty()) log = now;
    EXPECT_EQ(now, log);
  }
  EXPECT_GE(snapshots, 12 * 3);
  EXPECT_EQ(folder.read("out/pic_199_00.txt"), earlier);
}

TEST_F(InterruptedRun, MayLackTheEndOfALongLineOnlyWhenItIsKilled) {
  write_long_lines();
  std::mt19937 random(7);
  std::uniform_int_distribution<int> delay(0, 20);
  for (int end = 0; end < 24; ++end) {
    const bool is_killed = end % 3 == 2;
    interrupt_after(std::chrono::milliseconds(delay(random)),
                    is_killed ? std::vector{SIGKILL} : std::vector{SIGTERM, SIGINT});
    const std::string text = folder.read("out/gauges.txt");
    ASSERT_TRUE(is_killed || text.back() == '\n');
    const std::vector<std::string> rows = lines(text.substr(0, text.rfind('\n') + 1));
    ASSERT_FALSE(rows.empty());
    for (std::size_t i = 1; i < rows.size(); ++i) {
      ASSERT_EQ(support::occurrences(rows[i], "\t"), 1 + 4 * gauges) << i << " of " << rows.size();
    }
  }
}

TEST_F(InterruptedRun, IsRepairedByTheNextRun) {
  c.write(folder);
  interrupt_after(std::chrono::milliseconds(5), {SIGKILL});
  c.set_times(0.0, 0.3);
  c.add_snapshots({0.0, 0.2});
  run_well();
  expect_whole("out/pic_0_00.txt", 801, 5);
  expect_whole("out/pic_0_20.txt", 801, 5);
  expect_whole("out/enveloppe.txt", 800, 3);
  EXPECT_FALSE(folder.has("out/enveloppe.txt.part"));
}

}  // namespace
