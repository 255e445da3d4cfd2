// A case that the simulator has run, exports of it, and what independent readers find in them.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/Case.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/run_program.hpp"
#include "support/text.hpp"

class ExportTest : public testing::Test {
 protected:
  /// Writes the case and runs it.
  void simulate(const support::Case& c) {
    c.write(folder);
    ASSERT_EQ(support::run_case(folder).status, 0);
  }
  /// Runs quillmere-export in the case's folder.
  support::RunResult run(const std::vector<std::string>& arguments) {
    support::RunOptions options;
    options.program = QUILLMERE_EXPORT_PROGRAM;
    return support::run_program(folder.path(), arguments, options);
  }
  /// A run that is expected to write nothing but the names of its files.
  support::RunResult run_well(const std::vector<std::string>& arguments) {
    support::RunResult result = run(arguments);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, "");
    return result;
  }
  /// What the reader of exports prints.
  std::string read_export(const std::vector<std::string>& arguments) {
    std::vector<std::string> words = {QUILLMERE_SOURCE_DIR "/tests/tools/export/read_export.py"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    support::RunOptions options;
    options.program = QUILLMERE_PYTHON;
    const support::RunResult result = support::run_program(folder.path(), words, options);
    EXPECT_EQ(result.status, 0) << result.err;
    return result.out;
  }
  std::vector<std::string> read_values(const std::vector<std::string>& arguments) {
    return support::lines(read_export(arguments));
  }
  /// A column of a result table, with or without a header line.
  std::vector<std::string> column(const std::string& table, std::size_t index, bool has_header) {
    std::vector<std::string> values;
    const std::vector<std::string> rows = support::lines(folder.read(table));
    for (std::size_t i = has_header ? 1 : 0; i < rows.size(); ++i) {
      values.push_back(support::split(rows[i], '\t').at(index));
    }
    return values;
  }

  support::TemporaryFolder folder;
};

/// A dam break over a bed of its own that falls dry and wets again, in projected coordinates; every
/// output, infiltration, and cells whose nodes run clockwise.
inline support::Case flood_case() {
  support::Case c = support::full_case(6, 3);
  c.x0 = 612000.0;
  c.y0 = 5235000.0;
  c.clockwise = true;
  c.bed = [](double x, double) { return 100.0 + 0.1 * (x - 612000.0); };
  std::string bed;
  for (int cell = 0; cell < c.n_cells(); ++cell) {
    bed += support::exact(101.0 + 0.25 * std::fmod(c.center(cell).x - 612000.0, 3.0)) + "\n";
  }
  c.add_fixed_bed(bed);
  c.initial = [](double x, double) { return support::InitialState{x < 612003.0 ? 101.6 : 100.0}; };
  c.files["level.txt"] = "2\n0 101.2\n10 101.2\n";
  c.add_gauges({{612000.35, 5235000.55}, {612005.2, 5235002.45}, {0.0, 0.0}}, 0.5);
  return c;
}

/// A dam break over sand.
inline support::Case sand_case() {
  support::Case c;
  c.nx = 8;
  c.data["name"] = "Dam break over sand";
  c.initial = [](double x, double) { return support::InitialState{x < 4.0 ? 2.0 : 1.0}; };
  c.set_times(0.0, 0.5);
  c.data["model"]["name"] = "Bramsett";
  c.data["model"]["conditions"]["initial sediments level"] = "layer.txt";
  c.files["layer.txt"] = c.per_cell("0.5");
  c.data["model"]["parameters"] = {{"sediments mean grain diameter", 0.001},
                                   {"sediments density", 2.65},
                                   {"sediments friction coefficient", 0.03},
                                   {"sediments porosity", 0.4}};
  c.add_friction(c.per_cell("0.03"));
  c.add_snapshots({0.0, 0.25});
  return c;
}

/// A number as a result table shows it.
inline std::string six_digits(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.6g", value);
  return text;
}
