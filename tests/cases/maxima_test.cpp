// The maxima of the flow of a run, beside what its snapshots, gauges and envelopes tell.
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <thread>

#include "cases/CaseTest.hpp"

namespace {

using support::contains;
using support::lines;

class Maxima : public CaseTest {
 protected:
  enum Column { h = 3, level, v, q, hv, t_h, t_arrival, t_wet };

  /// A dam break in a channel whose eastern end stays dry.
  Maxima() {
    c.nx = 20;
    c.ny = 3;
    c.bed = [](double x, double) { return x < 18.0 ? 0.01 * x : 5.0; };
    c.initial = [](double x, double) { return support::InitialState{x < 5.0 ? 2.0 : -1.0}; };
    c.set_times(0.0, 4.0);
    ask(0.1);
  }
  void ask(double arrival_depth) {
    c.data["output"]["maxima of flow"] = {{"file", "maxima.txt"}, {"arrival depth", arrival_depth}};
  }
  void run_with_report() {
    const support::RunResult result = support::run_program(
        folder.path(), {"-f", "data.json", "-nodisplay", "--report", "report.json"});
    EXPECT_EQ(result.status, 0) << result.err;
  }
  std::vector<double> values(Column of) {
    std::vector<double> numbers;
    for (const std::string& text : column("out/maxima.txt", of)) numbers.push_back(std::stod(text));
    return numbers;
  }
  std::size_t cell_at(int i, int j) const { return static_cast<std::size_t>(c.lower(i, j)); }
};

TEST_F(Maxima, TellWhenTheWaterArrivesAndHowLongItStays) {
  run_well();
  const std::vector<double> arrival = values(t_arrival), under = values(t_wet), depth = values(h);
  EXPECT_EQ(arrival[cell_at(2, 1)], 0.0);
  EXPECT_NEAR(depth[cell_at(2, 1)], 2.0 - c.bed(c.center(c.lower(2, 1)).x, 0.0), 1e-5);
  double before = 0.0;
  int arrived = 0;
  for (int i = 6; i < 17 && !std::isnan(arrival[cell_at(i, 1)]); ++i, ++arrived) {
    EXPECT_GT(arrival[cell_at(i, 1)], before) << i;
    before = arrival[cell_at(i, 1)];
    EXPECT_NEAR(arrival[cell_at(i, 1)] + under[cell_at(i, 1)], 4.0, 0.1);
    EXPECT_GT(depth[cell_at(i, 1)], 0.1);
  }
  EXPECT_GT(arrived, 4);
  EXPECT_EQ(column("out/maxima.txt", t_arrival)[cell_at(19, 1)], "nan");
  EXPECT_EQ(column("out/maxima.txt", level)[cell_at(19, 1)], "nan");
  EXPECT_EQ(under[cell_at(19, 1)], 0.0);
}

TEST_F(Maxima, AreThoseOfTheStatesOfAllSteps) {
  const support::Point place = c.center(c.lower(8, 1));
  c.add_gauges({{place.x + 1e-3, place.y + 1e-3}}, 1e-9);
  record_passes();
  run_well();
  const std::vector<double> times = pass_times();
  double depth = 0.0, time = 0.0, discharge = 0.0, speed = 0.0, arrival = -1.0;
  const auto rows = lines(folder.read("out/gauges.txt"));
  for (std::size_t i = 1; i < rows.size(); ++i) {
    const auto words = support::split(rows[i], '\t');
    const double here = std::stod(words.at(1));
    const double moving = std::hypot(std::stod(words.at(2)), std::stod(words.at(3)));
    if (here > 0.1 && arrival < 0.0) arrival = times.at(i - 1);
    if (here > depth) {
      depth = here;
      time = times.at(i - 1);
    }
    discharge = std::max(discharge, moving);
    if (here > 1e-4) speed = std::max(speed, moving / here);
  }
  const std::size_t cell = cell_at(8, 1);
  // The last state is no pass any more, and the water still rises there.
  EXPECT_GE(values(h)[cell], depth);
  EXPECT_NEAR(values(h)[cell], depth, 0.02);
  EXPECT_GE(values(t_h)[cell], time);
  EXPECT_NEAR(values(t_arrival)[cell], arrival, 1e-5);
  EXPECT_NEAR(values(q)[cell], discharge, 0.1 * discharge);
  EXPECT_NEAR(values(v)[cell], speed, 1e-4 * speed);
  EXPECT_EQ(values(hv), values(q));
}

TEST_F(Maxima, AreTheSameOnBothPathsWithEveryScheme) {
  for (const std::string scheme : {"LHLLC", "HLL1", "HLL2"}) {
    c.data["model"]["flux scheme"] = scheme;
    c.write(folder);
    setenv("QUILLMERE_ENGINE", "objects", 1);
    const int status_on_objects = run().status;
    const std::string of_objects = folder.read("out/maxima.txt");
    unsetenv("QUILLMERE_ENGINE");
    ASSERT_EQ(status_on_objects, 0);
    ASSERT_EQ(run().status, 0);
    EXPECT_EQ(folder.read("out/maxima.txt"), of_objects) << scheme;
  }
}

TEST_F(Maxima, AreWrittenWithEveryEnvelopeAndAtTheEnd) {
  c.data["output"]["time step enveloppe of results"] = 1e9;
  run_well();
  const std::string at_the_end = folder.read("out/maxima.txt");
  EXPECT_FALSE(folder.has("out/enveloppe.txt.part"));
  // What is written in between changes nothing.
  c.data["output"]["time step enveloppe of results"] = 0.1;
  run_well();
  EXPECT_EQ(folder.read("out/maxima.txt"), at_the_end);
}

TEST_F(Maxima, StandBesideTheEnvelopeWhileTheRunGoesOn) {
  c.set_times(0.0, 1e6);
  c.data["output"]["time step enveloppe of results"] = 1e-9;
  c.write(folder);
  support::RunningProgram program(folder.path(), {"-f", "data.json", "-nodisplay"});
  for (int i = 0; i < 60000 && !folder.has("out/maxima.txt"); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  EXPECT_TRUE(program.is_running());
  EXPECT_EQ(lines(folder.read("out/maxima.txt")).size(), 121U);
  program.send(SIGKILL);
  program.wait();
}

TEST_F(Maxima, AreWrittenWhereARunIsInterrupted) {
  c.set_times(0.0, 1e6);
  record_passes();
  c.write(folder);
  support::RunningProgram program(folder.path(), {"-f", "data.json", "-nodisplay"});
  for (int i = 0; i < 60000 && lines(folder.read("passes.txt")).size() < 20; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  program.send(SIGTERM);
  EXPECT_EQ(program.wait().status, 128 + SIGTERM);
  const std::string maxima = folder.read("out/maxima.txt");
  ASSERT_EQ(lines(maxima).size(), 121U);
  // A run that was told to end there gives the same.
  const std::vector<double> times = pass_times();
  const double last = times.back(), step = last - times.at(times.size() - 2);
  c.set_times(0.0, last + 0.5 * step);  // their texts are rounded
  run_well();
  EXPECT_EQ(folder.read("out/maxima.txt"), maxima);
}

TEST_F(Maxima, ChangeNoOtherResult) {
  c = support::full_case();
  run_well();
  auto expected = files_of(folder);
  ask(0.05);
  run_well();
  auto found = files_of(folder);
  EXPECT_TRUE(contains(found["log.txt"],
                       "  Maxima of the flow: written to out/maxima.txt, under water from 0.05 m "
                       "on\n"));
  EXPECT_EQ(found.erase("out/maxima.txt"), 1U);
  for (auto* files : {&expected, &found}) {
    files->erase("log.txt");
    files->erase("data.json");
  }
  EXPECT_EQ(found, expected);
}

TEST_F(Maxima, TakeTheUsualArrivalDepthWithoutOne) {
  ask(0.05);
  run_well();
  const std::string expected = folder.read("out/maxima.txt");
  c.data["output"]["maxima of flow"].erase("arrival depth");
  c.write(folder);
  run_with_report();
  EXPECT_EQ(folder.read("out/maxima.txt"), expected);
  const auto keys = nlohmann::json::parse(folder.read("report.json"))["keys"]["defaulted"];
  EXPECT_EQ(keys["output/maxima of flow/arrival depth"], "0.05 m");
  ask(0.3);
  run_well();
  EXPECT_NE(folder.read("out/maxima.txt"), expected);
}

TEST_F(Maxima, ThatNobodyAsksForHaveNoDefaultsInTheReport) {
  c.data["output"].erase("maxima of flow");
  c.write(folder);
  run_with_report();
  EXPECT_FALSE(contains(folder.read("report.json"), "maxima"));
}

TEST_F(Maxima, ThatCannotBeWrittenEndTheRunWithAnError) {
  c.write(folder);
  std::filesystem::create_symlink("/dev/full", folder.file("out/maxima.txt"));
  expect_stop(
      "Error. The file out/maxima.txt couldn't be written completely: No space left on device.\n");
}

TEST_F(Maxima, NeedANameAndAnArrivalDepthThatIsNotNegative) {
  const auto expect_refusal = [&](const nlohmann::json& request, const std::string& text) {
    c.data["output"]["maxima of flow"] = request;
    expect_stop("Error. " + text + "\n");
  };
  expect_refusal({{"file", ""}},
                 "\"output/maxima of flow/file\" is empty, expected the name of a file.");
  expect_refusal({{"file", "m.txt"}, {"arrival depth", -0.5}},
                 "\"output/maxima of flow/arrival depth\" is -0.5 m, expected a finite number that "
                 "is not negative.");
  expect_refusal({{"file", "m.txt"}, {"arrival depth", "deep"}},
                 "The following key has incorrect format in the datafile: arrival depth");
  expect_refusal("m.txt", "The following key has incorrect format in the datafile: maxima of flow");
  expect_refusal({{"arrival depth", 1}},
                 "The following key couldn't be found in the datafile: file");
  expect_refusal({{"file", "../nodes.txt"}},
                 "The maxima (out/../nodes.txt) would replace an input file of this run "
                 "(nodes.txt).");
}

}  // namespace
