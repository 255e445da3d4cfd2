// Pictures. SVG keeps its texts, so that a title, a unit and a scale bar can be looked for.
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
    std::vector<std::string> arguments = {"plot", ".", "-o", "picture.svg"};
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
       QUILLMERE_EXPORT_PROGRAM, "plot", ".", "-o", "picture.svg"},
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

TEST_F(Plot, ManyGaugesLeaveRoomForCurvesAndDoNotHideEachOther) {
  support::Case c = flood_case();
  std::vector<support::Point> gauges;
  for (int i = 0; i < 28; ++i)
    gauges.push_back({612002.3 + 0.02 * (i % 7), 5235001.5 + 0.02 * (i / 7)});
  c.add_gauges(gauges, 0.5);
  simulate(c);
  const std::vector<Box> numbers = boxes_of_outlined_texts(svg_of({}));
  ASSERT_EQ(numbers.size(), 28u);
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
