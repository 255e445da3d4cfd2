// Results that a run which was stopped has not replaced: they are of an earlier run.
#include <chrono>

#include "export/quantities.hpp"
#include "support/export_names.hpp"
#include "tools/export/ExportTest.hpp"

namespace {

class EarlierResults : public ExportTest {
 protected:
  EarlierResults() { simulate(flood_case()); }

  /// Makes the log one of a run that was killed after its set-up, some time after the results named
  /// were written and before the others.
  void kill_run_after(const std::vector<std::string>& results) {
    replace_end_of_log("");
    const auto set_up = std::filesystem::last_write_time(folder.file("log.txt"));
    for (const std::string& name : results) {
      std::filesystem::last_write_time(folder.file(name), set_up - std::chrono::minutes(1));
    }
  }
  void replace_end_of_log(const std::string& end) {
    const std::string log = folder.read("log.txt");
    const std::size_t complete = log.find("Total execution time");
    ASSERT_NE(complete, std::string::npos);
    const auto before_results = std::filesystem::last_write_time(folder.file("out/pic_0_00.txt"));
    folder.write("log.txt", log.substr(0, complete) + end);
    std::filesystem::last_write_time(folder.file("log.txt"), before_results);
  }
};

constexpr char left_out[] = "of an earlier run left out, the first of them ";

}  // namespace

TEST_F(EarlierResults, OfSnapshotsAreLeftOutAndTold) {
  kill_run_after({"out/pic_1_25.txt"});
  for (const std::string format : {"netcdf", "vtu"}) {
    const support::RunResult result = run({format, "."});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "Warning: 1 result " + std::string(left_out) +
                              "./out/pic_1_25.txt: the run of ./log.txt has not come so far; let "
                              "it go on to its end.\n");
  }
  EXPECT_EQ(read_values({"netcdf", "export/results.nc", "time"}),
            (std::vector<std::string>{"0", "0.5"}));
  EXPECT_FALSE(folder.has("export/results_0002.vtu"));
  const std::vector<std::string> late = {"--field", "depth", "--time", "1.25"};
  for (std::vector<std::string> words :
       {std::vector<std::string>{"plot", "."},
        std::vector<std::string>{"geotiff", ".", "--resolution", "1"}}) {
    words.insert(words.end(), late.begin(), late.end());
    const support::RunResult result = run(words);
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(support::contains(result.err, "those there are for 0, 0.5 s")) << result.err;
  }
}

TEST_F(EarlierResults, OfTheEnvelopeAreLeftOutAndOfTablesRefused) {
  kill_run_after({"out/enveloppe.txt", "out/gauges.txt", "sections.txt"});
  const support::RunResult result = run({"netcdf", "."});
  EXPECT_EQ(result.status, 0);
  EXPECT_TRUE(support::contains(result.err, std::string(left_out) + "./out/enveloppe.txt"));
  const nlohmann::json structure =
      nlohmann::json::parse(read_export({"netcdf-structure", "export/results.nc"}));
  EXPECT_FALSE(structure["variables"].contains("Mesh2d_max_depth"));
  EXPECT_TRUE(support::contains(run({"geotiff", ".", "--resolution", "1"}).err,
                                "out/enveloppe.txt is of an earlier run"));
  for (const std::string what : {"--gauges", "--sections"}) {
    const support::RunResult plot = run({"plot", ".", what});
    EXPECT_EQ(plot.status, 1);
    EXPECT_TRUE(support::contains(plot.err, "is older than ./log.txt: it is of an earlier run"))
        << plot.err;
  }
}

TEST_F(EarlierResults, AreThoseBeyondTheTimeThatARunReached) {
  replace_end_of_log("Simulation stopped at t = 0.6 s\nToo small dt! dt = 1e-9 s\n");
  EXPECT_TRUE(
      support::contains(run({"netcdf", "."}).err, std::string(left_out) + "./out/pic_1_25.txt"));
  EXPECT_EQ(read_values({"netcdf", "export/results.nc", "time"}),
            (std::vector<std::string>{"0", "0.5"}));
}

TEST_F(EarlierResults, AreNoneOfThoseThatAnInterruptedRunWroteItself) {
  replace_end_of_log(
      "Simulation interrupted at t = 2.1 s\nTotal execution time: 1 sec. for 2 sec. of "
      "simulation.\n");
  run_well({"netcdf", "."});
  run_well({"csv", "."});
}

TEST_F(EarlierResults, AreNotSoughtWhereTheRunIsCompleteOrAnother) {
  const auto long_ago =
      std::filesystem::last_write_time(folder.file("log.txt")) - std::chrono::hours(1);
  for (const char* name : {"out/pic_0_00.txt", "out/enveloppe.txt", "out/gauges.txt"}) {
    std::filesystem::last_write_time(folder.file(name), long_ago);
  }
  run_well({"netcdf", "."});
  run_well({"csv", "."});
  replace_end_of_log("");
  std::string log = folder.read("log.txt");
  log.replace(log.find("River with everything"), 5, "Brook");
  folder.write("log.txt", log);
  run_well({"netcdf", "."});
}

TEST(ExportNames, AreKnownForEveryFieldAndFormat) {
  for (const std::string& field : exports::map_field_names()) {
    for (const std::string ending : {".tif", "_0.5s.tif", ".png", "_600s.svg", "_1e-05s.pdf"}) {
      EXPECT_TRUE(tools::is_export_name(field + ending)) << field << ending;
    }
    EXPECT_TRUE(tools::is_export_name("pictures/" + field + "_600s.png"));
  }
  for (const char* name :
       {"results.nc", "results.pvd", "results_0000.vtu", "results_envelope.vtu",
        "results_maxima.vtu", "gauges.csv", "gauge_points.csv", "sections.csv", "maxima.csv",
        "gauges.png", "pictures/sections.svg", "report.html", "results.nc.part"}) {
    EXPECT_TRUE(tools::is_export_name(name)) << name;
  }
  for (const char* name :
       {"my.nc", "depth.txt", "notes.png", "results.xlsx", "depth_old.png", "pictures/results.nc",
        "other/depth.png", "results_1.vtu", "notes.html"}) {
    EXPECT_FALSE(tools::is_export_name(name)) << name;
  }
}
