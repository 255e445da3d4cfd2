// What lies below zero is dry, in every export and plot, and its volume is told.
#include "export/below_zero.hpp"

#include "tools/export/ExportTest.hpp"

namespace {

class BelowZero : public ExportTest {
 protected:
  BelowZero() {
    simulate(flood_case());
    set("out/pic_1_25.txt", wet_cell(), 3, "-0.25");
    set("out/pic_1_25.txt", wet_cell() + 1, 3, "-1e-10");  // rounding
    set("out/enveloppe.txt", 5, 3, "-0.5");
  }
  static std::size_t wet_cell() { return 3; }

  /// Replaces a value of a table, whose rows are counted below the header if it has one.
  void set(const std::string& table, std::size_t row, std::size_t column,
           const std::string& value) {
    std::vector<std::string> lines = support::lines(folder.read(table));
    if (lines.front().find('x') != std::string::npos || support::contains(lines.front(), "time")) {
      ++row;
    }
    std::vector<std::string> words = support::split(lines.at(row), '\t');
    words.at(column) = value;
    std::string text;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      if (i == row) {
        lines[i].clear();
        for (std::size_t k = 0; k < words.size(); ++k) lines[i] += (k > 0 ? "\t" : "") + words[k];
      }
      text += lines[i] + "\n";
    }
    folder.write(table, text);
  }
  std::vector<std::string> expect_told(const std::vector<std::string>& words,
                                       const std::string& told) {
    const support::RunResult result = run(words);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, told) << words.front();
    return support::lines(result.out);
  }
};

/// Cells of 0.5 m2.
const std::string of_snapshots =
    "Warning: depths below zero count as dry: 0.125 m3 are missing in 1 cell, most of all times at "
    "1.25 s.\n";
const std::string of_envelope =
    "Warning: depths below zero count as dry: 0.25 m3 are missing in 1 cell that never were "
    "deeper.\n";

}  // namespace

TEST_F(BelowZero, DepthsAreZeroInNetcdfAndToldOnce) {
  expect_told({"netcdf", "."}, of_snapshots);
  const auto depth = read_values({"netcdf", "export/results.nc", "Mesh2d_depth", "2"});
  const auto level = read_values({"netcdf", "export/results.nc", "Mesh2d_level", "2"});
  EXPECT_EQ(depth[wet_cell()], "0");
  EXPECT_EQ(depth[wet_cell() + 1], "0");
  EXPECT_EQ(level[wet_cell()], "nan");
  EXPECT_EQ(read_values({"netcdf", "export/results.nc", "Mesh2d_max_depth"})[5], "0");
}

TEST_F(BelowZero, DepthsAreZeroInVtuAndToldOnce) {
  set("out/enveloppe.txt", 5, 3, "0.5");
  expect_told({"vtu", "."}, of_snapshots);
  const auto depth = read_values({"vtu", "export/results_0002.vtu", "depth"});
  EXPECT_EQ(depth[wet_cell()], "0");
  set("out/enveloppe.txt", 5, 3, "-0.5");
  expect_told({"vtu", "."}, of_envelope);  // most is missing there
}

TEST_F(BelowZero, DepthsAreNoDataInGeotiffAndDryOnMapsAndTold) {
  const std::vector<std::string> late = {"--field", "depth", "--time", "1.25"};
  for (std::vector<std::string> words : std::vector<std::vector<std::string>>{
           {"geotiff", ".", "--resolution", "0.1"}, {"plot", ".", "--threshold", "-1"}}) {
    expect_told(words, of_envelope);
    words.insert(words.end(), late.begin(), late.end());
    const std::string file = expect_told(words, of_snapshots).at(0);
    if (words[0] != "geotiff") continue;
    const auto raster = nlohmann::json::parse(read_export({"geotiff", file}));
    for (const auto& row : raster["values"]) {
      for (const double value : row) EXPECT_TRUE(value >= 0.0 || value == -9999.0) << value;
    }
  }
}

TEST_F(BelowZero, DepthsOfGaugesAreZeroInTablesAndCurvesAndTold) {
  set("out/gauges.txt", 1, 1, "-0.03");
  set("out/gauges.txt", 2, 1, "-0.04");
  set("out/gauges.txt", 3, 1, "-1e-12");
  const std::string told =
      "Warning: depths below zero count as dry: 2 recordings of gauges, the lowest -0.04 m, of "
      "gauge 1 at 1 s.\n";
  expect_told({"csv", "."}, told);
  const auto rows = support::lines(folder.read("export/gauges.csv"));
  for (std::size_t row = 2; row <= 4; ++row) {
    EXPECT_EQ(support::split(rows.at(row), ',').at(1), "0") << rows[row];
  }
  expect_told({"plot", ".", "--gauges"}, told);
}

TEST_F(BelowZero, NothingIsToldOfRounding) {
  simulate(flood_case());
  set("out/pic_1_25.txt", wet_cell(), 3, "-1e-10");
  run_well({"netcdf", "."});
  EXPECT_EQ(read_values({"netcdf", "export/results.nc", "Mesh2d_depth", "2"})[wet_cell()], "0");
}
