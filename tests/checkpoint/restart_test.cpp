// A run that is stopped anywhere and goes on from its checkpoint, on another path, number of
// threads or instruction set, leaves the files of one that never stopped, byte for byte.
#include "checkpoint/RestartTest.hpp"

using namespace test_restart;

TEST_F(Restart, OfWaterWithEverythingLeavesTheSameFilesFromAnyStep) {
  expect_the_same_from_any_step(water_case(), 8);
}

TEST_F(Restart, OfSandWithEverythingLeavesTheSameFilesFromAnyStep) {
  expect_the_same_from_any_step(sand_case(), 8);
}

TEST_F(Restart, OfThePositiveSchemesLeavesTheSameFilesFromAnyStep) {
  for (const char* const scheme : {"HLL2", "HLL1"}) {
    Case c = water_case();
    c.data["model"]["flux scheme"] = scheme;
    expect_the_same_from_any_step(c, 4);
  }
  Case sand = sand_case();
  sand.data["model"]["flux scheme"] = "HLL1";
  expect_the_same_from_any_step(sand, 4);
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
  const std::string results = folder.read("out/results.nc");
  ASSERT_FALSE(folder.has("out/pic_2_50.txt"));
  c.add_snapshots({0.1, 2.9});
  c.files["results_times.txt"] = "2 0 2.7";
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
  EXPECT_TRUE(support::contains(log_, "Results in NetCDF are written at other times")) << log_;
  EXPECT_FALSE(folder.has("out/pic_0_10.txt"));
  EXPECT_FALSE(folder.has("out/pic_2_50.txt"));
  EXPECT_TRUE(folder.has("out/pic_2_90.txt"));
  const std::string more = folder.read("out/gauges.txt");
  EXPECT_TRUE(support::starts_with(more, gauges));
  EXPECT_GE(support::lines(more).size(), support::lines(gauges).size() + 3);
  EXPECT_LE(support::lines(more).size(), support::lines(gauges).size() + 6);
  EXPECT_EQ(folder.read("sections.txt"), sections);
  const std::string more_results = folder.read("out/results.nc");
  EXPECT_EQ(more_results.at(7), results.at(7) + 1);  // the number of snapshots
  EXPECT_GT(more_results.size(), results.size());
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
  EXPECT_TRUE(support::contains(refusal(with_maxima),
                                "out/results.nc describes other results than this run's"));
  c.data["output"]["results"] = "more.nc";
  c.data["output"]["maxima of flow"] = {{"file", "maxima.txt"}, {"arrival depth", 0.3}};
  EXPECT_TRUE(support::contains(refusal(with_maxima), "is 0.3 m, which was 0.4 m"));
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
