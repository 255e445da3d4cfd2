// The file of results that a run writes as it goes, read back with netCDF4 for Python and compared
// with the text snapshots and with what the export makes of them.
#include <algorithm>
#include <csignal>
#include <random>
#include <thread>

#include "support/left_behind.hpp"
#include "tools/export/ExportTest.hpp"

namespace {

using nlohmann::json;

class Results : public ExportTest {
 protected:
  static support::Case with_results(support::Case c, const std::string& precision = "single") {
    c.data["output"]["results"] = "results.nc";
    c.data["output"]["results precision"] = precision;
    c.data["output"]["maxima of flow"] = {{"file", "maxima.txt"}};
    c.data["crs"] = "EPSG:32632";
    c.data["epoch"] = "2026-05-01T06:00:00Z";
    return c;
  }
  std::vector<std::string> values(const std::string& variable, const std::string& record = "") {
    if (record.empty()) return read_values({"netcdf", file, variable});
    return read_values({"netcdf", file, variable, record});
  }
  json structure_of(const std::string& name) {
    return json::parse(read_export({"netcdf-structure", name}));
  }
  const std::string file = "out/results.nc";
};

/// A run that writes many snapshots, without an envelope but for the first.
support::Case busy_case(double end) {
  support::Case c;
  c.nx = c.ny = 30;
  c.initial = [](double x, double) { return support::InitialState{x < 4.0 ? 2.0 : 1.0}; };
  c.set_times(0.0, end);
  c.data["output"]["time step enveloppe of results"] = 1e9;
  c.data["output"]["results"] = "results.nc";
  c.data["output"]["results times"] = "times.txt";
  std::string times = "300";
  for (int i = 0; i < 300; ++i) times += " " + support::exact(0.05 * i);
  c.files["times.txt"] = times;
  return c;
}

}  // namespace

TEST_F(Results, HoldTheNumbersOfTheSnapshots) {
  simulate(with_results(flood_case(), "double"));
  EXPECT_EQ(values("time"), (std::vector<std::string>{"0", "0.5", "1.25"}));
  for (const auto& [record, table] :
       {std::pair{"0", "out/pic_0_00.txt"}, {"1", "out/pic_0_50.txt"}, {"2", "out/pic_1_25.txt"}}) {
    EXPECT_EQ(values("Mesh2d_depth", record), column(table, 3, true));
    EXPECT_EQ(values("Mesh2d_unit_discharge_x", record), column(table, 4, true));
    EXPECT_EQ(values("Mesh2d_unit_discharge_y", record), column(table, 5, true));
    EXPECT_EQ(values("Mesh2d_infiltrated_depth", record), column(table, 6, true));
  }
  EXPECT_EQ(values("Mesh2d_peak_depth"), column("out/maxima.txt", 3, true));
  EXPECT_EQ(values("Mesh2d_time_under_water"), column("out/maxima.txt", 10, true));
}

TEST_F(Results, InSinglePrecisionAreTheRoundedOnes) {
  simulate(with_results(flood_case()));
  EXPECT_EQ(structure_of(file)["variables"]["Mesh2d_depth"]["type"], "float32");
  const auto single = values("Mesh2d_depth", "2");
  simulate(with_results(flood_case(), "double"));
  EXPECT_EQ(structure_of(file)["variables"]["Mesh2d_depth"]["type"], "float64");
  const auto exact = values("Mesh2d_depth", "2");
  ASSERT_EQ(single.size(), exact.size());
  for (std::size_t i = 0; i < single.size(); ++i) {
    EXPECT_NEAR(std::stod(single[i]), std::stod(exact[i]), 2e-6 * std::stod(exact[i]));
  }
}

TEST_F(Results, HoldTheNumbersOfTheSnapshotsOverSand) {
  simulate(with_results(sand_case(), "double"));
  const std::string table = "out/pic_0_25.txt";
  EXPECT_EQ(values("Mesh2d_bed", "1"), column(table, 2, true));
  EXPECT_EQ(values("Mesh2d_depth", "1"), column(table, 3, true));
  EXPECT_EQ(values("Mesh2d_sediment_thickness", "1"), column(table, 6, true));
  EXPECT_EQ(values("Mesh2d_bed_load_x", "1"), column(table, 7, true));
}

TEST_F(Results, AreWhatTheExportWrites) {
  for (const support::Case& c : {flood_case(), sand_case()}) {
    simulate(with_results(c));
    run_well({"netcdf", "."});
    json ours = structure_of(file), exported = structure_of("export/results.nc");
    json& crs = exported["variables"]["crs"]["attributes"];
    EXPECT_EQ(crs["EPSG_code"], "EPSG:32632");
    crs = ours["variables"]["crs"]["attributes"];  // the run knows the code alone
    EXPECT_EQ(ours, exported);
    EXPECT_EQ(ours["variables"]["time"]["attributes"]["units"],
              "seconds since 2026-05-01 06:00:00");
    for (const char* variable : {"Mesh2d_node_x", "Mesh2d_node_y", "Mesh2d_node_z", "Mesh2d_face_x",
                                 "Mesh2d_face_y", "Mesh2d_face_nodes"}) {
      EXPECT_EQ(values(variable), read_values({"netcdf", "export/results.nc", variable}))
          << variable;
    }
    for (const char* variable : {"Mesh2d_level", "Mesh2d_velocity_x", "Mesh2d_velocity_y"}) {
      const auto of_run = values(variable, "1");
      const auto of_export = read_values({"netcdf", "export/results.nc", variable, "1"});
      ASSERT_EQ(of_run.size(), of_export.size());
      for (std::size_t i = 0; i < of_run.size(); ++i) {
        ASSERT_EQ(of_run[i] == "nan", of_export[i] == "nan") << variable << " of cell " << i;
        if (of_run[i] == "nan") continue;
        EXPECT_NEAR(std::stod(of_run[i]), std::stod(of_export[i]),
                    2e-5 * std::fabs(std::stod(of_run[i])) + 1e-4);
      }
    }
  }
}

TEST_F(Results, AddTheOriginOfTheMesh) {
  support::Case c = with_results(flood_case(), "double");
  c.data["mesh"]["origin"] = {1000.0, -2000.0};
  simulate(c);
  EXPECT_EQ(values("Mesh2d_node_x")[0], six_digits(613000.0));
  EXPECT_EQ(values("Mesh2d_node_y")[0], six_digits(5233000.0));
}

TEST_F(Results, LeaveTheOtherFilesAsTheyAre) {
  simulate(flood_case());
  const std::string snapshot = folder.read("out/pic_1_25.txt");
  const std::string envelope = folder.read("out/enveloppe.txt");
  simulate(with_results(flood_case()));
  EXPECT_EQ(folder.read("out/pic_1_25.txt"), snapshot);
  EXPECT_EQ(folder.read("out/enveloppe.txt"), envelope);
}

TEST_F(Results, AreTheSameBytesOnEitherPath) {
  simulate(with_results(flood_case()));
  const std::string on_tables = folder.read(file);
  setenv("QUILLMERE_ENGINE", "objects", 1);
  simulate(with_results(flood_case()));
  unsetenv("QUILLMERE_ENGINE");
  EXPECT_EQ(folder.read(file), on_tables);
}

TEST_F(Results, CanBeReadWhileTheRunGoesOn) {
  busy_case(1e6).write(folder);
  support::RunningProgram program(folder.path(), {"-f", "data.json", "-nodisplay"});
  ASSERT_TRUE(support::comes_true([&] { return folder.has(file); }));
  int seen = 0;
  for (int i = 0; i < 5; ++i) {
    const int count = structure_of(file)["dimensions"]["time"];
    EXPECT_GE(count, seen);
    seen = count;
    const auto depth = values("Mesh2d_depth", std::to_string(count - 1));
    EXPECT_EQ(std::count(depth.begin(), depth.end(), "nan"), 0);
    EXPECT_EQ(std::count(depth.begin(), depth.end(), "0"), 0);
  }
  EXPECT_GT(seen, 0);
  EXPECT_EQ(values("Mesh2d_max_depth")[0], "nan");  // which comes at the end
  EXPECT_TRUE(program.is_running());
  program.send(SIGINT);
  EXPECT_EQ(program.wait().status, 130);
  const auto largest = values("Mesh2d_max_depth");
  EXPECT_EQ(std::count(largest.begin(), largest.end(), "nan"), 0);
}

TEST_F(Results, OfARunThatIsKilledAnywhereAreThoseOfTheRunUpToThere) {
  busy_case(15.0).write(folder);
  const auto begin = std::chrono::steady_clock::now();
  ASSERT_EQ(support::run_case(folder).status, 0);
  const std::chrono::duration<double> duration = std::chrono::steady_clock::now() - begin;
  std::filesystem::rename(folder.file(file), folder.file("whole.nc"));
  std::mt19937 random(7);
  std::vector<std::string> words = {"netcdf-beginnings", "whole.nc"};
  for (int i = 0; i < 25; ++i) {
    support::RunningProgram program(folder.path(), {"-f", "data.json", "-nodisplay"});
    std::this_thread::sleep_for(duration * (static_cast<double>(random() % 1000) / 1000.0));
    program.send(SIGKILL);
    program.wait();
    if (!folder.has(file)) continue;
    words.push_back("killed_" + std::to_string(i) + ".nc");
    std::filesystem::rename(folder.file(file), folder.file(words.back()));
  }
  ASSERT_GT(words.size(), 10U);
  const std::vector<std::string> counts = read_values(words);
  ASSERT_EQ(counts.size(), words.size() - 2);
  for (const std::string& count : counts) EXPECT_GE(std::stoi(count), 1);
}
