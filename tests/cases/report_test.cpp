// "--report": what a run did, as JSON.
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <csignal>

#include "cases/ReportTest.hpp"

namespace {

using nlohmann::json;
using support::RunResult;
using Report = ReportTest;

/// The parts that may differ between paths, numbers of threads, and runs.
json without_machine(json report) {
  report.erase("wall_time");
  report.erase("execution");
  return report;
}

std::map<std::string, std::string> results(const support::TemporaryFolder& folder) {
  auto files = files_of(folder);
  files.erase("report.json");
  return files;
}

support::Case sand_case(int nx, int ny) {
  support::Case c;
  c.nx = nx;
  c.ny = ny;
  c.west = "-3 -0.8";
  c.east = "-2";
  lay_sand(c, "0.0005");
  c.add_friction(c.per_cell("0.03"));
  c.initial = [](double x, double) { return support::InitialState{x < 2.0 ? 1.2 : 0.6}; };
  return c;
}

TEST_F(Report, ClosesTheBooksOfWater) {
  c.west = "-3 -0.1";
  c.east = "-2";
  c.set_times(0.0, 5.0);
  c.add_rain("1\n1 2 1\n0 0.001 2 0.002\n", c.per_cell("1"));
  c.add_infiltration("1\n1 Horton 0.001 0.0005 1 10 0.01\n", c.per_cell("1"));
  on_every_path([&] {
    const RunResult result = run_with_report();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    const json all = report();
    const json& water = all["water"];
    EXPECT_NEAR(water["initial_m3"], 12.0, 1e-12);
    // Every step but the last one set lets in 0.1 m2/s over 3 m; the clock leaves out the first.
    const json& steps = all["steps"];
    const double span =
        all["time"]["reached_s"].get<double>() + step_at_rest() - steps["last_s"].get<double>();
    EXPECT_NEAR(water["boundaries"]["discharge"]["in_m3"], 0.3 * span, 1e-9);
    EXPECT_GT(water["rain_m3"].get<double>(), 0.01);
    EXPECT_GT(water["infiltrated_m3"].get<double>(), 0.01);
    EXPECT_GT(water["boundaries"]["transmissive"]["out_m3"].get<double>(), 0.01);
    EXPECT_LT(std::abs(water["relative_error"].get<double>()), 1e-14);
    EXPECT_FALSE(all.contains("sediment"));
  });
}

TEST_F(Report, ClosesTheBooksOfSediment) {
  c = sand_case(8, 3);
  c.set_times(0.0, 2.0);
  on_every_path([&] {
    EXPECT_EQ(run_with_report().status, 0);
    const json sediment = report()["sediment"];
    EXPECT_NEAR(sediment["initial_m3"], 0.0005 * 24.0, 1e-14);
    EXPECT_GT(sediment["created_by_clamps_m3"].get<double>(), 0.0);
    EXPECT_GT(sediment["boundaries"]["transmissive"]["out_m3"].get<double>(), 0.0);
    EXPECT_NEAR(sediment["final_m3"].get<double>() - sediment["initial_m3"].get<double>(),
                sediment["created_by_clamps_m3"].get<double>() -
                    sediment["boundaries"]["transmissive"]["out_m3"].get<double>(),
                1e-15);
    EXPECT_LT(std::abs(sediment["relative_error"].get<double>()), 1e-13);
  });
}

TEST_F(Report, SaysHowTheRunWentAndEnded) {
  c.set_times(0.0, 2.0);
  on_every_path([&] {
    EXPECT_EQ(run_with_report().status, 0);
    const json all = report();
    EXPECT_EQ(all["data_file"], "data.json");
    EXPECT_EQ(all["outcome"]["status"], "complete");
    EXPECT_EQ(all["outcome"]["reason"], "the end time was reached");
    EXPECT_EQ(all["outcome"]["exit_status"], 0);
    EXPECT_EQ(all["execution"]["path"], getenv("QUILLMERE_ENGINE"));
    EXPECT_EQ(all["execution"]["threads"], 1);  // 24 cells need no more
    EXPECT_EQ(all["execution"]["cells"], 24);
    const int needed = static_cast<int>(std::ceil(2.0 / step_at_rest()));
    EXPECT_EQ(all["steps"]["computed"], needed);
    EXPECT_NEAR(all["time"]["reached_s"], needed * step_at_rest(), 1e-12);
    for (const char* const step : {"mean_s", "largest_s", "last_s"}) {
      EXPECT_NEAR(all["steps"][step], step_at_rest(), 1e-14);
    }
    EXPECT_NEAR(all["steps"]["smallest"]["step_s"], step_at_rest(), 1e-14);
    const json& course = all["steps"]["course"];
    ASSERT_EQ(course["from_s"].size(), all["steps"]["set"].get<std::size_t>());
    EXPECT_EQ(course["from_s"][0], 0.0);
    EXPECT_NEAR(course["from_s"][1], step_at_rest(), 1e-14);
    EXPECT_EQ(course["smallest_s"], course["largest_s"]);
    EXPECT_NEAR(course["largest_s"][1], step_at_rest(), 1e-14);
    double total = 0.0;
    for (const char* const phase : {"set_up_s", "steps_s", "outputs_s"}) {
      EXPECT_GE(all["wall_time"][phase].get<double>(), 0.0);
      total += all["wall_time"][phase].get<double>();
    }
    EXPECT_NEAR(all["wall_time"]["total_s"], total, 1e-12);
    EXPECT_EQ(all["not_a_number"]["cells_at_end"], 0);
    EXPECT_FALSE(all["not_a_number"].contains("first_seen_at_s"));
    EXPECT_FALSE(all.contains("failure"));
  });
}

TEST_F(Report, NamesTheCellThatSetTheSteps) {
  const int deep = c.upper(2, 1);
  const support::Point centre = c.center(deep);
  c.initial = [centre](double x, double y) {
    return support::InitialState{x == centre.x && y == centre.y ? 4.0 : 1.0};
  };
  c.set_times(0.0, 0.001);
  on_every_path([&] {
    EXPECT_EQ(run_with_report().status, 0);
    const json counted = report()["steps"];
    const json& smallest = counted["smallest"];
    EXPECT_EQ(smallest["cell"], deep);
    EXPECT_NEAR(smallest["centre_m"][0], centre.x, 1e-12);
    EXPECT_NEAR(smallest["centre_m"][1], centre.y, 1e-12);
    EXPECT_EQ(smallest["set_by"], "wave");
    EXPECT_NEAR(smallest["depth_m"], 4.0, 1e-12);
    EXPECT_EQ(smallest["velocity_m_per_s"], 0.0);
    EXPECT_NEAR(smallest["length_m"], 1.0 / (2.0 + std::sqrt(2.0)), 1e-14);
    EXPECT_NEAR(smallest["step_s"], step_at_rest() / 2.0, 1e-14);
    EXPECT_EQ(smallest["time_s"], 0.0);
    long steps = 0, by_deep = 0;
    for (const json& cell : counted["set_most_often_by"]) {
      steps += cell["steps"].get<long>();
      by_deep += cell["cell"] == deep ? cell["steps"].get<long>() : 0;
    }
    EXPECT_GE(by_deep, 1);
    EXPECT_EQ(steps, counted["computed"].get<long>() + 1);
  });
}

TEST_F(Report, SaysWhereAndWhenTheFlowWasFastest) {
  // One cell moves at 5 m/s, a shallower one at 4 m/s; both push the still water around them.
  const support::Point fast = c.center(c.upper(2, 1)), shallow = c.center(c.lower(0, 0));
  c.initial = [&](double x, double y) {
    if (x == fast.x && y == fast.y) return support::InitialState{1.0, 3.0, -4.0};
    if (x == shallow.x && y == shallow.y) return support::InitialState{0.25, 1.0, 0.0};
    return support::InitialState{1.0};
  };
  c.set_times(0.0, 1.0);
  on_every_path([&] {
    EXPECT_EQ(run_with_report().status, 0);
    const json velocity = report()["velocity"];
    EXPECT_NEAR(velocity["largest"]["m_per_s"], 5.0, 1e-14);
    EXPECT_EQ(velocity["largest"]["cell"], c.upper(2, 1));
    EXPECT_EQ(velocity["largest"]["time_s"], 0.0);
    EXPECT_NEAR(velocity["largest"]["depth_m"], 1.0, 1e-14);
    EXPECT_NEAR(velocity["largest_froude"]["froude_number"], 4.0 / std::sqrt(9.81 * 0.25), 1e-14);
    EXPECT_EQ(velocity["largest_froude"]["cell"], c.lower(0, 0));
  });
}

TEST_F(Report, OfADryDomainNamesTheSmallestCell) {
  // A node that is moved halves a triangle: 2 area / perimeter is 0.17 m instead of 0.29 m.
  std::vector<std::string> nodes = support::lines(c.nodes_text());
  nodes.at(2) = "0.5 0 0";
  for (const std::string& line : nodes) c.files["nodes.txt"] += line + "\n";
  c.initial = [](double, double) { return support::InitialState{-1.0}; };
  c.set_times(0.0, 0.1);
  on_every_path([&] {
    EXPECT_EQ(run_with_report().status, 0);
    const json all = report();
    const json& smallest = all["steps"]["smallest"];
    EXPECT_TRUE(support::starts_with(smallest["set_by"], "dry cells"));
    EXPECT_EQ(smallest["cell"], c.lower(0, 0));
    EXPECT_FALSE(smallest.contains("velocity_m_per_s"));
    EXPECT_EQ(all["steps"]["set_by_dry_cells"], all["steps"]["computed"].get<long>() + 1);
    EXPECT_TRUE(all["steps"]["set_most_often_by"].empty());
    EXPECT_EQ(all["velocity"]["largest"], nullptr);
    EXPECT_EQ(all["water"]["final_m3"], 0.0);
    EXPECT_EQ(all["water"]["relative_error"], 0.0);
  });
}

TEST_F(Report, IsTheSameOnEveryPathAndNumberOfThreads) {
  for (const bool has_sand : {false, true}) {
    c = has_sand ? sand_case(113, 65) : support::full_case(113, 65);
    c.set_times(0.0, 0.3);
    setenv("QUILLMERE_ENGINE", "objects", 1);
    EXPECT_EQ(run_with_report().status, 0);
    const json of_objects = report();
    setenv("QUILLMERE_DEVICE", "emulated", 1);
    for (const char* const path : {"tables", "device"}) {
      setenv("QUILLMERE_ENGINE", path, 1);
      for (int threads = 1; threads <= 3; ++threads) {
        setenv("OMP_NUM_THREADS", std::to_string(threads).c_str(), 1);
        EXPECT_EQ(run_with_report().status, 0);
        const json of_tables = report();
        EXPECT_EQ(of_tables["execution"]["path"], path);
        EXPECT_EQ(of_tables["execution"]["threads"], threads);
        EXPECT_EQ(without_machine(of_tables), without_machine(of_objects))
            << json::diff(without_machine(of_objects), without_machine(of_tables));
      }
    }
    unsetenv("QUILLMERE_DEVICE");
    unsetenv("OMP_NUM_THREADS");
    unsetenv("QUILLMERE_ENGINE");
    EXPECT_GT(of_objects["steps"]["computed"].get<int>(), 5);
  }
}

TEST_F(Report, ChangesNoResult) {
  for (const bool has_sand : {false, true}) {
    c = has_sand ? sand_case(12, 5) : support::full_case();
    on_every_path([&] {
      c.write(folder);
      const RunResult plain = support::run_case(folder);
      const auto files = results(folder);
      const RunResult reported = run_with_report();
      EXPECT_EQ(reported.status, plain.status);
      EXPECT_EQ(reported.out, plain.out);
      EXPECT_EQ(reported.err, plain.err);
      EXPECT_EQ(results(folder), files);
      EXPECT_GT(files.count("out/enveloppe.txt"), 0U);
    });
  }
}

TEST_F(Report, ListsKeysReadDefaultedAndIgnored) {
  c.data["output"]["gaugs"] = "points.txt";
  c.data["friction"] = "friction.txt";
  c.data["nonsense beyond recognition"] = 1;
  EXPECT_EQ(run_with_report().status, 0);
  const json keys = report()["keys"];
  const json ignored = {{{"key", "friction"}, {"nearest_known_key", "model/conditions/friction"}},
                        {{"key", "nonsense beyond recognition"}, {"nearest_known_key", nullptr}},
                        {{"key", "output/gaugs"}, {"nearest_known_key", "output/gauges"}}};
  EXPECT_EQ(keys["ignored"], ignored);
  EXPECT_TRUE(keys["unused"].empty());
  EXPECT_EQ(keys["defaulted"]["output/gauges"], "no gauges");
  EXPECT_FALSE(keys["defaulted"].contains("mesh/nodes"));
  const auto& read = keys["read"];
  for (const char* const key : {"CFL", "mesh/nodes", "model/conditions/initial conditions"}) {
    EXPECT_EQ(std::count(read.begin(), read.end(), key), 1) << key;
  }
}

TEST_F(Report, IsWrittenWhenTheSetUpFails) {
  c.data["T0"] = c.data["t0"];
  c.data.erase("t0");
  EXPECT_EQ(run_with_report().status, 255);
  json all = report();
  EXPECT_EQ(all["outcome"]["status"], "failed");
  EXPECT_EQ(all["outcome"]["exit_status"], 255);
  EXPECT_EQ(all["outcome"]["reason"],
            "Error. The following key couldn't be found in the datafile: t0");
  const json ignored = {{{"key", "T0"}, {"nearest_known_key", "t0"}}};
  EXPECT_EQ(all["keys"]["ignored"], ignored);
  EXPECT_EQ(all["keys"]["read"], json{"name"});  // the run got no further
  EXPECT_EQ(all["keys"]["unused"], (json{"CFL", "mesh", "model", "output", "tend"}));
  EXPECT_FALSE(all.contains("steps"));

  c = {};
  std::vector<std::string> nodes = support::lines(c.nodes_text());
  nodes.at(1) = "0 0 zero";
  for (const std::string& line : nodes) c.files["nodes.txt"] += line + "\n";
  EXPECT_EQ(run_with_report().status, 255);
  all = report();
  EXPECT_TRUE(support::contains(all["outcome"]["reason"], "found \"zero\", expected"))
      << all["outcome"];
  EXPECT_FALSE(all["keys"]["read"].empty());

  c = {};
  c.add_rain("1\n1 1 1\n0 0.001\n", c.per_cell("2"));  // an unknown ID
  EXPECT_EQ(run_with_report().status, 1);
  EXPECT_EQ(report()["outcome"]["status"], "failed");
  EXPECT_EQ(report()["outcome"]["exit_status"], 1);
}

TEST_F(Report, NeedsTheNameOfAFileThatCanBeMade) {
  c.write(folder);
  RunResult result = support::run_program(folder.path(), {"--report", "-f", "data.json"});
  EXPECT_EQ(result.status, 255);
  EXPECT_EQ(result.err, "Error. --report needs the name of a file.\n");
  result = support::run_program(folder.path(), {"-f", "data.json", "--report", "no/report.json"});
  EXPECT_EQ(result.status, 255);
  EXPECT_TRUE(support::contains(result.err, "its folder does not exist")) << result.err;
  result = support::run_program(folder.path(), {"-f", "data.json", "--report", "out"});
  EXPECT_EQ(result.status, 255);
  EXPECT_TRUE(support::contains(result.err, "it is a folder")) << result.err;
  for (const std::string input : {"nodes.txt", "data.json"}) {
    const std::string text = folder.read(input);
    result = support::run_program(folder.path(), {"-f", "data.json", "--report", input});
    EXPECT_EQ(result.status, 255);
    EXPECT_TRUE(support::contains(result.err, "would replace an input file")) << result.err;
    EXPECT_EQ(folder.read(input), text);
  }
}

TEST_F(Report, SaysThatASignalEndedTheRun) {
  c.west = "-3 -0.1";
  c.set_times(0.0, 1e6);
  record_passes();
  for (const int signal : {SIGINT, SIGTERM}) {
    c.write(folder);
    std::filesystem::remove(folder.file("passes.txt"));
    support::RunningProgram program(folder.path(),
                                    {"-f", "data.json", "-nodisplay", "--report", "report.json"});
    for (int i = 0; i < 60000 && support::lines(folder.read("passes.txt")).size() < 50; ++i) {
      usleep(1000);
    }
    program.send(signal);
    EXPECT_EQ(program.wait().status, 128 + signal);
    const json all = report();
    EXPECT_EQ(all["outcome"]["status"], "interrupted");
    EXPECT_EQ(all["outcome"]["exit_status"], 128 + signal);
    EXPECT_TRUE(
        support::contains(all["outcome"]["reason"], "signal " + std::to_string(signal) + " ("));
    EXPECT_LT(all["time"]["reached_s"].get<double>(), 1e6);
    EXPECT_LT(std::abs(all["water"]["relative_error"].get<double>()), 1e-12);
  }
}

}  // namespace
