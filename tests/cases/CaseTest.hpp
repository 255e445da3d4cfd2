// A case, its folder, and a run of it.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "support/Case.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/run_program.hpp"
#include "support/text.hpp"

class CaseTest : public testing::Test {
 protected:
  /// Writes the case and runs it without an echo on the console.
  support::RunResult run(const support::RunOptions& options = {}) {
    c.write(folder);
    return support::run_case(folder, options);
  }
  /// A run that is expected to complete without a word on standard error.
  support::RunResult run_well() {
    support::RunResult result = run();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    return result;
  }
  /// A complete run that is expected to say one thing on standard error, a warning with this text.
  support::RunResult run_with_warning(const std::string& text) {
    support::RunResult result = run();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(support::lines(result.err).size(), 1U) << result.err;
    EXPECT_TRUE(support::starts_with(result.err, "Warning: ")) << result.err;
    EXPECT_TRUE(support::contains(result.err, text)) << result.err;
    return result;
  }
  /// A run that is expected to end with status 255 and exactly this text on standard error.
  void expect_stop(const std::string& err) {
    const support::RunResult result = run();
    EXPECT_EQ(result.status, 255);
    EXPECT_EQ(result.err, err);
  }

  /// Step of the case at rest, 1 m deep over a flat bed, s.
  double step_at_rest() const {
    const double char_length = c.size / (2.0 + std::sqrt(2.0));
    return c.data["CFL"].get<double>() * char_length / std::sqrt(9.81);
  }
  /// Adds a section that writes the time of every pass.
  void record_passes() { c.add_sections({}, 1e-9, "passes.txt"); }
  std::vector<double> pass_times() {
    std::vector<double> times;
    for (const std::string& line : support::lines(folder.read("passes.txt"))) {
      times.push_back(std::stod(line));
    }
    return times;
  }
  /// A column of a table under a header line.
  std::vector<std::string> column(const std::string& table, std::size_t index) {
    const std::vector<std::string> rows = support::lines(folder.read(table));
    std::vector<std::string> values;
    for (std::size_t i = 1; i < rows.size(); ++i) {
      values.push_back(support::split(rows[i], '\t').at(index));
    }
    return values;
  }
  /// Rain of 0.01 m/s on every cell at every step, so that the depth tells the time.
  void let_it_rain() { c.add_rain("1\n1 1 0\n0 0.01\n", c.per_cell("1")); }

  support::TemporaryFolder folder;
  support::Case c;
};

/// The log without the credits and the seconds of the wall clock, which no test prescribes.
inline std::string essence_of_log(const std::string& log) {
  std::string text;
  std::string before;
  bool in_list = false;
  for (const std::string& line : support::lines(log)) {
    if (support::starts_with(line, "=")) in_list = false;
    if (before == "Originally created by:") {
      text += "(author)\n";
    } else if (in_list && support::starts_with(line, "    ")) {
      text += "    (contributor)\n";
    } else if (support::starts_with(line, "Total execution time: ")) {
      text += "Total execution time: (some)" + line.substr(line.find(" sec. for")) + "\n";
    } else {
      text += line + "\n";
    }
    if (line == "Contributors:") in_list = true;
    before = line;
  }
  return text;
}

/// Every file of a folder and below, by name.
inline std::map<std::string, std::string> files_of(const support::TemporaryFolder& folder) {
  std::map<std::string, std::string> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.path())) {
    if (!entry.is_regular_file()) continue;
    const std::string name = std::filesystem::relative(entry.path(), folder.path()).string();
    files[name] = folder.read(name);
  }
  files["log.txt"] = essence_of_log(files["log.txt"]);
  return files;
}
