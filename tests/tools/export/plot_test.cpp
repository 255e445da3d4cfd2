// Pictures. SVG keeps its texts, so that a title, a unit and a scale bar can be looked for.
#include <algorithm>
#include <csignal>
#include <map>
#include <regex>
#include <set>

#include "support/left_behind.hpp"
#include "tools/export/ExportTest.hpp"

namespace {

class Plot : public ExportTest {
 protected:
  std::string svg_of(const std::vector<std::string>& options) {
    std::vector<std::string> arguments = {"plot", ".", "-o", "picture.svg", "--dpi", "50"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    run_well(arguments);
    return folder.read("picture.svg");
  }
};

/// Numbers and label beside the colours of a map, which are its second axes.
std::vector<std::string> texts_beside_colours(const std::string& svg) {
  static const std::regex text("<text[^>]*>([^<]*)</text>");
  const std::string axes = svg.substr(svg.find("id=\"axes_2\""));
  std::vector<std::string> texts;
  for (std::sregex_iterator i(axes.begin(), axes.end(), text), end; i != end; ++i) {
    texts.push_back((*i)[1].str());
  }
  return texts;
}

struct Box {
  double west = HUGE_VAL, east = -HUGE_VAL, top = HUGE_VAL, bottom = -HUGE_VAL;
  void add(double x, double y) {
    west = std::min(west, x);
    east = std::max(east, x);
    top = std::min(top, y);
    bottom = std::max(bottom, y);
  }
  bool overlaps(const Box& other) const {
    return west < other.east && other.west < east && top < other.bottom && other.top < bottom;
  }
};

/// Where the texts stand that are drawn with an outline: as paths, of which the first is the
/// outline.
std::vector<Box> boxes_of_outlined_texts(const std::string& svg) {
  static const std::regex point("([-0-9.]+) ([-0-9.]+)");
  const std::string opening = "<g id=\"text_";
  std::vector<Box> boxes;
  for (std::size_t at = svg.find(opening); at != std::string::npos;
       at = svg.find(opening, at + 1)) {
    const std::size_t path = svg.find("<path d=\"", at);
    if (path == std::string::npos || path > svg.find('>', at) + 60) continue;
    const std::string points = svg.substr(path + 9, svg.find('"', path + 9) - path - 9);
    Box box;
    for (std::sregex_iterator i(points.begin(), points.end(), point), end; i != end; ++i) {
      box.add(std::stod((*i)[1].str()), std::stod((*i)[2].str()));
    }
    boxes.push_back(box);
  }
  return boxes;
}

bool is_png(const std::string& bytes) {
  return bytes.size() > 1000 && support::starts_with(bytes, "\x89PNG\r\n\x1a\n");
}

}  // namespace

TEST_F(Plot, AMapHasTitleTimeUnitAndScaleBar) {
  simulate(flood_case());
  const std::string map = svg_of({"--field", "velocity", "--time", "0.5"});
  for (const char* text : {"River with everything: velocity, t = 0.5 s", "velocity (m/s)", "x (m)",
                           "y (m)", ">1 m<"}) {
    EXPECT_TRUE(support::contains(map, text)) << text;
  }
  EXPECT_TRUE(support::contains(svg_of({}), "River with everything: largest depth"));
  EXPECT_TRUE(support::contains(svg_of({"--title", "By hand"}), ">By hand<"));
}

TEST_F(Plot, CurvesHaveTitleUnitsAndLegend) {
  simulate(flood_case());
  const std::string gauges = svg_of({"--gauges"});
  for (const char* text : {"River with everything: gauges", "depth (m)", "unit discharge (m²/s)",
                           "time (s)", "gauge 1", "gauge 2"}) {
    EXPECT_TRUE(support::contains(gauges, text)) << text;
  }
  const std::string sections = svg_of({"--sections"});
  for (const char* text : {"River with everything: sections", "discharge (m³/s)", "section 2"}) {
    EXPECT_TRUE(support::contains(sections, text)) << text;
  }
}

TEST_F(Plot, CurvesTellTheNamesThatTheCaseHas) {
  simulate(flood_case());
  folder.write("names.json",
               R"({"gauges": ["pier, $1$", "quay", ""], "sections": ["bridge", "weir"]})");
  EXPECT_TRUE(support::contains(svg_of({"--gauges"}), "gauge 1 (pier, $1$)"));
  EXPECT_TRUE(support::contains(svg_of({"--sections"}), "section 2 (weir)"));
}

TEST_F(Plot, GaugesShowTheLevelOverTheBedOfTheirCells) {
  support::Case c;
  c.bed = [](double, double) { return 7.0; };
  c.initial = [](double, double) { return support::InitialState{8.5}; };
  c.add_gauges({{1.3, 1.6}, {100.0, 100.0}}, 0.5);
  simulate(c);
  const std::string gauges = svg_of({"--gauges"});
  EXPECT_TRUE(support::contains(gauges, "water level (m)"));
  EXPECT_TRUE(support::contains(gauges, ">8.6<") && !support::contains(gauges, ">1.6<")) << gauges;
}

TEST_F(Plot, WhereTheBedMovesGaugesShowNoLevel) {
  support::Case c = sand_case();
  c.add_gauges({{1.3, 1.6}}, 0.1);
  simulate(c);
  const std::string gauges = svg_of({"--gauges"});
  EXPECT_TRUE(support::contains(gauges, "depth (m)"));
  EXPECT_FALSE(support::contains(gauges, "water level"));
}

TEST_F(Plot, AMapSaysWhereItsGaugesAndSectionsAre) {
  simulate(flood_case());
  const auto labels = [&](const std::vector<std::string>& options) {
    return boxes_of_outlined_texts(svg_of(options)).size();
  };
  EXPECT_EQ(labels({}), 2u + 2u);  // the third gauge lies outside of the mesh
  EXPECT_EQ(labels({"--no-gauges"}), 0u);
  // Of what lies outside of the map nothing is told: the second gauge and the second section.
  EXPECT_EQ(labels({"--extent", "612000,5235000,612003.5,5235003"}), 1u + 1u);
}

TEST_F(Plot, TheNamesOfSectionsStandOnMaps) {
  support::Case c = flood_case();
  simulate(c);
  const auto width_of_last = [&] {
    const Box box = boxes_of_outlined_texts(svg_of({})).back();
    return box.east - box.west;
  };
  const double usual = width_of_last();  // "section 2"
  folder.write("names.json", R"({"sections": ["bridge", "the weir of the old mill"]})");
  EXPECT_GT(width_of_last(), 2.0 * usual);
  folder.write("names.json", R"({"sections": ["one name for two sections"]})");
  EXPECT_EQ(width_of_last(), usual);
}

TEST_F(Plot, TheColoursTakeTheRangeThatIsGiven) {
  simulate(flood_case());
  const auto numbers = texts_beside_colours(svg_of({"--range", "0:80"}));
  EXPECT_TRUE(std::find(numbers.begin(), numbers.end(), "80") != numbers.end());
  EXPECT_NE(svg_of({"--range", "0:0.5"}), svg_of({"--range", "0:0.6"}));
}

TEST_F(Plot, LogarithmicClassesAreOneTwoAndFiveTimesPowersOfTen) {
  simulate(flood_case());
  const auto numbers = texts_beside_colours(svg_of({"--classes", "log", "--range", "0.01:2"}));
  EXPECT_EQ(numbers, (std::vector<std::string>{"0.01", "0.02", "0.05", "0.1", "0.2", "0.5", "1",
                                               "2", "largest depth (m)"}));
  const auto usual = texts_beside_colours(svg_of({"--classes", "log"}));
  EXPECT_EQ(usual.at(usual.size() - 2), "1");  // of a largest depth below 2 m
  const support::RunResult narrow = run({"plot", ".", "--classes", "log", "--range", "3:4"});
  EXPECT_EQ(narrow.status, 1);
  EXPECT_TRUE(support::contains(narrow.err, "found a range from 3 to 4, expected one that holds"));
}

TEST_F(Plot, AMapShowsTheExtentThatIsGiven) {
  simulate(flood_case());
  run_well({"plot", ".", "-o", "whole.png"});
  run_well({"plot", ".", "-o", "part.png", "--extent", "612001,5235001,612004,5235002"});
  EXPECT_NE(folder.read("part.png"), folder.read("whole.png"));
  EXPECT_TRUE(support::contains(svg_of({"--extent", "612001,5235001,612004,5235002"}), ">0.5 m<"));
  const support::RunResult beside = run({"plot", ".", "--extent", "0,0,1,1"});
  EXPECT_EQ(beside.status, 1);
  EXPECT_TRUE(support::contains(beside.err, "[612000.0,5235000.0,612006.0,5235003.0]"))
      << beside.err;
}

TEST_F(Plot, ArrowsShowTheFlowOfASnapshot) {
  simulate(flood_case());
  const std::string map = svg_of({"--field", "depth", "--time", "0.5", "--arrows"});
  EXPECT_TRUE(support::contains(map, "arrows: velocity, the longest "));
  EXPECT_TRUE(support::contains(map, "id=\"Quiver_1\""));
  EXPECT_FALSE(support::contains(svg_of({"--field", "depth"}), "arrows"));
  EXPECT_EQ(run({"plot", ".", "--arrows"}).err,
            "quillmere-export: Arrows show the flow of a snapshot: max_depth has none.\n");
}

TEST_F(Plot, ArrowsPointWhereTheWaterGoes) {
  support::Case c;  // a uniform flow to the east, over its first moment
  c.initial = [](double, double) { return support::InitialState{1.0, 0.5, 0.0}; };
  c.add_snapshots({0.0});
  simulate(c);
  const std::string map = svg_of({"--field", "depth", "--time", "0", "--arrows"});
  EXPECT_TRUE(support::contains(map, "the longest 0.5 m/s<"));
  const std::size_t quiver = map.find("id=\"Quiver_1\"");
  ASSERT_NE(quiver, std::string::npos);
  const std::size_t path = map.find("<path d=\"M ", quiver);
  const std::string points = map.substr(path + 9, map.find('"', path + 9) - path - 9);
  static const std::regex point("([-0-9.]+) ([-0-9.]+)");
  Box arrow;
  for (std::sregex_iterator i(points.begin(), points.end(), point), end; i != end; ++i) {
    arrow.add(std::stod((*i)[1].str()), std::stod((*i)[2].str()));
  }
  EXPECT_GT(arrow.east - arrow.west, 2.0 * (arrow.bottom - arrow.top));
}

TEST_F(Plot, NorthIsShownWhereTheReferenceSystemIsKnown) {
  support::Case c = flood_case();
  simulate(c);
  EXPECT_FALSE(support::contains(svg_of({}), ">N<"));
  const std::string by_option = svg_of({"--crs", "EPSG:32632"});
  EXPECT_TRUE(support::contains(by_option, ">N<"));
  EXPECT_TRUE(support::contains(by_option, "x (m) · EPSG:32632"));
  c.data["crs"] = "EPSG:32632";
  folder.write("data.json", c.data.dump());
  EXPECT_EQ(svg_of({}), by_option);
}

TEST_F(Plot, MoreDotsPerInchMakeALargerPicture) {
  simulate(flood_case());
  const auto width_at = [&](const std::string& dpi) {
    run_well({"plot", ".", "-o", "picture.png", "--dpi", dpi});
    const std::string bytes = folder.read("picture.png");
    return 256 * static_cast<unsigned char>(bytes.at(18)) +
           static_cast<unsigned char>(bytes.at(19));
  };
  EXPECT_NEAR(width_at("200"), 2 * width_at("100"), 3);
}

TEST_F(Plot, AllMakesTheFolderOfAReport) {
  simulate(flood_case());
  std::set<std::string> expected = {"gauges", "sections", "max_depth", "max_level"};
  for (const char* time : {"0s", "0.5s", "1.25s"}) {
    for (const char* field : {"depth_", "level_", "velocity_"}) {
      expected.insert(std::string(field) + time);
    }
  }
  std::set<std::string> found;
  for (const std::string& name : support::lines(run_well({"plot", ".", "--all"}).out)) {
    EXPECT_TRUE(is_png(folder.read(name))) << name;
    found.insert(std::filesystem::path(name).stem().string());
  }
  EXPECT_EQ(found, expected);
}

TEST_F(Plot, OverSandAllShowsTheChangeOfTheBed) {
  simulate(sand_case());
  run_well({"plot", ".", "--all", "-o", "pictures", "--format", "svg"});
  const std::string map = folder.read("pictures/bed_change_0.25s.svg");
  EXPECT_TRUE(support::contains(map, "bed change (m)"));
  EXPECT_FALSE(folder.has("pictures/max_level.svg"));
}

TEST_F(Plot, MapsOfOneQuantityShareTheirScale) {
  simulate(flood_case());
  run_well({"plot", ".", "--all", "-o", "pictures", "--format", "svg"});
  const auto shared = texts_beside_colours(folder.read("pictures/depth_0s.svg"));
  EXPECT_GT(shared.size(), 3u);
  EXPECT_EQ(texts_beside_colours(folder.read("pictures/depth_1.25s.svg")), shared);
  EXPECT_NE(texts_beside_colours(svg_of({"--field", "depth", "--time", "0"})), shared);
}

TEST_F(Plot, WhatTheCaseDoesNotHaveIsRefused) {
  simulate(support::Case());
  EXPECT_EQ(run({"plot", ".", "--gauges"}).err,
            "quillmere-export: ./data.json asks for no gauges.\n");
  EXPECT_EQ(run({"plot", ".", "--field", "depth"}).err,
            "quillmere-export: ./data.json asks for no snapshots of flow.\n");
  EXPECT_EQ(run({"plot", ".", "--gauges"}).status, 1);
}

TEST_F(Plot, ATitleStandsLetterByLetter) {
  simulate(flood_case());
  for (const std::string title : {"cost $5 and $6", "$\\foo$ $x_1$ 100 % {_^}", "a\\$b"}) {
    EXPECT_TRUE(support::contains(svg_of({"--title=" + title}), ">" + title + "<")) << title;
  }
  EXPECT_TRUE(support::contains(svg_of({"--title", "a <b> & c"}), ">a &lt;b&gt; &amp; c<"));
  const std::string two_lines = svg_of({"--title",
                                        "a\tb\x01"
                                        "c\nd\xff"
                                        "e"});
  EXPECT_TRUE(support::contains(two_lines, ">a b c<"));
  EXPECT_TRUE(support::contains(two_lines,
                                ">d\xEF\xBF\xBD"
                                "e<"));
}

TEST_F(Plot, TheNameOfARunIsNoFormula) {
  support::Case c = flood_case();
  c.data["name"] = "$\\frac{$ _";
  simulate(c);
  EXPECT_TRUE(support::contains(svg_of({}), ">$\\frac{$ _: largest depth<"));
  EXPECT_TRUE(support::contains(svg_of({"--gauges"}), ">$\\frac{$ _: gauges<"));
}

TEST_F(Plot, ALongTitleTakesSeveralLines) {
  simulate(flood_case());
  for (const std::string& title : {std::string(5000, 'x'), std::string(3000, '\n') + "end"}) {
    run_well({"plot", ".", "--title", title, "-o", "picture.png"});
    EXPECT_TRUE(is_png(folder.read("picture.png")));
  }
}

TEST_F(Plot, NothingInTheWorkingFolderChangesIt) {
  simulate(flood_case());
  const std::string usual = svg_of({});
  folder.write("matplotlibrc", "figure.facecolor: red\nno such key: 1\n");
  const std::string trap = "open('trap', 'w')\nraise SystemExit('trapped')\n";
  for (const char* module : {"sitecustomize", "usercustomize", "numpy", "matplotlib", "json"}) {
    folder.write(module + std::string(".py"), trap);
  }
  EXPECT_EQ(svg_of({}), usual);
  support::RunOptions options;
  options.program = "/usr/bin/env";
  const auto result = support::run_program(
      folder.path(),
      {"PYTHONPATH=.", "PYTHONSTARTUP=numpy.py", "MPLBACKEND=nonsense", "MATPLOTLIBRC=matplotlibrc",
       QUILLMERE_EXPORT_PROGRAM, "plot", ".", "-o", "picture.svg", "--dpi", "50"},
      options);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(folder.read("picture.svg"), usual);
  EXPECT_FALSE(folder.has("trap"));
}

TEST_F(Plot, ARelativeFolderForTemporaryFilesWillDo) {
  simulate(flood_case());
  std::filesystem::create_directory(folder.file("tmp"));
  support::RunOptions options;
  options.program = "/usr/bin/env";
  const auto result = support::run_program(
      folder.path(), {"TMPDIR=tmp", QUILLMERE_EXPORT_PROGRAM, "plot", ".", "-o", "picture.png"},
      options);
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_TRUE(is_png(folder.read("picture.png")));
  EXPECT_TRUE(std::filesystem::is_empty(folder.file("tmp")));
}

TEST_F(Plot, TheEndingOfTheNameTellsTheFormat) {
  simulate(flood_case());
  run_well({"plot", ".", "-o", "upper.SVG"});
  EXPECT_TRUE(support::contains(folder.read("upper.SVG"), "<svg"));
  run_well({"plot", ".", "-o", "none", "--format", "svg"});
  EXPECT_TRUE(support::contains(folder.read("none"), "<svg"));
}

TEST_F(Plot, APdfIsOneAndTheSameEveryTime) {
  simulate(flood_case());
  run_well({"plot", ".", "-o", "one.pdf"});
  run_well({"plot", ".", "-o", "two", "--format", "pdf"});
  EXPECT_TRUE(support::starts_with(folder.read("one.pdf"), "%PDF-"));
  EXPECT_EQ(folder.read("one.pdf"), folder.read("two"));
}

TEST_F(Plot, TheBedIsDrawnAlsoWhereItDoesNotMove) {
  simulate(flood_case());
  EXPECT_TRUE(support::contains(svg_of({"--field", "bed"}), "bed elevation (m)"));
}

/// Where the texts of a class of words stand, from the left and from above, in points.
std::map<std::string, std::pair<double, double>> places_of(const std::string& svg,
                                                           const std::string& pattern) {
  const std::regex text(
      "<text[^>]*transform=\"(?:translate\\(|rotate\\([-0-9.]+ )([-0-9.]+) "
      "([-0-9.]+)[^>]*>(" +
      pattern + ")</text>");
  std::map<std::string, std::pair<double, double>> places;
  for (std::sregex_iterator i(svg.begin(), svg.end(), text), end; i != end; ++i) {
    places[(*i)[3].str()] = {std::stod((*i)[1].str()), std::stod((*i)[2].str())};
  }
  return places;
}

TEST_F(Plot, ALongTitleStandsAboveTheScaleBar) {
  simulate(flood_case());
  const std::string map = svg_of({"--title", std::string(100, 'x')});
  const auto bar = places_of(map, "1 m"), title = places_of(map, "x{100}");
  ASSERT_EQ(bar.size() + title.size(), 2u) << map.substr(0, 2000);
  EXPECT_LT(title.begin()->second.second + 2.0, bar.begin()->second.second - 9.0);
}

TEST_F(Plot, ManyGaugesLeaveRoomForCurvesAndDoNotHideEachOther) {
  support::Case c = flood_case();
  std::vector<support::Point> gauges;
  for (int i = 0; i < 28; ++i)
    gauges.push_back({612002.3 + 0.02 * (i % 7), 5235001.5 + 0.02 * (i / 7)});
  c.add_gauges(gauges, 0.5);
  simulate(c);
  const std::vector<Box> numbers = boxes_of_outlined_texts(svg_of({}));
  ASSERT_EQ(numbers.size(), 28u + 2u);  // and the names of the sections
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    for (std::size_t k = 0; k < i; ++k) {
      EXPECT_FALSE(numbers[i].overlaps(numbers[k])) << i + 1 << " and " << k + 1;
    }
  }
  const std::string curves = svg_of({"--gauges"});
  EXPECT_EQ(places_of(curves, "gauge [0-9]+").size(), 28u);
  static const std::regex frame(
      "id=\"patch_2\">\\s*<path d=\"M ([0-9.]+) ([0-9.]+)\\s*L ([0-9.]+) [0-9.]+\\s*L [0-9.]+ "
      "([0-9.]+)");
  std::smatch corners;
  ASSERT_TRUE(std::regex_search(curves, corners, frame));
  const auto corner = [&](std::size_t k) { return std::stod(corners[k].str()); };
  EXPECT_GT(corner(3) - corner(1), 400.0);  // of a picture of 605 points
  EXPECT_GT(corner(2) - corner(4), 100.0);
}

TEST_F(Plot, EndedFromOutsideItLeavesNothingBehind) {
  simulate(flood_case());
  for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGKILL}) {
    SCOPED_TRACE(signal);
    support::expect_nothing_left_behind(
        folder, {QUILLMERE_EXPORT_PROGRAM, "plot", ".", "--all", "-o", "pictures"}, signal,
        [](const std::filesystem::path& place) {
          for (const std::string& process : support::processes_with(place.string())) {
            if (support::contains(process, "draw_results.py")) return true;
          }
          return false;
        });
    EXPECT_FALSE(folder.has("pictures/gauges.png"));
  }
}

TEST_F(Plot, TheSameResultsGiveTheSamePicture) {
  simulate(flood_case());
  const std::string first = svg_of({"--field", "depth"});
  EXPECT_EQ(svg_of({"--field", "depth"}), first);
}
