// A run that is stopped anywhere and goes on from its checkpoint, on another path, number of
// threads or instruction set, leaves the files of one that never stopped, byte for byte.
#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <random>

#include "cases/CaseTest.hpp"
#include "cases/ReportTest.hpp"
#include "domain/Domain.hpp"
#include "report/RunReport.hpp"
#include "support/QuietRun.hpp"

namespace {

namespace fs = std::filesystem;
using support::Case;

/// Both files of a checkpoint, and what tells calls of the program apart, left out.
std::map<std::string, std::string> results_of(const support::TemporaryFolder& folder) {
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
Case water_case() {
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
  return c;
}

Case sand_case() {
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

}  // namespace

TEST_F(Restart, OfWaterWithEverythingLeavesTheSameFilesFromAnyStep) {
  expect_the_same_from_any_step(water_case(), 20);
}

TEST_F(Restart, OfSandWithEverythingLeavesTheSameFilesFromAnyStep) {
  expect_the_same_from_any_step(sand_case(), 20);
}

TEST_F(Restart, OfThePositiveSchemesLeavesTheSameFilesFromAnyStep) {
  for (const char* const scheme : {"HLL2", "HLL1"}) {
    Case c = water_case();
    c.data["model"]["flux scheme"] = scheme;
    expect_the_same_from_any_step(c, 5);
  }
  Case sand = sand_case();
  sand.data["model"]["flux scheme"] = "HLL1";
  expect_the_same_from_any_step(sand, 5);
}

TEST_F(Restart, BeforeTheFirstStepKeepsTheFreeSurfaceThatWasGiven) {
  Case c = water_case();
  c.initial = [](double x, double y) {
    return support::InitialState{0.3 * std::sin(0.4 * x) * std::cos(0.3 * y) > 0.2 ? 0.9 : -0.7};
  };
  c.set_times(0.0, 0.3);
  run_whole(c);
  for (const char* const first : {"objects", "tables"}) {
    for (const char* const second : {"objects", "tables"}) {
      const support::TemporaryFolder folder;
      c.write(folder);
      EXPECT_EQ(run(folder, 0, {.path = first}), 0);
      EXPECT_EQ(run(folder, {}, {.path = second}), steps_);
      expect_whole_results(folder, std::string(first) + ", then " + second);
    }
  }
}

TEST_F(Restart, OfACompleteRunChangesNothing) {
  const Case c = water_case();
  run_whole(c);
  const support::TemporaryFolder folder;
  c.write(folder);
  run(folder, {}, {});
  run(folder, {}, {});
  EXPECT_EQ(results_of(folder), whole_);
}

TEST_F(Restart, GoesOnToALaterEndAsIfItHadBeenAskedForAtFirst) {
  Case c = water_case();
  c.add_rain("1\n7 1 1\n0 0\n", c.per_cell("7"));  // bursts of rain know the end of the run
  run_whole(c);
  const support::TemporaryFolder folder;
  c.set_times(0.0, 1.0);
  c.write(folder);
  run(folder, {}, {});
  c.set_times(0.0, 3.0);
  c.write(folder);
  run(folder, {}, {});
  EXPECT_TRUE(support::contains(log_, "  Changed since then: the end time\n")) << log_;
  auto results = results_of(folder), whole = whole_;
  for (auto* const files : {&results, &whole}) files->erase("data.json");
  EXPECT_EQ(results, whole);
}

TEST_F(Restart, TakesOtherOutputsFromThereOn) {
  Case c = water_case();
  const support::TemporaryFolder folder;
  c.write(folder);
  run(folder, 40, {});
  const std::string gauges = folder.read("out/gauges.txt"), sections = folder.read("sections.txt");
  ASSERT_FALSE(folder.has("out/pic_2_50.txt"));
  c.add_snapshots({0.1, 2.9});
  c.add_gauges({{10.3, 12.7}, {33.4, 25.2}, {-5.0, 0.0}}, 0.5);
  c.add_sections({c.edges_across(10)}, 0.3, "others.txt");
  c.data["output"]["time step enveloppe of results"] = 1.0;
  c.write(folder);
  run(folder, {}, {});
  for (const char* const text : {"Gauges are recorded every 0.5 s, no more every 0.11 s",
                                 "Sections are recorded in another file from here on",
                                 "The envelope is recorded every 1 s, no more every 0.13 s",
                                 "The times of the snapshots have changed"}) {
    EXPECT_TRUE(support::contains(log_, text)) << text << log_;
  }
  EXPECT_FALSE(folder.has("out/pic_0_10.txt"));
  EXPECT_FALSE(folder.has("out/pic_2_50.txt"));
  EXPECT_TRUE(folder.has("out/pic_2_90.txt"));
  const std::string more = folder.read("out/gauges.txt");
  EXPECT_TRUE(support::starts_with(more, gauges));
  EXPECT_GE(support::lines(more).size(), support::lines(gauges).size() + 3);
  EXPECT_LE(support::lines(more).size(), support::lines(gauges).size() + 6);
  EXPECT_EQ(folder.read("sections.txt"), sections);
  const auto times = support::lines(folder.read("others.txt"));
  ASSERT_FALSE(times.empty());
  EXPECT_GT(std::stod(times.front()), std::stod(support::lines(sections).back()));
}

TEST_F(Restart, KeepsMaximaOnlyFromTheStartOnAndByOneDepth) {
  Case c = water_case();
  const auto refusal = [&](const support::TemporaryFolder& folder) {
    c.write(folder);
    const auto before = files_of(folder);
    try {
      run(folder, {}, {});
    } catch (const std::runtime_error& error) {
      EXPECT_EQ(files_of(folder), before);
      return std::string(error.what());
    }
    return std::string();
  };
  const support::TemporaryFolder with_maxima, without;
  c.write(with_maxima);
  run(with_maxima, 40, {});
  c.data["output"]["maxima of flow"]["arrival depth"] = 0.3;
  EXPECT_TRUE(support::contains(
      refusal(with_maxima), "\"output/maxima of flow/arrival depth\" is 0.3 m, which was 0.4 m"));

  const auto asked = c.data["output"]["maxima of flow"];
  c.data["output"].erase("maxima of flow");
  c.write(without);
  run(without, 40, {});
  c.data["output"]["maxima of flow"] = asked;
  EXPECT_TRUE(support::contains(refusal(without), "it holds no maxima of the flow"));

  c.data["output"].erase("maxima of flow");
  c.write(with_maxima);
  run(with_maxima, {}, {});
  EXPECT_TRUE(support::contains(log_, "Maxima of the flow are kept no more")) << log_;
}

TEST_F(Restart, WithAReportThatTheRunDidNotHaveBeginsItsBooksThere) {
  const Case c = water_case();
  const support::TemporaryFolder folder;
  c.write(folder);
  run(folder, 40, {}, false);
  run(folder, {}, {});
  const auto report = nlohmann::json::parse(folder.read("report.json"));
  const double since = report.at("books_since_s");
  EXPECT_GT(since, 0.0);
  EXPECT_EQ(since, report.at("execution").at("continued_at_s"));
  EXPECT_LT(std::fabs(report.at("water").at("relative_error").get<double>()), 1e-10);
}
