// Cases that are made from an outline.
#include <cmath>
#include <map>
#include <set>

#include "tools/mesh/ImportTest.hpp"
#include "tools/mesh/geojson.hpp"

namespace {

using support::contains;
using support::geojson;
using support::line;
using support::polygon;
using support::Words;

struct Point {
  double x, y;
};

/// 200 m by 100 m, a building of 20 m by 10 m, a dike through it, and shorter edges in the east.
class Make : public support::ImportTest {
 protected:
  Make() {
    folder.write("o.geojson", geojson({polygon("", "[0,0], [200,0], [200,100], [0,100], [0,0]")}));
    folder.write("h.geojson",
                 geojson({polygon("", "[40,40], [60,40], [60,50], [40,50], [40,40]")}));
    folder.write(
        "b.geojson",
        geojson({line(R"("name": "dike")", "[100,0], [104.25,30.5], [97.125,61], [100,100]"),
                 line("", "[60,50], [97.125,61]")}));
    folder.write(
        "r.geojson",
        geojson({polygon(R"("size": 2)", "[150,20], [180,20], [180,60], [150,60], [150,20]")}));
  }

  support::RunResult make(Words words) {
    words.insert(words.begin(), "make");
    support::RunOptions options;
    options.program = QUILLMERE_MESH_PROGRAM;
    return support::run_program(folder.path(), words, options);
  }
  std::string make_well(Words words) {
    words.insert(words.begin(), {"o.geojson", "case", "--overwrite"});
    const auto result = make(words);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, "");
    read_mesh();
    return result.out;
  }
  std::string fault(Words words, int status = 1) {
    const auto result = make(words);
    EXPECT_EQ(result.status, status) << result.out;
    EXPECT_FALSE(folder.has("case/data.json"));
    return result.err;
  }

  void read_mesh() {
    nodes.clear();
    cells.clear();
    const auto x = column("nodes.txt", 0, 1), y = column("nodes.txt", 1, 1);
    for (std::size_t i = 0; i < x.size(); ++i) nodes.push_back({x[i], y[i]});
    const auto n = column("cells.txt", 0, 1), a = column("cells.txt", 1, 1),
               b = column("cells.txt", 2, 1), c = column("cells.txt", 3, 1);
    for (std::size_t i = 0; i < n.size(); ++i) {
      EXPECT_EQ(n[i], 3.0);
      cells.push_back({nodes.at(static_cast<std::size_t>(a[i])),
                       nodes.at(static_cast<std::size_t>(b[i])),
                       nodes.at(static_cast<std::size_t>(c[i]))});
    }
  }
  double area() const {
    double sum = 0.0;
    for (const auto& [a, b, c] : cells) {
      sum += 0.5 * ((b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y));
    }
    return sum;
  }
  bool has_node(double x, double y) const {
    for (const Point& node : nodes) {
      if (node.x == x && node.y == y) return true;
    }
    return false;
  }
  /// The longest edge of the cells whose centres lie in a box.
  double longest_edge(Point low, Point high) const {
    double longest = 0.0;
    for (const auto& cell : cells) {
      const Point center{(cell[0].x + cell[1].x + cell[2].x) / 3,
                         (cell[0].y + cell[1].y + cell[2].y) / 3};
      if (center.x < low.x || center.y < low.y || center.x > high.x || center.y > high.y) continue;
      for (std::size_t k = 0; k < 3; ++k) {
        const Point &a = cell[k], &b = cell[(k + 1) % 3];
        longest = std::max(longest, std::hypot(b.x - a.x, b.y - a.y));
      }
    }
    return longest;
  }

  std::vector<Point> nodes;
  std::vector<std::array<Point, 3>> cells;
};

const Words drawn = {"--size",       "8",         "--holes",  "h.geojson",
                     "--breaklines", "b.geojson", "--refine", "r.geojson"};

TEST_F(Make, MeshesTheOutlineLessItsHolesAlongItsBreaklines) {
  const std::string out = make_well(drawn);
  EXPECT_TRUE(contains(out, " triangles, 19800 m2.\nLeft out 1 hole.\n")) << out;
  EXPECT_NEAR(area(), 19800.0, 1e-9 * 19800.0);
  for (const Point& vertex : std::vector<Point>{{0, 0},
                                                {200, 100},
                                                {40, 40},
                                                {60, 50},
                                                {100, 0},
                                                {104.25, 30.5},
                                                {97.125, 61},
                                                {100, 100}}) {
    EXPECT_TRUE(has_node(vertex.x, vertex.y)) << vertex.x << ", " << vertex.y;
  }
  EXPECT_LT(longest_edge({0, 0}, {200, 100}), 1.7 * 8.0);
  EXPECT_GT(longest_edge({0, 0}, {30, 100}), 0.7 * 8.0);
  EXPECT_LT(longest_edge({152, 22}, {178, 58}), 1.7 * 2.0);
  EXPECT_GT(longest_edge({152, 22}, {178, 58}), 0.7 * 2.0);
}

TEST_F(Make, GivesTheSameBytesForTheSameInputs) {
  make_well(drawn);
  std::map<std::string, std::string> files;
  for (const char* name : {"nodes.txt", "cells.txt", "edges.txt", "data.json"}) {
    files[name] = folder.read(std::string("case/") + name);
  }
  make_well(drawn);
  for (const auto& [name, text] : files) EXPECT_EQ(folder.read("case/" + name), text) << name;
}

TEST_F(Make, MakesACaseThatRuns) {
  folder.write("dem.asc", support::asc_grid(23, 13, -10, -10, 10,
                                            [](double x, double) { return 10.0 - 0.01 * x; }));
  folder.write(
      "open.geojson",
      geojson({line(R"("name": "in", "kind": "discharge", "value": "-30m3/s")", "[0,0], [0,100]"),
               line(R"("name": "out", "kind": "transmissive")", "[200,0], [200,100]")}));
  Words words = drawn;
  for (const char* word :
       {"--terrain", "dem.asc", "--boundaries", "open.geojson", "--section", "dike", "--friction",
        "0.03", "--level", "9", "--gauge", "pier=20,50", "--end", "5"}) {
    words.emplace_back(word);
  }
  const std::string out = make_well(words);
  EXPECT_TRUE(contains(out, "Section dike: ")) << out;
  EXPECT_NEAR(column("nodes.txt", 2, 1).front(), 10.0, 1e-9);
  EXPECT_EQ(data()["name"], "o");
  run_case();
  EXPECT_GT(lines("out/sections.txt").size(), 3U);
}

TEST_F(Make, TellsHowWellTheMeshWillRun) {
  const std::string out = make_well({"--size", "20"});
  EXPECT_TRUE(contains(out, "Made a mesh of o.geojson (meshed with Gmsh ")) << out;
  EXPECT_TRUE(contains(out, "The smallest angle is ")) << out;
  EXPECT_TRUE(contains(out, " degrees, at (")) << out;
  EXPECT_TRUE(contains(out, ": under 1 m of water at rest an hour takes about ")) << out;
}

TEST_F(Make, MeshesHousesThatTouchEachOtherAndTheBorder) {
  folder.write("h.geojson", geojson({polygon("", "[40,40], [60,40], [60,50], [40,50], [40,40]"),
                                     polygon("", "[60,40], [80,40], [80,60], [60,60], [60,40]"),
                                     polygon("", "[80,60], [90,60], [90,70], [80,70], [80,60]"),
                                     polygon("", "[0,0], [10,0], [10,10], [0,10], [0,0]")}));
  make_well({"--size", "8", "--holes", "h.geojson"});
  const double expected = 20000.0 - 200.0 - 400.0 - 100.0 - 100.0;
  EXPECT_NEAR(area(), expected, 1e-9 * expected);
  EXPECT_FALSE(has_node(0, 0));
}

TEST_F(Make, KeepsThePointsOfLargeCoordinates) {
  folder.write("o.geojson", geojson({polygon("",
                                             "[500123.25,5400321.7], [500223.5,5400321.7], "
                                             "[500223.5,5400421.1], [500123.25,5400321.7]")}));
  const auto result = make({"o.geojson", "case", "--size", "10"});
  EXPECT_EQ(result.status, 0) << result.err;
  read_mesh();
  EXPECT_TRUE(has_node(500123.25, 5400321.7));
  EXPECT_TRUE(has_node(500223.5, 5400421.1));
}

TEST_F(Make, TakesTheReferenceSystemOfTheOutline) {
  const std::string source = folder.write(
      "utm.geojson", geojson({polygon("",
                                      "[500000,5400000], [500200,5400000], [500200,5400100], "
                                      "[500000,5400100], [500000,5400000]")}));
  support::convert(source, folder.file("o.gpkg"), {"-f", "GPKG", "-a_srs", "EPSG:32632"});
  const std::string dike =
      folder.write("dike.geojson", geojson({line("", "[500050,5400010], [500060,5400080]")}));
  support::convert(dike, folder.file("dike.gpkg"),
                   {"-f", "GPKG", "-s_srs", "EPSG:32632", "-t_srs", "EPSG:4326"});
  support::convert(source, folder.file("degrees.gpkg"),
                   {"-f", "GPKG", "-s_srs", "EPSG:32632", "-t_srs", "EPSG:4326"});
  const auto result = make({"o.gpkg", "case", "--size", "20", "--breaklines", "dike.gpkg"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(data()["crs"], "EPSG:32632");
  std::filesystem::remove(folder.file("case/data.json"));
  EXPECT_TRUE(contains(fault({"degrees.gpkg", "case", "--size", "20"}),
                       "degrees.gpkg: its coordinates are degrees; expected metres, or the system "
                       "to mesh it in, as --crs EPSG:32632."));
  const auto moved = make({"degrees.gpkg", "new", "--size", "20", "--crs", "EPSG:32632"});
  EXPECT_EQ(moved.status, 0) << moved.err;
}

/// Its first corner lies in its middle, nearer to all others than an edge is long.
TEST_F(Make, LooksForRoomForAnEdgeBetweenAllCorners) {
  folder.write("o.geojson", geojson({polygon("", "[0,1], [-6,0], [6,0], [0,1]")}));
  make_well({"--size", "8"});
  EXPECT_NEAR(area(), 6.0, 1e-9);
}

TEST_F(Make, RefusesWhatCannotBeMeshed) {
  const auto with = [](Words more) {
    Words words = {"o.geojson", "case", "--size", "8"};
    words.insert(words.end(), more.begin(), more.end());
    return words;
  };
  const auto outline = [&](const std::string& features) {
    folder.write("f.geojson", geojson({features}));
    return fault({"f.geojson", "case", "--size", "8"});
  };
  EXPECT_TRUE(
      contains(outline(polygon("", "[0,0], [200,100], [200,0], [0,100], [-9,0], [0,0]")),
               "f.geojson, feature 1: its ring crosses or touches itself at (100.000, 50.000)"));
  EXPECT_TRUE(contains(outline(line("", "[0,0], [200,100]")), "found a line, expected a polygon"));
  EXPECT_TRUE(contains(outline(support::feature("", "Point", "[7.1,50.1]")),
                       "found a point, expected a polygon"));
  EXPECT_TRUE(contains(outline(support::feature("", "Polygon", "[]")), "it has no shape"));
  EXPECT_TRUE(
      contains(outline(polygon("", "[7.1,50.1], [7.2,50.1], [7.2,50.2], [7.1,50.1]")),
               "f.geojson, feature 1: it covers x 7.1 to 7.2 m, y 50.1 to 50.2 m, less than "
               "an edge of 8 m"));
  EXPECT_TRUE(contains(outline(support::feature("", "MultiPolygon",
                                                "[[[[0,0],[50,0],[50,50],[0,0]]],"
                                                "[[[90,0],[99,0],[99,9],[90,0]]]]")),
                       "found a second ring at (90.000, 0.000) outside of the first"));
  EXPECT_TRUE(contains(fault({"none.geojson", "case", "--size", "8"}),
                       "none.geojson: the file cannot be opened."));
  folder.write("f.geojson",
               geojson({polygon("", "[190,40], [210,40], [210,50], [190,50], [190,40]")}));
  EXPECT_TRUE(contains(fault(with({"--holes", "f.geojson"})),
                       "f.geojson, feature 1: the hole lies outside of the outline at ("));
  folder.write("f.geojson", geojson({line("", "[10,10], [210,10]")}));
  EXPECT_TRUE(
      contains(fault(with({"--breaklines", "f.geojson"})),
               "f.geojson, feature 1: the breakline leaves the outline at (205.000, 10.000)"));
  for (const auto& [properties, message] : std::map<std::string, std::string>{
           {"", "it has no attribute size"},
           {R"("size": "fine")", "found the size \"fine\", expected a number"},
           {R"("size": 9)",
            "found the size 9, expected one above 0 and up to 8, that of --size"}}) {
    folder.write("f.geojson", geojson({polygon(properties, "[0,0], [9,0], [9,9], [0,0]")}));
    EXPECT_TRUE(contains(fault(with({"--refine", "f.geojson"})), message)) << message;
  }
  EXPECT_TRUE(
      contains(fault({"o.geojson", "case", "--size", "0.01"}),
               "o.geojson: edges of 0.01 m make about 461880215 cells of 20000 m2; expected "
               "longer ones (--size, --refine), or a higher --most-cells than 2000000."));
  EXPECT_TRUE(contains(fault({"o.geojson", "case", "--size", "8", "--most-cells", "100"}),
                       "a higher --most-cells than 100."));
  EXPECT_TRUE(contains(fault({"o.geojson", "case", "--size", "-1"}, 2), "--size: must be above 0"));
  EXPECT_TRUE(contains(fault({"o.geojson", "case"}, 2), "--size is required"));
}

}  // namespace
