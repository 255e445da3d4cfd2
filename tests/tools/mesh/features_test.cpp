// Boundaries, sections, gauges and zones that are drawn, not named in the mesh.
#include <cmath>
#include <map>
#include <numeric>
#include <set>

#include "tools/mesh/ImportTest.hpp"
#include "tools/mesh/geojson.hpp"

namespace {

using support::contains;
using support::convert;
using support::feature;
using support::geojson;
using support::line;
using support::polygon;
using support::Words;

class Features : public support::ImportTest {
 protected:
  /// The boundary edges of a code, as middles of their nodes.
  std::set<std::pair<double, double>> middles_of(int code) {
    const auto x = column("nodes.txt", 0, 1), y = column("nodes.txt", 1, 1);
    std::set<std::pair<double, double>> middles;
    for (const auto& text : lines("edges.txt")) {
      std::istringstream words(text);
      std::size_t left, node1, node2;
      int right, of_edge;
      if (!(words >> left >> right >> node1 >> node2 >> of_edge) || of_edge != code) continue;
      middles.insert({0.5 * (x.at(node1) + x.at(node2)), 0.5 * (y.at(node1) + y.at(node2))});
    }
    return middles;
  }
  nlohmann::json names() { return nlohmann::json::parse(folder.read("case/names.json")); }

  const std::set<std::pair<double, double>> west = {{0.0, 0.5}, {0.0, 1.5}, {0.0, 2.5}};
  const std::string west_line = "[-0.2, -0.1], [0.1, 1.4], [0.0, 3.2]";
};

TEST_F(Features, LeadFromAMeshWithoutNamesToAnOutflowHydrograph) {
  sample.nx = 30;
  sample.ny = 20;
  sample.z = [](double x, double) { return 100.0 - 0.002 * x; };
  std::string mesh;
  for (const auto& text : support::lines(sample.sms())) {
    if (!text.starts_with("NS")) mesh += text + "\n";
  }
  folder.write("river.2dm", mesh);
  folder.write("open.geojson",
               geojson({line(R"("name": "inflow", "kind": "discharge", "value": "-40m3/s")",
                             "[-0.4, 0.2], [-0.3, 19.9]"),
                        line(R"("name": "outflow", "kind": "level", "value": 101.5)",
                             "[30.2, 20], [30.3, 0]")}));
  const auto result = import({"river.2dm", "case", "--boundaries", "open.geojson", "--level",
                              "101.5", "--friction", "0.03", "--end", "10min"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.err, "");
  EXPECT_TRUE(
      contains(result.out,
               "Boundary inflow (open.geojson, feature 1): 20 edges, no further than 0.45 m "
               "from the line.\n"))
      << result.out;
  EXPECT_TRUE(contains(result.out, "-40 m3/s (in)")) << result.out;
  EXPECT_EQ(names()["sections"], (nlohmann::json{"inflow", "outflow"}));
  run_case();
  EXPECT_NEAR(column("out/sections.txt", 1, 0).back(), -40.0, 0.8);
  EXPECT_NEAR(column("out/sections.txt", 2, 0).back(), 40.0, 0.8);
}

TEST_F(Features, OfEveryFormatGiveTheSameBoundary) {
  const std::string text = geojson(
      {line(R"("name": "in", "kind": "discharge", "value": -1.5, "unit": "m3/s")", west_line)});
  const std::string source = folder.write("a.geojson", text);
  convert(source, folder.file("a.gpkg"), {"-f", "GPKG", "-a_srs", "EPSG:32632"});
  convert(source, folder.file("a.shp"), {"-f", "ESRI Shapefile", "-a_srs", "EPSG:32632"});
  std::string edges;
  for (const char* name : {"a.geojson", "a.gpkg", "a.shp"}) {
    SCOPED_TRACE(name);
    import_well({"--boundaries", name, "--overwrite"});
    EXPECT_EQ(middles_of(-3), west);
    if (edges.empty()) edges = folder.read("case/edges.txt");
    EXPECT_EQ(folder.read("case/edges.txt"), edges);
  }
}

TEST_F(Features, AreMovedToTheReferenceSystemOfTheMesh) {
  sample.x0 = 500000.0;
  sample.y0 = 5400000.0;
  folder.write("m.msh", sample.msh4(true));
  const std::string source =
      folder.write("utm.geojson", geojson({line(R"("name": "in", "kind": "transmissive")",
                                                "[500000, 5400000], [500000, 5400003]")}));
  convert(source, folder.file("degrees.geojson"),
          {"-f", "GeoJSON", "-s_srs", "EPSG:32632", "-t_srs", "EPSG:4326", "-lco",
           "COORDINATE_PRECISION=9"});
  EXPECT_FALSE(contains(folder.read("degrees.geojson"), "500000"));
  for (const char* name : {"utm.geojson", "degrees.geojson"}) {
    SCOPED_TRACE(name);
    const auto result =
        import({"m.msh", "case", "--boundaries", name, "--crs", "EPSG:32632", "--overwrite"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(middles_of(-2).size(), 3U);
  }
}

TEST_F(Features, ThatAreLinesTakeNoEdgesAroundTheCorner) {
  folder.write(
      "b.geojson",
      geojson({line(R"("name": "in", "kind": "transmissive")", "[0.3, -0.9], [0.3, 3.9]")}));
  import_well({"--boundaries", "b.geojson", "--snap", "1.5"});
  EXPECT_EQ(middles_of(-2), west);
}

TEST_F(Features, ThatArePolygonsTakeTheEdgesInside) {
  folder.write("b.geojson",
               geojson({polygon(R"("name": "in", "kind": "transmissive")",
                                "[-1, 1.1], [1.2, 1.1], [1.2, 9], [-1, 9], [-1, 1.1]")}));
  EXPECT_TRUE(contains(import_well({"--boundaries", "b.geojson"}),
                       "Boundary in (b.geojson, feature 1): 3 edges inside of the polygon.\n"));
  EXPECT_EQ(middles_of(-2), (std::set<std::pair<double, double>>{{0, 1.5}, {0, 2.5}, {0.5, 3}}));
}

TEST_F(Features, MayHaveSeriesBesideTheirFileAndPositiveInflows) {
  folder.write("gis/q.csv", "t [s], Q [m3/s]\n0, 1.5\n60, 3\n");
  folder.write("gis/b.geojson",
               geojson({line(R"("name": "in", "kind": "discharge", "series": "q.csv",
                                "reversed": true, "spread": "even")",
                             west_line)}));
  import_well({"--boundaries", "gis/b.geojson", "--level", "1"});
  EXPECT_EQ(data()["tend"], 60.0);
  const auto values = column("boundary_in.txt", 1, 1);
  EXPECT_NEAR(values.at(0), -0.5, 1e-15);
  EXPECT_NEAR(values.at(1), -1.0, 1e-15);
}

TEST_F(Features, BecomeSectionsOfAChainOfEdges) {
  folder.write("s.geojson",
               geojson({line(R"("name": "bridge")", "[2.1, -0.5], [1.9, 1.5], [2.0, 3.5]"),
                        line(R"("name": "weir", "reversed": true)", "[3.1, 0.1], [3.0, 2.9]")}));
  const std::string out =
      import_well({"--sections", "s.geojson", "--level", "1", "--boundary",
                   "west=discharge:-1.5m3/s", "--boundary", "east=transmissive", "--end", "100"});
  EXPECT_TRUE(
      contains(out, "Section bridge (s.geojson, feature 1): 3 edges, no further than 0.075 m"))
      << out;
  EXPECT_TRUE(contains(out, "Section bridge: 3 edges, 3 m, discharge positive towards (1, 0)"))
      << out;
  EXPECT_TRUE(contains(out, "Section weir: 3 edges, 3 m, discharge positive towards (-1, 0)"))
      << out;
  EXPECT_EQ(names()["sections"], (nlohmann::json{"bridge", "weir", "west", "east"}));
  run_case();
  EXPECT_NEAR(column("out/sections.txt", 1, 0).back(), 1.5, 0.15);
  EXPECT_NEAR(column("out/sections.txt", 2, 0).back(), -1.5, 0.15);
}

TEST_F(Features, BecomeGaugesInCells) {
  folder.write("g.geojson", geojson({feature(R"("name": "pier", "id": 7)", "Point", "[1.5, 0.1]"),
                                     feature("", "Point", "[4.4, 2.6]")}));
  const std::string out =
      import_well({"--gauges", "g.geojson", "--gauge", "quay=0.2,2.5", "--gauge", "0.9,0.3"});
  EXPECT_TRUE(contains(out, "Gauge pier (g.geojson, feature 1): at (1.500, 0.100).\n")) << out;
  EXPECT_TRUE(contains(out, "m from where it was drawn.\n")) << out;
  EXPECT_TRUE(contains(out, "g.geojson: attributes without a meaning here: id.\n")) << out;
  EXPECT_EQ(names()["gauges"], (nlohmann::json{"quay", "", "pier", "gauge 2"}));
  EXPECT_EQ(column("gauges.txt", 0, 1).at(2), 1.5);
  EXPECT_LT(column("gauges.txt", 0, 1).at(3), 4.0);
}

TEST_F(Features, BecomeZonesWhoseValuesTheCommandLineReplaces) {
  const std::string square = "[-1, -1], [1.5, -1], [1.5, 9], [-1, 9], [-1, -1]";
  const std::string sea = "[2, -1], [9, -1], [9, 9], [2, 9], [2, -1]";
  folder.write(
      "z.geojson",
      geojson({polygon(R"("name": "forest", "friction": 0.1)", square),
               polygon(R"("name": "sea", "friction": 0.02, "level": 3.5)", sea),
               polygon(R"("name": "far", "friction": 1)", "[90, 0], [91, 0], [91, 1], [90, 0]")}));
  const std::string out = import_well({"--zones", "z.geojson", "--friction", "0.05"});
  EXPECT_TRUE(contains(out, "Zone forest: 1 feature, 9 cells, friction 0.1.\n")) << out;
  EXPECT_TRUE(contains(out, "Zone far: 1 feature, 0 cells, friction 1.\n")) << out;
  EXPECT_TRUE(contains(out, "Water stands in 12 of 24 cells")) << out;
  std::map<double, int> counts;
  for (const double n : column("friction.txt", 0, 0)) ++counts[n];
  EXPECT_EQ(counts, (std::map<double, int>{{0.02, 12}, {0.05, 3}, {0.1, 9}}));
  import_well(
      {"--zones", "z.geojson", "--friction", "0.05", "--friction", "forest=0.2", "--overwrite"});
  counts.clear();
  for (const double n : column("friction.txt", 0, 0)) ++counts[n];
  EXPECT_EQ(counts, (std::map<double, int>{{0.02, 12}, {0.05, 3}, {0.2, 9}}));
}

TEST_F(Features, FarFromTheMeshAreRefusedWithBothExtents) {
  folder.write("b.geojson",
               geojson({line(R"("name": "in", "kind": "transmissive")", "[100, 0], [100, 3]")}));
  const std::string err = import_badly(1, {"--boundaries", "b.geojson", "--snap", "0.5"});
  EXPECT_TRUE(contains(err,
                       "b.geojson, feature 1: \"in\" goes along no edge of the boundary within 0.5 "
                       "m; it covers x 100 to 100 m, y 0 to 3 m, the mesh x 0 to 4 m, y 0 to 3 m. "
                       "Expected a line along half an edge or more, or a larger --snap."))
      << err;
  folder.write("s.geojson", geojson({line("", "[100, 0], [100, 3]")}));
  EXPECT_TRUE(contains(import_badly(1, {"--sections", "s.geojson"}),
                       "\"section 1\" is followed by no chain of inner edges within"));
  folder.write("g.geojson", geojson({feature("", "Point", "[100, 0]")}));
  EXPECT_TRUE(contains(import_badly(1, {"--gauges", "g.geojson"}), "\"gauge 1\" lies in no cell"));
}

TEST_F(Features, ThatAreFaultyAreRefusedWithTheirNumber) {
  const std::map<std::string, std::string> faults = {
      {line(R"("name": "a")", west_line),
       "found the kind \"\", expected one of the kinds transmissive"},
      {line(R"("name": "a", "kind": "level", "value": "high")", west_line),
       "found the kind \"level\" with \"high\", expected a number after \"level:\", in m"},
      {line(R"("name": "a", "kind": "wall", "reversed": true)", west_line),
       "reversed turns the sign of a discharge"},
      {line(R"("name": "a", "kind": "wall", "reversed": "perhaps")", west_line),
       "found the attribute reversed \"perhaps\", expected true or false"},
      {line(R"("name": "west", "kind": "wall")", west_line),
       "the mesh has a line \"west\" already; expected another name"},
      {line(R"("name": "a=b", "kind": "wall")", west_line), "expected one without \"=\""},
      {line(R"("kind": "discharge", "value": "-4m3/s", "spread": "wet")", west_line),
       "found the spread \"wet\", expected even or a level"},
      {line(R"("kind": "level", "value": 1, "series": "x")", west_line),
       "found a value and a series, expected one of them"},
      {feature(R"("kind": "wall")", "Point", "[0, 0]"), "expected a line along the boundary"},
      {R"({"type": "Feature", "properties": {}, "geometry": null})", "it has no shape"}};
  for (const auto& [text, message] : faults) {
    folder.write("b.geojson", geojson({text}));
    const std::string err = import_badly(1, {"--boundaries", "b.geojson"});
    EXPECT_TRUE(contains(err, "b.geojson, feature 1: ")) << err;
    EXPECT_TRUE(contains(err, message)) << err;
  }
  folder.write("b.geojson", "no features");
  EXPECT_TRUE(contains(import_badly(1, {"--boundaries", "b.geojson"}),
                       "b.geojson: no features can be read"));
  EXPECT_TRUE(
      contains(import_badly(1, {"--zones", "none.gpkg"}), "none.gpkg: the file cannot be opened."));
  folder.write("z.geojson", geojson({polygon(R"("rain": 3)", "[0,0], [9,0], [9,9], [0,0]")}));
  EXPECT_TRUE(contains(import_badly(2, {"--zones", "z.geojson"}), "--hyetograms"));
}

}  // namespace
