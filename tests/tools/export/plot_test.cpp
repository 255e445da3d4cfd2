// Pictures. SVG keeps its texts, so that a title, a unit and a scale bar can be looked for.
#include <csignal>
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
