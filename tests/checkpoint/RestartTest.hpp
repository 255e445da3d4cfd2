// Runs that are stopped anywhere and go on, in this process, and cases of everything for them.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <random>

#include "cases/CaseTest.hpp"
#include "cases/ReportTest.hpp"
#include "domain/Domain.hpp"
#include "report/RunReport.hpp"
#include "support/QuietRun.hpp"

namespace test_restart {

namespace fs = std::filesystem;
using support::Case;

/// Both files of a checkpoint, and what tells calls of the program apart, left out.
inline std::map<std::string, std::string> results_of(const support::TemporaryFolder& folder) {
  std::map<std::string, std::string> files = files_of(folder);
  for (const char* const name : {"log.txt", "kept.a", "kept.b"}) files.erase(name);
  nlohmann::json report = nlohmann::json::parse(files.at("report.json"));
  report.erase("wall_time");
  report.erase("execution");
  files.at("report.json") = report.dump(1);
  return files;
}

class Restart : public testing::Test {
 protected:
  ~Restart() override { fs::current_path(start_); }

  /// What a call of the program runs on.
  fields::FlowRequest any_machine() {
    fields::FlowRequest request;
    switch (random_() % 4) {
      case 0:
        request.path = "objects";
        break;
      case 1:
        request.instruction_set = "baseline";
        break;
      default:
        break;
    }
    request.most_threads = 1 + static_cast<int>(random_() % 4);
    return request;
  }

  /// A call that stops before the step of a number, from the checkpoint if there is one; answers
  /// the steps of the run so far.
  long run(const support::TemporaryFolder& folder, std::optional<long> stop,
           const fields::FlowRequest& machine, bool has_report = true) {
    fs::current_path(folder.path());
    support::QuietRun quiet;
    std::optional<RunReport> report;
    if (has_report) report.emplace("report.json", "data.json");
    const checkpoint::Request checkpoints{.name = "kept"};
    const RestartRequest restart{"kept"};
    quiet.settings.flow = machine;
    quiet.settings.report = report ? &*report : nullptr;
    quiet.settings.checkpoints = &checkpoints;
    if (fs::exists("kept.a")) quiet.settings.restart = &restart;
    Domain domain("data.json", quiet.settings);
    domain.Update([&] { return !stop || domain.clock().steps < *stop; });
    if (report) report->write(0, "");
    log_ = quiet.log.str();
    return domain.clock().steps;
  }

  /// Runs the case in one go; its results, and the number of its steps.
  void run_whole(const Case& c) {
    const support::TemporaryFolder folder;
    c.write(folder);
    steps_ = run(folder, {}, {});
    whole_ = results_of(folder);
  }

  void expect_the_same_from_any_step(const Case& c, int stops) {
    run_whole(c);
    ASSERT_GT(steps_, 50);
    for (int i = 0; i < stops; ++i) {
      const support::TemporaryFolder folder;
      c.write(folder);
      const long first = i == 0 ? 0 : static_cast<long>(random_() % static_cast<unsigned>(steps_));
      EXPECT_EQ(run(folder, first, any_machine()), first);
      if (i % 4 == 3) run(folder, (first + steps_) / 2, any_machine());
      EXPECT_EQ(run(folder, {}, any_machine()), steps_);
      expect_whole_results(folder, "stopped at step " + std::to_string(first));
    }
  }
  void expect_whole_results(const support::TemporaryFolder& folder, const std::string& how) const {
    const auto results = results_of(folder);
    ASSERT_EQ(results.size(), whole_.size());
    for (const auto& [name, text] : whole_) {
      EXPECT_TRUE(results.at(name) == text) << name << ", " << how;
    }
  }

  std::map<std::string, std::string> whole_;  ///< results of the run in one go
  long steps_ = 0;
  std::string log_;  ///< of the last call

 private:
  std::mt19937 random_{20};
  fs::path start_ = fs::current_path();
};

/// Everything that the model of water has, over an uneven bed with dry places.
inline Case water_case() {
  Case c = support::full_case(50, 40);
  c.set_times(0.0, 3.0);
  c.bed = [](double x, double y) { return 0.3 * std::sin(0.4 * x) * std::cos(0.3 * y); };
  c.data["model"]["conditions"].erase("fixed bed level");
  c.initial = [](double x, double y) {
    return x > 30.0 && y > 20.0 ? support::InitialState{-1.0}
                                : support::InitialState{0.7, 0.1, 0.02};
  };
  std::string hyetocells, soilcells, infiltrated;
  for (int cell = 0; cell < c.n_cells(); ++cell) {
    hyetocells += cell % 3 == 0 ? "-1\n" : cell % 3 == 1 ? "7\n" : "4\n";
    soilcells += cell % 3 == 0 ? "1\n" : cell % 3 == 1 ? "2\n" : "-1\n";
    infiltrated += support::exact(0.001 * (cell % 7)) + "\n";
  }
  c.add_rain(
      "3\n7 4 1\n0 0.001\n0.7 0.0002\n1.1 0\n1.9 0.003\n4 2 2\n0 0\n0.5 0.0005\n9 1 1\n0 1e-3\n",
      hyetocells);
  c.add_infiltration(
      "2\n1 GreenAmpt 0.00003 0.11 0.2 0.45 0.02 0.01\n2 Horton 0.0001 0.00001 20 0.01 0.02\n",
      soilcells);
  c.add_initial_infiltration(infiltrated);
  c.add_gauges({{10.3, 12.7}, {33.4, 25.2}, {-5.0, 0.0}}, 0.11);
  c.add_sections({c.edges_across(20), c.edges_across(50)}, 0.07);
  c.add_snapshots({0.0, 0.3, 0.2, 0.9, 1.7, 2.5});
  c.data["output"]["time step enveloppe of results"] = 0.13;
  c.data["output"]["maxima of flow"] = {{"file", "maxima.txt"}, {"arrival depth", 0.4}};
  c.data["output"]["final state"] = "last.txt";
  c.data["output"]["results"] = "results.nc";
  c.data["output"]["results times"] = "results_times.txt";
  c.files["results_times.txt"] = "6 0 0.3 0.31 0.9 1.7 2.5";
  return c;
}

inline Case sand_case() {
  Case c = water_case();
  lay_sand(c, "0.05");
  c.west = "-3 -0.3";
  c.north = "-4 0.7";
  c.data["model"]["sources"].erase("infiltration");
  c.data["model"]["sources"].erase("infiltracells");
  std::string layer;
  for (int cell = 0; cell < c.n_cells(); ++cell) layer += cell % 5 == 0 ? "0\n" : "0.02\n";
  c.files["layer.txt"] = layer;
  return c;
}

}  // namespace test_restart
