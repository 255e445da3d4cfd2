// Reports: one HTML file, as an HTML parser and a browser see it.
#include <algorithm>
#include <chrono>
#include <filesystem>

#include "tools/export/ExportTest.hpp"

namespace {

using nlohmann::json;

class Report : public ExportTest {
 protected:
  void simulate_with_report(const support::Case& c) {
    c.write(folder);
    const auto result = support::run_program(
        folder.path(), {"-f", "data.json", "-nodisplay", "--report", "report.json"});
    ASSERT_EQ(result.status, 0) << result.err;
  }
  json read(const std::string& what, const std::string& file, const std::string& part = {}) {
    support::RunOptions options;
    options.program = QUILLMERE_PYTHON;
    std::vector<std::string> words = {QUILLMERE_SOURCE_DIR "/tests/tools/export/read_report.py",
                                      what, file};
    if (!part.empty()) words.push_back(part);
    const support::RunResult result = support::run_program(folder.path(), words, options);
    EXPECT_EQ(result.status, 0) << result.err;
    return json::parse(result.out, nullptr, false);
  }
  /// Writes a report that has to be sound, and reads it.
  json report(const std::vector<std::string>& options = {}) {
    std::vector<std::string> arguments = {"report", ".", "report.html", "--dpi", "40"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    run_well(arguments);
    const json page = read("page", "report.html");
    for (const char* nothing : {"faults", "outside", "dead_links"}) {
      EXPECT_EQ(page[nothing], json::array()) << nothing;
    }
    return page;
  }
  std::string text_of(const json& page) { return page["text"].get<std::string>(); }
};

void expect_texts(const std::string& text, const std::vector<std::string>& expected) {
  for (const std::string& part : expected) {
    EXPECT_TRUE(support::contains(text, part)) << part << " in\n" << text;
  }
}

}  // namespace

TEST_F(Report, HoldsTheCaseItsRunMapsAndCurvesInOneFile) {
  support::Case c = flood_case();
  c.data["crs"] = "EPSG:32632";
  c.data["output"]["maxima of flow"] = {{"file", "maxima.txt"}, {"arrival depth", 0.1}};
  simulate_with_report(c);
  const json page = report();
  EXPECT_EQ(page["title"], "River with everything");
  EXPECT_EQ(page["ids"], (json{"case", "run", "maps", "gauges", "sections", "log"}));
  // The bed, the hydrograph, the level, the rain; the cells that set steps, and where; the depth,
  // speed, hazard and arrival; depth and velocity of the last snapshot; gauges and sections.
  EXPECT_EQ(page["pictures"].size(), 4u + 3u + 4u + 2u + 2u);
  expect_texts(
      text_of(page),
      {"Complete", "Largest depth", "36", "HLL", "hydrograph inflow.txt", "limnigraph level.txt",
       "Intensity of the rain", "Books of the water", "The time step over the run",
       "Time of arrival", "Velocity at t = 1.25 s", "The gauges over time",
       "Largest discharge (m³/s)", "EPSG:32632 (WGS 84 / UTM zone 32N)", "Welcome to Quillmere !"});
}

TEST_F(Report, TextsOfTheUserAreTexts) {
  support::Case c = flood_case();
  c.data["name"] = "<script>alert(\"1\")</script> & \x01<b>\n</title>";
  simulate_with_report(c);
  folder.write("names.json", R"({"gauges": ["<i>pier</i>", "$x$", "a\"b"],
      "sections": ["</td>", "<img src=x>"], "boundaries": {"<u>in": [0]}})");
  const json page = report();
  EXPECT_TRUE(
      support::starts_with(page["title"].get<std::string>(), "<script>alert(\"1\")</script> &"));
  for (const json& element : page["elements"]) {
    EXPECT_TRUE(element != "script" && element != "i" && element != "u") << element;
  }
  expect_texts(text_of(page), {"<i>pier</i>", "$x$", "a\"b", "</td>"});
}

TEST_F(Report, OfACaseThatWasNotRunSaysSo) {
  flood_case().write(folder);
  const json page = report();
  EXPECT_EQ(page["ids"], (json{"case", "run", "maps", "gauges", "sections"}));
  expect_texts(text_of(page),
               {"Not run", "There is no log of a run of this case", "The run kept no books",
                "enveloppe.txt is not there", "No snapshot is there", "The file ./out/gauges.txt",
                "The file ./sections.txt"});
  EXPECT_EQ(page["pictures"].size(), 4u);  // the bed, and what is imposed
}

TEST_F(Report, OfACaseThatAsksForNothingSaysSo) {
  simulate(support::Case());
  expect_texts(text_of(report()),
               {"Run, without books", "The case asks for no gauges.",
                "The case asks for no sections.", "The case asks for no snapshots of flow.",
                "The case asks for no maxima of the flow", "Friction", "none"});
}

TEST_F(Report, GivesDischargesAsTotalsIntoTheMesh) {
  support::Case c;
  c.west = "-3 -0.1";
  c.east = "-3 0.05";
  c.north = "-4 1.25";
  c.write(folder);
  const std::string text = text_of(report());
  expect_texts(text, {"0.3 m³/s in", "0.15 m³/s out", "1.25 m", "imposed water level"});
}

TEST_F(Report, DrawsTheRainOfTheRunAsTheSimulatorTakesIt) {
  support::Case c;
  c.set_times(0.0, 9000.0);
  c.add_rain(
      "4\n1 3 60\n0 1e-6\n3600 2e-6\n20000 3e-6\n2 2 60\n30 1e-6\n60 2e-6\n3 0 60\n"
      "4 3 60\n0 1e-6\n5000 2e-6\n2000 3e-6\n",
      c.per_cell("1"));
  c.write(folder);
  ASSERT_EQ(run({"report", ".", "report.html", "--dpi", "40"}).status, 0);  // warns of the rain
  const json diagram = read("curves", "report.html", "Intensity of the rain");
  const auto has = [&](const char* text) {
    return std::ranges::find(diagram["texts"], json(text)) != diagram["texts"].end();
  };
  EXPECT_TRUE(has("time (h)"));
  EXPECT_TRUE(has("hyetogram 1") && has("hyetogram 2") && has("hyetogram 4"));
  EXPECT_FALSE(has("hyetogram 3")) << "which has no interval";

  const json& lines = diagram["lines"];
  ASSERT_EQ(lines.size(), 3u);
  const json& first = lines["#0072b2"];
  const double low = first.front()[1], middle = first.back()[1];  // 1e-6 and 2e-6 m/s
  const double high = 2.0 * middle - low;                         // 3e-6 m/s
  const double begin = first.front()[0], hour = (first.back()[0].get<double>() - begin) / 2.5;
  const auto expect_line = [&](const char* colour, double change, double after) {
    const std::vector<std::pair<double, double>> expected = {
        {0.0, low}, {change, low}, {change, after}, {2.5, after}};
    ASSERT_EQ(lines[colour].size(), expected.size()) << lines[colour];
    for (std::size_t i = 0; i < expected.size(); ++i) {
      EXPECT_NEAR(lines[colour][i][0], begin + expected[i].first * hour, 1e-3) << lines[colour];
      EXPECT_NEAR(lines[colour][i][1], expected[i].second, 1e-3) << lines[colour];
    }
  };
  expect_line("#0072b2", 1.0, middle);            // what comes after the run is not shown
  expect_line("#d55e00", 60.0 / 3600.0, middle);  // from the first intensity on, in the same unit
  expect_line("#009e73", 2000.0 / 3600.0, high);  // the last that has started counts
}

TEST_F(Report, PutsTheEdgesOfANameTogether) {
  support::Case c;
  c.west = "-33 inflow.txt";
  c.files["inflow.txt"] = "2\n0 -0.1\n1 -0.2\n";
  c.write(folder);
  expect_texts(text_of(report()), {"hydrograph inflow.txt"});
  const std::vector<int> edges = c.edges_across(0);
  folder.write("names.json", json{{"boundaries", {{"river", edges}}}}.dump());
  const std::string named = text_of(report());
  expect_texts(named, {"river (hydrograph)", "Discharge into the mesh: river (hydrograph)"});
  EXPECT_FALSE(support::contains(named, "inflow.txt"));
}

TEST_F(Report, MarksBoundariesOfEveryName) {
  support::RunOptions options;
  options.program = QUILLMERE_PYTHON;
  const char* const legend =
      "import sys; sys.path.insert(0, sys.argv[1])\n"
      "import matplotlib; matplotlib.use('Agg')\n"
      "import matplotlib.pyplot as plt\n"
      "from drawing.marks import draw_lines\n"
      "axes = plt.figure().add_subplot()\n"
      "lines = [[(0, 0), (1, 1)]]\n"
      "draw_lines(axes, [{'label': name, 'lines': lines} for name in ('_sea', 'a $ b', '')])\n"
      "axes.figure.canvas.draw()\n"
      "print([text.get_text() for text in axes.get_legend().get_texts()])\n";
  const support::RunResult result = support::run_program(
      folder.path(), {"-B", "-c", legend, QUILLMERE_SOURCE_DIR "/tools/export"}, options);
  EXPECT_EQ(result.out, "['_sea', 'a \\\\$ b', '']\n") << result.err;
  EXPECT_EQ(result.err, "");
}

TEST_F(Report, OverSandShowsTheChangeOfTheBed) {
  simulate_with_report(sand_case());
  expect_texts(text_of(report()), {"Bed change at t = 0.25 s", "Books of the sediment",
                                   "Porosity of the bed", "water and sediment"});
}

TEST_F(Report, TellsWhatARunHasToTell) {
  simulate(flood_case());
  json run = {{"outcome", {{"status", "failed"}, {"reason", "dt too <small>!"}}},
              {"time", {{"reached_s", 1.125}}},
              {"books_since_s", 0.75},
              {"water", {{"initial_m3", 4.5}}},
              {"below_zero", {{"cells_at_end", 12}, {"missing_m3", 3.5}, {"share", 0.25}}},
              {"not_a_number", {{"cells_at_end", 3}}},
              {"given_out_by_soils_m3", 7.25},
              {"keys", {{"ignored", {{{"key", "nmae"}, {"nearest", "name"}}}}}},
              {"failure",
               {{"last_steps",
                 {{{"time_s", 1.0}, {"step_s", 0.1}}, {{"time_s", 1.1}, {"step_s", 1e-7}}}}}}};
  folder.write("other.json", run.dump());
  expect_texts(text_of(report({"--run-report", "other.json"})),
               {"Simulated\n1.125 s\n", "At t = 0.75 s\n4.5\n", "Failed: dt too <small>!",
                "The run is not complete.",
                "the depth of 12 cells is below zero: 3.5 m³ are missing there, 25 %",
                "the state of 3 cells is not a number", "Soils gave out 7.25 m³", "nmae",
                "The last time steps before the run failed"});
}

TEST_F(Report, PartsOfARunReportMayBeMissingOrStrange) {
  simulate(flood_case());
  folder.write(
      "report.json",
      R"({"outcome": 3, "steps": [1, {"x": null}], "execution": [1], "water": {"boundaries": 5,
      "initial_m3": "much"}, "time": null, "velocity": {"largest": {"m_per_s": 1, "cell": "<script>"}}, "failure": {"last_steps": [{}]},
      "keys": {"ignored": [3, {"key": null}]}, "not_a_number": {"cells_at_end": true}})");
  const json strange = report();
  expect_texts(text_of(strange), {"Books of the water", "1 m/s, at – in cell –"});
  EXPECT_FALSE(support::contains(strange["elements"].dump(), "script"));
  folder.write("report.json", R"({"outcome": {"status": ["x"]}, "steps": {"set": 3,
      "set_most_often_by": [{"cell": 99, "steps": 3}, {"cell": -1, "steps": 1}, {"cell": 1.5},
      {"cell": 1, "steps": 0}], "course": {"from_s": [0, 1], "smallest_s": [1, 1],
      "largest_s": [1]}}, "time": {"reached_s": 2}})");
  const std::string text = text_of(report());
  EXPECT_FALSE(support::contains(text, "set most of the time steps"));
  EXPECT_FALSE(support::contains(text, "The time step over the run"));
}

TEST_F(Report, ARunReportThatIsNoneIsToldOrRefused) {
  simulate(flood_case());
  folder.write("report.json", "[1]");
  expect_texts(text_of(report()), {"./report.json: found no report of a run"});
  const auto refusal = [&](const std::string& file) {
    const support::RunResult result = run({"report", ".", "none.html", "--run-report", file});
    EXPECT_EQ(result.status, 1);
    EXPECT_FALSE(folder.has("none.html"));
    return result.err;
  };
  EXPECT_TRUE(support::contains(refusal("report.json"), "found no report of a run"));
  EXPECT_TRUE(support::contains(refusal("nowhere.json"), "nowhere.json"));
  folder.write("other.json", R"({"outcome": {}, "execution": {"cells": 7}})");
  EXPECT_EQ(refusal("other.json"),
            "quillmere-export: other.json is of a run with 7 cells, expected 36.\n");
}

TEST_F(Report, TellsNothingOfTheBooksOfAnEarlierRun) {
  support::Case c = flood_case();
  simulate_with_report(c);
  const auto written = std::filesystem::last_write_time(folder.file("report.json"));
  std::filesystem::last_write_time(folder.file("log.txt"), written + std::chrono::minutes(1));
  const std::string old = text_of(report());
  expect_texts(old, {"./report.json is of an earlier run."});
  EXPECT_FALSE(support::contains(old, "Books of the water"));
  EXPECT_TRUE(
      support::contains(text_of(report({"--run-report", "report.json"})), "Books of the water"))
      << "as one that is named";

  c.set_times(0.0, 1.0);
  simulate(c);
  const auto ended = std::filesystem::last_write_time(folder.file("log.txt"));
  std::filesystem::last_write_time(folder.file("report.json"), ended);  // the ages tell nothing
  const std::string other = text_of(report());
  expect_texts(other,
               {"./report.json is of an earlier run, whose end is at 2.5 s: that of the case "
                "is at 1.0 s."});
  EXPECT_FALSE(support::contains(other, "Books of the water"));
}

#ifndef QUILLMERE_SANITIZED  // other reports run the same code
TEST_F(Report, StandsAmongTheExportsUnlessAskedOtherwise) {
  simulate_with_report(flood_case());
  EXPECT_EQ(run_well({"report", ".", "--dpi", "40"}).out, "./export/report.html\n");
  EXPECT_EQ(run_well({"report", ".", "again.html", "--dpi", "40"}).out, "again.html\n");
  EXPECT_EQ(folder.read("again.html"), folder.read("export/report.html"));
  const support::RunResult result = run({"report", ".", "data.json"});
  EXPECT_EQ(result.status, 1) << "a file of the case";
}
#endif

TEST_F(Report, TellsHowMuchWasEverDeeperThanTheThreshold) {
  support::Case c;  // 3 m2 of 12 under 1.5 m of water, at rest behind a sill
  std::string bed;
  for (int cell = 0; cell < c.n_cells(); ++cell) bed += c.center(cell).x < 1.0 ? "0\n" : "3\n";
  c.add_fixed_bed(bed);
  c.initial = [](double x, double) { return support::InitialState{x < 1.0 ? 1.5 : 0.0}; };
  simulate(c);
  const auto area = [](const std::string& depth) { return "Deeper than " + depth + " m\n"; };
  expect_texts(text_of(report()), {area("0.0001") + "3 m²"});
  expect_texts(text_of(report({"--threshold", "2"})), {area("2") + "0 m²"});
}

#ifndef QUILLMERE_SANITIZED  // other reports run the same code
TEST_F(Report, ABrowserShowsIt) {
  const std::string browser = "/usr/bin/chromium";
  if (!std::filesystem::exists(browser)) GTEST_SKIP() << browser << " is not there";
  simulate_with_report(flood_case());
  report();
  support::RunOptions options;
  options.program = "/usr/bin/env";
  options.time_limit = 240.0;  // a browser takes minutes to start on a busy machine
  const support::RunResult result = support::run_program(
      folder.path(),
      {"HOME=" + folder.path(), browser, "--headless=new", "--no-sandbox", "--disable-gpu",
       "--disable-dev-shm-usage", "--hide-scrollbars", "--force-device-scale-factor=1",
       "--user-data-dir=" + folder.file("browser"), "--window-size=1000,1600",
       "--screenshot=" + folder.file("page.png"), "file://" + folder.file("report.html")},
      options);
  ASSERT_FALSE(result.timed_out) << result.err;
  ASSERT_TRUE(folder.has("page.png")) << result.err;
  const json picture = read("picture", "page.png");
  EXPECT_EQ(picture["size"][0], 1000);
  EXPECT_GE(picture["size"][1], 1400);         // some browsers count their own bars to the window
  EXPECT_GT(picture["colours"].size(), 100u);  // of the map of the bed
  EXPECT_GT(picture["colours"].value("#0b5a8a", 0), 50);      // headings in the colour of the style
  EXPECT_GT(picture["colours"].value("#ffffff", 0), 800000);  // on white paper
}
#endif
