// The command as users run it, and the simulator on the cases it makes.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <utility>

#include "tools/mesh/ImportTest.hpp"
#include "tools/mesh/geotiff.hpp"

namespace {

using support::contains;
using support::Words;
using Import = support::ImportTest;

TEST_F(Import, MakesACaseOfEveryFormatThatRuns) {
  folder.write("a.msh", sample.msh2(false));
  folder.write("b.msh", sample.msh2(true));
  folder.write("c.msh", sample.msh4(false));
  folder.write("d.2dm", sample.sms());
  import_well({"--level", "1.5", "--end", "2"});
  run_case();
  const std::string edges = folder.read("case/edges.txt");
  EXPECT_EQ(support::lines(edges).size(), 1U + 43U);
  for (const char* file : {"a.msh", "b.msh", "c.msh", "d.2dm"}) {
    SCOPED_TRACE(file);
    const auto result = import({file, "case", "--level", "1.5", "--end", "2", "--overwrite"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(folder.read("case/edges.txt"), edges);
    run_case();
  }
}

TEST_F(Import, LetsAFloodRunThroughAndMeasuresIt) {
  folder.write("flood.txt", "3\n0 -0.5\n30 -1\n200 -1\n");
  const std::string out = import_well({"--level", "0.8", "--friction", "0.03", "--boundary",
                                       "west=hydrograph:flood.txt", "--boundary", "east=level:0.8",
                                       "--section", "gate"});
  EXPECT_EQ(data()["tend"], 200.0);
  EXPECT_TRUE(contains(out, "Section gate: 3 edges, 3 m, discharge positive towards (1, 0)"));
  run_case();
  // In the end 1 m2/s passes through 3 m.
  const auto discharge = column("out/sections.txt", 1, 0);
  ASSERT_GT(discharge.size(), 50U);
  EXPECT_NEAR(discharge.back(), 3.0, 0.1);
  EXPECT_EQ(lines("out/pic_180_00.txt").size(), 1U + 24U);
  EXPECT_GT(lines("out/gauges.txt").size(), 50U);
  EXPECT_FALSE(contains(folder.read("case/out/gauges.txt"), "nan"));
}

TEST_F(Import, LeavesALakeWithAnIslandAtRest) {
  sample.nx = 8;
  sample.ny = 8;
  sample.z = [](double x, double y) {
    return std::max(0.0, 1.4 - 0.4 * std::hypot(x - 3.7, y - 4.2)) + 0.03 * x;
  };
  folder.write("m.msh", sample.msh2(false));
  import_well({"--level", "0.6", "--end", "20"});
  run_case();
  std::size_t n_dry = 0;
  for (const double depth : column("out/pic_18_00.txt", 3, 1)) n_dry += depth < 1e-3;
  EXPECT_GT(n_dry, 5U);
  for (const std::size_t discharge : {4U, 5U}) {
    for (const double q : column("out/pic_18_00.txt", discharge, 1)) EXPECT_NEAR(q, 0.0, 1e-12);
  }
}

TEST_F(Import, PrintsEveryBoundary) {
  folder.write("tide.txt", "2\n0 1.25\n100 2\n");
  EXPECT_TRUE(contains(import_well({"--boundary", "west=discharge:-0.5"}),
                       "boundary    kind                     edges        length  first value\n"
                       "west        discharge                    3           3 m  -0.5 m2/s (1.5 "
                       "m3/s in)\n"
                       "east        wall (not given)             3           3 m  -\n"
                       "(no name)   wall                         8           8 m  -\n"));
  EXPECT_TRUE(contains(import_well({"--boundary", "east=limnigraph:tide.txt", "--boundary",
                                    "west=transmissive", "--overwrite"}),
                       "west        transmissive                 3           3 m  -\n"
                       "east        limnigraph                   3           3 m  1.25 m\n"));
  EXPECT_EQ(folder.read("case/boundary_east.txt"), "2\n0 1.25\n100 2\n");
  int n_limnigraph = 0;
  for (const auto& line : lines("edges.txt")) {
    n_limnigraph += contains(line, " -44 boundary_east.txt");
  }
  EXPECT_EQ(n_limnigraph, 3);
}

TEST_F(Import, ReadsTextBehindAByteOrderMarkAndNamesUtf16) {
  const auto in_utf16 = [](const std::string& text) {
    std::string wide;
    for (const char c : text) wide.append({c, '\0'});
    return wide;
  };
  const std::string geo =
      "Point(1) = {0, 0, 0, 1};\nPoint(2) = {1, 0, 0, 1};\nPoint(3) = {0, 1, 0, 1};\n"
      "Line(1) = {1, 2};\nLine(2) = {2, 3};\nLine(3) = {3, 1};\nCurve Loop(1) = {1, 2, 3};\n"
      "Plane Surface(1) = {1};\n";
  const std::string rain = "1\n5 1 60\n0 1e-5\n";
  const std::string grid =
      support::asc_grid(9, 9, -2.0, -2.0, 1.0, [](double x, double) { return 0.1 * x; });
  std::vector<std::pair<std::string, Words>> readers = {
      {sample.msh2(false), {"x.msh", "case"}},
      {sample.sms(), {"x.2dm", "case"}},
      {grid, {"m.msh", "case", "--terrain", "x.asc"}},
      {rain, {"m.msh", "case", "--rain", "5", "--hyetograms", "x.txt"}},
      {"2\n0 -1\n9 -1\n", {"m.msh", "case", "--boundary", "west=hydrograph:x.txt"}}};
#ifdef QUILLMERE_HAS_GMSH
  readers.push_back({geo, {"x.geo", "case"}});
#endif
  for (const auto& [text, words] : readers) {
    const std::string& last = words.back();
    const std::string name = last == "case" ? words.front() : last.substr(last.find(':') + 1);
    SCOPED_TRACE(name);
    Words again = words;
    again.push_back("--overwrite");
    folder.write(name, "\xEF\xBB\xBF" + text);
    EXPECT_EQ(import(again).err, "");
    for (const char* mark : {"", "\xFF\xFE"}) {
      folder.write(name, mark + in_utf16(text));
      EXPECT_EQ(import(again).err, "quillmere-mesh: Error in file " + name +
                                       ": it is UTF-16 text, expected plain text (UTF-8 or "
                                       "ASCII).\n");
    }
  }
}

TEST_F(Import, SaysWhatItTurned) {
  sample.clockwise = true;
  folder.write("m.msh", sample.msh4(true));
  const std::string out = import_well({});
  EXPECT_TRUE(contains(out, "Turned 24 cells to run counter-clockwise.\n"));
  EXPECT_TRUE(contains(out, " edges to name the lower cell first"));
}

TEST_F(Import, SplitsQuadrilaterals) {
  folder.write("q.2dm", sample.sms(true));
  const auto result = import({"q.2dm", "case", "--level", "1", "--end", "1"});
  EXPECT_TRUE(contains(result.out, "Split 12 quadrilaterals into triangles"));
  EXPECT_EQ(lines("cells.txt").at(0), "24");
  run_case();
}

TEST_F(Import, TakesElevationsFromTerrain) {
  folder.write("dem.asc", support::asc_grid(10, 10, -1.0, -1.0, 1.0, [](double x, double y) {
                 return 3.0 + 0.5 * x - 0.25 * y;
               }));
  import_well({"--terrain", "dem.asc"});
  const auto x = column("nodes.txt", 0, 1), y = column("nodes.txt", 1, 1);
  const auto z = column("nodes.txt", 2, 1);
  ASSERT_EQ(z.size(), 20U);
  for (std::size_t i = 0; i < z.size(); ++i) {
    EXPECT_NEAR(z[i], 3.0 + 0.5 * x[i] - 0.25 * y[i], 1e-9);
  }
}

TEST_F(Import, WarnsOfOddGroundOnce) {
  sample.x0 = 7.0;
  sample.y0 = 46.0;
  folder.write("m.msh", sample.msh4(true));
  const auto degrees = import({"m.msh", "case"});
  EXPECT_EQ(degrees.status, 0);
  EXPECT_EQ(degrees.err,
            "Warning: the coordinates run from (7, 46) to (11, 49): are they degrees? metres of a "
            "projected system are expected.\n");
  sample.x0 = sample.y0 = 0.0;
  sample.z = [](double x, double) { return 7.0 * x; };
  folder.write("m.msh", sample.msh4(true));
  const auto steep = import({"m.msh", "steep"});
  EXPECT_TRUE(contains(steep.err, "are they degrees?")) << steep.err;
  EXPECT_EQ(import({"m.msh", "bed", "--bed", "3"}).err, "");
}

#ifdef QUILLMERE_HAS_GDAL
TEST_F(Import, WarnsOfARasterInAnotherSystem) {
  support::write_geotiff(
      folder.file("dem.tif"), 20, 20, -5.0, -5.0, 1.0, [](double x, double) { return 0.1 * x; },
      25832);
  const Words words = {"m.msh", "case", "--overwrite", "--terrain", "dem.tif"};
  EXPECT_EQ(import(words).err, "");
  Words same = words, other = words, unknown = words;
  same.insert(same.end(), {"--crs", "EPSG:25832"});
  other.insert(other.end(), {"--crs", "EPSG:32633"});
  unknown.insert(unknown.end(), {"--crs", "EPSG:99999"});
  EXPECT_EQ(import(same).err, "");
  EXPECT_EQ(import(other).err,
            "Warning: dem.tif: the raster is in ETRS89 / UTM zone 32N, the mesh in WGS 84 / UTM "
            "zone 33N (EPSG:32633): its values lie at other places. Expected a raster that is "
            "warped to the system of the mesh.\n");
  EXPECT_EQ(import(unknown).status, 1);
}

TEST_F(Import, TakesTheReferenceSystemOfTheTerrainUnlessItIsGiven) {
  support::write_geotiff(
      folder.file("dem.tif"), 20, 20, -5.0, -5.0, 1.0, [](double, double) { return 1.0; }, 25832);
  EXPECT_TRUE(contains(import_well({"--terrain", "dem.tif"}),
                       "The coordinate reference system is EPSG:25832, as of the terrain.\n"));
  EXPECT_EQ(nlohmann::json::parse(folder.read("case/data.json"))["crs"], "EPSG:25832");
  import({"m.msh", "other", "--terrain", "dem.tif", "--crs", "EPSG:32633"});
  EXPECT_EQ(nlohmann::json::parse(folder.read("other/data.json"))["crs"], "EPSG:32633");
}

TEST_F(Import, RefusesACodeThatGdalDoesNotKnow) {
  EXPECT_EQ(import_badly(1, {"--crs", "EPSG:99999"}),
            "quillmere-mesh: --crs: EPSG:99999 is not known; expected the code of a coordinate "
            "reference system.\n");
}
#endif

TEST_F(Import, WritesWhereAndWhenTheCaseTakesPlace) {
  const std::string said = import_well({"--crs", "epsg:32632", "--epoch", "2026-05-01T06:00:00Z"});
  EXPECT_TRUE(contains(said, "The coordinate reference system is EPSG:32632.\n")) << said;
  const auto data = nlohmann::json::parse(folder.read("case/data.json"));
  EXPECT_EQ(data["crs"], "EPSG:32632");
  EXPECT_EQ(data["epoch"], "2026-05-01T06:00:00Z");
}

TEST_F(Import, ClaimsNoPlaceAndDateThatNobodyGave) {
  import_well({});
  const auto data = nlohmann::json::parse(folder.read("case/data.json"));
  EXPECT_FALSE(data.contains("crs"));
  EXPECT_FALSE(data.contains("epoch"));
}

TEST_F(Import, RefusesAPlaceAndADateThatMakeNoSense) {
  constexpr int wrong_usage = 2;
  EXPECT_TRUE(contains(import_badly(wrong_usage, {"--crs", "UTM"}),
                       "found \"UTM\", expected EPSG: and a number"));
  EXPECT_TRUE(contains(import_badly(wrong_usage, {"--epoch", "2026-02-30T00:00:00Z"}),
                       "expected a date and hour, UTC"));
}

TEST_F(Import, RefusesMissingTerrainUnlessItMayFillIt) {
  folder.write("dem.asc",
               support::asc_grid(3, 10, -1.0, -1.0, 1.0, [](double, double) { return 3.0; }));
  EXPECT_TRUE(contains(
      import_badly(1, {"--terrain", "dem.asc"}),
      "dem.asc: no data at 8 of 20 nodes, the first one at (3.000, 0.000); the "
      "raster covers x -1 to 2 m, y -1 to 9 m, the mesh x 0 to 4 m, y 0 to 3 m; expected"));
  EXPECT_TRUE(contains(import_well({"--terrain", "dem.asc", "--fill", "2"}),
                       "No terrain under 8 nodes: filled with 2 m.\n"));
  EXPECT_EQ(column("nodes.txt", 2, 1).at(3), 2.0);
}

TEST_F(Import, GivesCellsTheValuesOfTheirSurfaces) {
  import_well(
      {"--friction", "0.06", "--friction", "left=0.03", "--level", "right=2", "--bed", "left=0.5"});
  const auto friction = column("friction.txt", 0, 0), level = column("initial.txt", 0, 0);
  const auto bed = column("bed.txt", 0, 0);
  ASSERT_EQ(friction.size(), 24U);
  for (std::size_t i = 0; i < 24; ++i) {
    const bool is_left = i < 12;  // the sample lists that surface first
    EXPECT_EQ(friction[i], is_left ? 0.03 : 0.06);
    EXPECT_EQ(level[i], is_left ? 0.5 : 2.0);
    if (is_left) {
      EXPECT_EQ(bed[i], 0.5);
    }
  }
  EXPECT_GT(bed.back(), 0.3);
  EXPECT_EQ(data()["model"]["conditions"]["fixed bed level"], "bed.txt");
}

TEST_F(Import, GivesCellsTheMeanOfARaster) {
  folder.write("n.asc", support::asc_grid(40, 30, 0.0, 0.0, 0.1,
                                          [](double x, double) { return x < 2.0 ? 0.02 : 0.05; }));
  import_well({"--friction", "n.asc"});
  const auto friction = column("friction.txt", 0, 0);
  for (std::size_t i = 0; i < 24; ++i) EXPECT_NEAR(friction[i], i < 12 ? 0.02 : 0.05, 1e-12);
}

TEST_F(Import, AddsRainSoilsAndSediments) {
  folder.write("hyetograms.txt", "1\n5 1 60\n0 1e-5\n");
  folder.write("soil_types.txt", "1\n2 GreenAmpt 1e-6 0.1 0.1 0.4 1 0\n");
  import_well({"--rain", "left=5", "--hyetograms", "hyetograms.txt", "--soil", "2", "--soils",
               "soil_types.txt", "--level", "1", "--end", "2"});
  EXPECT_EQ(column("hyetocells.txt", 0, 0).front(), 5.0);
  EXPECT_EQ(column("hyetocells.txt", 0, 0).back(), -1.0);
  EXPECT_EQ(column("soilcells.txt", 0, 0).back(), 2.0);
  run_case();
  import_well({"--sediment", "right=0.3", "--grain-diameter", "0.002", "--level", "1", "--friction",
               "0.02", "--end", "2", "--overwrite"});
  EXPECT_EQ(data()["model"]["name"], "Bramsett");
  EXPECT_EQ(data()["model"]["parameters"]["sediments mean grain diameter"], 0.002);
  EXPECT_EQ(column("sediment.txt", 0, 0).front(), 0.0);
  EXPECT_EQ(column("sediment.txt", 0, 0).back(), 0.3);
  run_case();
}

TEST_F(Import, CountsSedimentsAsBedWhereItNamesTheLowerCellFirst) {
  sample.z = [](double x, double) { return 0.01 * x; };
  folder.write("m.msh", sample.msh4(true));
  import_well({"--sediment", "left=2", "--grain-diameter", "0.002", "--friction", "0.02"});
  int n_across = 0;
  for (const auto& line : lines("edges.txt")) {
    int left = -1, right = -1;
    std::istringstream(line) >> left >> right;
    // The cells of the surface "left", now the higher one, come first in the sample.
    if (right < 0 || (left < 12) == (right < 12)) continue;
    ++n_across;
    EXPECT_GE(left, 12) << line;
  }
  EXPECT_EQ(n_across, 3);
  EXPECT_NEAR(column("initial.txt", 0, 0).front(), 2.0 + 0.02 / 3.0, 1e-9);
}

TEST_F(Import, PlacesGauges) {
  import_well({"--gauge", "0.25,0.4", "--gauge", "3.5,2.2", "--level", "1.5", "--end", "2"});
  EXPECT_EQ(folder.read("case/gauges.txt"), "2 gauges.txt 0.0199\n0.25 0.4 0\n3.5 2.2 0\n");
  run_case();
  // The sample's bed; the simulator records the cells that hold the points.
  const auto z = [](double x, double y) { return 0.1 * x + 0.02 * y * y; };
  const auto bed = [&](double x1, double y1, double x2, double y2, double x3, double y3) {
    return (z(x1, y1) + z(x2, y2) + z(x3, y3)) / 3.0;
  };
  EXPECT_NEAR(column("out/gauges.txt", 1, 1).front(), 1.5 - bed(0, 0, 1, 1, 0, 1), 1e-3);
  EXPECT_NEAR(column("out/gauges.txt", 4, 1).front(), 1.5 - bed(3, 2, 4, 2, 4, 3), 1e-3);
}

TEST_F(Import, MovesGaugesOffTheLinesWhereTheSimulatorFindsNoCell) {
  const std::string out = import_well({"--gauge", "0.5,0.5", "--gauge", "2,1", "--gauge",
                                       "0.333333333333333,0.666666666666667", "--gauge", "0,0",
                                       "--gauge", "1.7,1.2", "--level", "1.5", "--end", "2"});
  EXPECT_TRUE(contains(out, "Moved the gauge at (0.500, 0.500), on the border of cells, to ("));
  EXPECT_FALSE(contains(out, "Moved the gauge at (1.700, 1.200)"));
  EXPECT_EQ(lines("gauges.txt").size(), 6U);
  run_case();
  EXPECT_FALSE(contains(folder.read("case/out/gauges.txt"), "nan"));
}

TEST_F(Import, RefusesAGaugeOutsideOfTheMesh) {
  EXPECT_EQ(import_badly(1, {"--gauge", "4.1,1"}),
            "quillmere-mesh: --gauge: the point (4.100, 1.000) lies in no cell; expected one "
            "inside of the mesh.\n");
}

TEST_F(Import, NamesAllGaugesOutsideOfTheMeshAtOnce) {
  EXPECT_EQ(import_badly(1, {"--gauge", "4.1,1", "--gauge", "1.2,1.3", "--gauge", "-1,2"}),
            "quillmere-mesh: --gauge: 2 points lie in no cell: (4.100, 1.000), (-1.000, 2.000); "
            "expected points inside of the mesh.\n");
}

TEST_F(Import, CountsTheCellsOfEveryUnknownId) {
  folder.write("hyetograms.txt", "1\n5 1 60\n0 1e-5\n");
  EXPECT_EQ(
      import_badly(1, {"--rain", "left=4", "--rain", "right=7", "--hyetograms", "hyetograms.txt"}),
      "quillmere-mesh: --rain: found the ID 4 in 12 cells, the first at (0.667, 0.333), 7 in "
      "12 cells, the first at (2.667, 0.333); expected one of hyetograms.txt, or -1.\n");
}

/// Two rows of squares that do not share the nodes between them, but for the western one.
TEST_F(Import, WarnsOfACrackAndMergesItsNodes) {
  const std::string nodes =
      "MESH2D\nND 1 0 0 1\nND 2 1 0 1\nND 3 2 0 1\nND 4 0 1 2\nND 5 1 1 2\nND 6 2 1 2\n"
      "ND 7 1 1.00001 2\nND 8 2 1.00001 2\nND 9 0 2 3\nND 10 1 2 3\nND 11 2 2 3\n";
  folder.write("m.2dm", nodes +
                            "E4Q 1 1 2 5 4 1\nE4Q 2 2 3 6 5 1\nE4Q 3 4 7 10 9 1\n"
                            "E4Q 4 7 8 11 10 1\nNS 4 7 -8 2\n");
  const Words words = {"m.2dm", "case", "--level", "4", "--end", "1"};
  const auto cracked = import(words);
  EXPECT_EQ(cracked.status, 0);
  EXPECT_EQ(cracked.err,
            "Warning: 2 pairs of nodes on the boundary lie at one place, the first at (1.000, "
            "1.000): no water passes between their cells. Where no thin wall is meant, "
            "--merge-nodes 0.001 joins nodes within a millimetre.\n");
  Words mend = words;
  mend.insert(mend.end(), {"--overwrite", "--merge-nodes", "1e-4", "--section", "2"});
  const auto mended = import(mend);
  EXPECT_EQ(mended.err, "");
  EXPECT_TRUE(contains(mended.out, "Merged 2 nodes into others within 0.0001 m.\n")) << mended.out;
  EXPECT_TRUE(contains(mended.out, "Section 2: 2 edges, 2 m")) << mended.out;
  EXPECT_EQ(lines("nodes.txt").at(0), "9");
  run_case();
  mend[8] = "1.2";
  EXPECT_TRUE(contains(import(mend).err, "--merge-nodes 1.2: a cell at (")) << import(mend).err;
  mend[8] = "-1";
  EXPECT_EQ(import(mend).status, 2);
}

TEST_F(Import, WarnsOfALineThatFollowsNoEdge) {
  std::string text = sample.sms();
  const std::string west = "NS 1 6 11 -16 west";
  ASSERT_TRUE(contains(text, west));
  text.replace(text.find(west), west.size(), "NS 1 6 -16 west");
  folder.write("m.2dm", text);
  const auto result = import({"m.2dm", "case", "--boundary", "west=transmissive"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err,
            "Warning: the line \"west\": 1 of 2 pieces follow no edge of the mesh, the first from "
            "(0.000, 1.000) to (0.000, 3.000); the edges there get no condition of it. Expected "
            "every node along the line.\n");
}

TEST_F(Import, TakesTheBedOfElementsThatHaveElevations) {
  folder.write("m.2dm",
               "MESH2D\nND 1 0 0\nND 2 1 0\nND 3 1 1\nND 4 0 1\nND 5 2 0\n"
               "E4Q 1 1 2 3 4 7.25\nE3T 2 2 5 3 8\n");
  const auto result = import({"m.2dm", "case", "--level", "9", "--end", "1"});
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(column("bed.txt", 0, 0), (std::vector<double>{7.25, 7.25, 8.0}));
  run_case();
}

TEST_F(Import, TakesSnapshotsWhenItIsTold) {
  EXPECT_TRUE(contains(import_well({"--snapshots", "0,0.25,1.5", "--level", "1.5", "--end", "2",
                                    "--interval", "0.5", "--section", "gate"}),
                       "The run ends at 2 s, with 3 snapshots before it and the envelope every "
                       "0.4975 s.\n"));
  EXPECT_EQ(folder.read("case/snapshots.txt"), "3\n0\n0.25\n1.5\n");
  EXPECT_EQ(data()["output"]["time step enveloppe of results"], 0.4975);
  EXPECT_EQ(lines("sections.txt").at(0), "1 0.04975 out/sections.txt");
  run_case();
  for (const char* name : {"pic_0_00", "pic_0_25", "pic_1_50"}) {
    EXPECT_TRUE(folder.has(std::string("case/out/") + name + ".txt"));
  }
  EXPECT_FALSE(folder.has("case/out/pic_0_50.txt"));
}

TEST_F(Import, TakesTheArrivalDepthOfTheMaxima) {
  import_well({"--level", "1.5", "--maxima", "0.3"});
  EXPECT_EQ(data()["output"]["maxima of flow"],
            nlohmann::json({{"file", "maxima.txt"}, {"arrival depth", 0.3}}));
  EXPECT_EQ(import({"m.msh", "other", "--level", "1.5", "--maxima", "-1"}).status, 2);
}

TEST_F(Import, LosesNothingAtTheEndOfTheRun) {
  EXPECT_TRUE(contains(import_well({"--level", "1.5", "--end", "20", "--section", "gate"}),
                       "The run ends at 20 s, with snapshots every 2 s and at 19.9 s, and "
                       "the envelope every 1.99 s.\n"));
  EXPECT_EQ(folder.read("case/snapshots.txt"), "11\n0\n2\n4\n6\n8\n10\n12\n14\n16\n18\n19.9\n");
  EXPECT_EQ(data()["output"]["time step enveloppe of results"], 1.99);
  EXPECT_EQ(lines("gauges.txt").at(0), "1 gauges.txt 0.199");
  EXPECT_EQ(lines("sections.txt").at(0), "1 0.199 out/sections.txt");
  run_case();
  EXPECT_TRUE(folder.has("case/out/pic_19_90.txt"));
  EXPECT_TRUE(folder.has("case/out/final.txt"));
  EXPECT_EQ(data()["output"]["maxima of flow"]["arrival depth"], 0.05);
  EXPECT_TRUE(folder.has("case/out/maxima.txt"));
  EXPECT_GE(column("out/gauges.txt", 0, 1).back(), 19.9);
  EXPECT_GE(column("out/sections.txt", 0, 0).back(), 19.9);
}

TEST_F(Import, WritesTheLastEnvelopeJustBeforeTheEnd) {
  folder.write("rain.txt", "1\n1 1 1\n0 0.001\n");
  import_well({"--level", "1.5", "--rain", "1", "--hyetograms", "rain.txt", "--end", "20"});
  run_case();
  // Rain fills a closed basin: the depths of the last snapshot are the largest yet.
  double largest = 0.0, last = 0.0;
  for (const double depth : column("out/enveloppe.txt", 3, 0)) largest += depth;
  for (const double depth : column("out/pic_19_90.txt", 3, 1)) last += depth;
  EXPECT_GE(largest, last * (1.0 - 1e-5));
}

TEST_F(Import, RefusesASnapshotThatIsNeverTaken) {
  EXPECT_EQ(import_badly(1, {"--snapshots", "1,2", "--end", "2"}),
            "quillmere-mesh: --snapshots: found 2, expected times before the run ends, at 2 s.\n");
}

TEST_F(Import, AsksForTheSecondOrderSchemeUnlessToldOtherwise) {
  EXPECT_TRUE(contains(import_well({"--level", "1"}), "The flux scheme is HLL2."));
  EXPECT_EQ(data()["model"]["flux scheme"], "HLL2");
  run_case();
  for (const char* const scheme : {"LHLLC", "HLL1", "HLL2"}) {
    import_well({"--scheme", scheme, "--overwrite"});
    EXPECT_EQ(data()["model"]["flux scheme"], scheme);
  }
}

TEST_F(Import, SedimentsTakeTheFirstSchemeUnlessToldOtherwise) {
  const Words sand = {"--sediment", "1", "--grain-diameter", "0.002", "--friction", "0.02"};
  Words wrong = sand;
  wrong.insert(wrong.end(), {"--scheme", "HLL2"});
  const std::string told = import_badly(1, wrong);
  EXPECT_TRUE(contains(told, "--scheme HLL2 does not go with --sediment; expected LHLLC or HLL1"))
      << told;
  import_well(sand);
  EXPECT_EQ(data()["model"]["flux scheme"], "LHLLC");
  Words positive = sand;
  positive.insert(positive.end(), {"--scheme", "HLL1", "--overwrite"});
  import_well(positive);
  EXPECT_EQ(data()["model"]["flux scheme"], "HLL1");
  run_case();
}

TEST_F(Import, RefusesASchemeThatThereIsNot) {
  EXPECT_TRUE(contains(import_badly(2, {"--scheme", "Roe"}), "--scheme"));
}

TEST_F(Import, SetsTheDepthOfDryCells) {
  import_well({"--zero-depth", "0.002"});
  EXPECT_EQ(data()["model"]["zero depth value"], 0.002);
  import_well({"--overwrite"});
  EXPECT_FALSE(data()["model"].contains("zero depth value"));
}

TEST_F(Import, SaysThatThinFilmsMoveTheBed) {
  const Words sand{"--sediment",       "0.1",   "--friction", "0.02",
                   "--grain-diameter", "0.002", "--overwrite"};
  const std::string remark = "No --zero-depth: films down to 0.0001 m move sediment.";
  EXPECT_TRUE(contains(import_well(sand), remark));
  Words with_depth = sand;
  with_depth.insert(with_depth.end(), {"--zero-depth", "0.001"});
  EXPECT_FALSE(contains(import_well(with_depth), remark));
  EXPECT_FALSE(contains(import_well({"--overwrite"}), remark));
}

TEST_F(Import, TakesAnOriginFromAllCoordinatesAndKeepsIt) {
  import_well({"--gauge", "1.3,1.2"});
  const std::vector<double> x = column("nodes.txt", 0, 1), y = column("nodes.txt", 1, 1);
  const std::vector<std::string> cells = lines("cells.txt"), edges = lines("edges.txt");
  const std::vector<std::string> levels = lines("initial.txt");
  ASSERT_EQ(data()["mesh"].count("origin"), 0U);

  const std::string out = import_well({"--gauge", "1.3,1.2", "--origin", "1,-2", "--overwrite"});
  EXPECT_TRUE(contains(out, "All coordinates of the case count from (1.000, -2.000).\n")) << out;
  EXPECT_EQ(data()["mesh"]["origin"], nlohmann::json({1.0, -2.0}));
  const std::vector<double> moved_x = column("nodes.txt", 0, 1),
                            moved_y = column("nodes.txt", 1, 1);
  ASSERT_EQ(moved_x.size(), x.size());
  for (std::size_t i = 0; i < x.size(); ++i) {
    EXPECT_NEAR(moved_x[i], x[i] - 1.0, 1e-9);
    EXPECT_NEAR(moved_y[i], y[i] + 2.0, 1e-9);
  }
  EXPECT_EQ(lines("cells.txt"), cells);
  EXPECT_EQ(lines("edges.txt"), edges);
  EXPECT_EQ(lines("initial.txt"), levels);
  EXPECT_EQ(lines("gauges.txt").at(1), "0.3 3.2 0");
  run_case();
}

TEST_F(Import, WarnsOfAreasThatLoseDigitsUnlessTheOriginIsNear) {
  sample.x0 = 3e6;
  sample.y0 = 5e6;
  folder.write("far.msh", sample.msh4(true));
  const auto far = import({"far.msh", "case"});
  EXPECT_EQ(far.status, 0);
  EXPECT_TRUE(support::starts_with(far.err, "Warning: ")) << far.err;
  EXPECT_TRUE(contains(far.err, "lose more than 1e-06 of their area")) << far.err;
  EXPECT_TRUE(contains(far.err, "--origin 3000000,5000000")) << far.err;
  EXPECT_EQ(import({"far.msh", "case", "--overwrite", "--origin", "3000000,5000000"}).err, "");
}

TEST_F(Import, ListsTheNamesItKnows) {
  EXPECT_EQ(import_badly(1, {"--boundary", "inlet=wall"}),
            "quillmere-mesh: --boundary inlet=wall: the mesh has no line \"inlet\"; it has: west, "
            "east, gate.\n");
  EXPECT_EQ(import_badly(1, {"--friction", "river=0.03"}),
            "quillmere-mesh: --friction river=0.03: the mesh has no surface \"river\"; it has: "
            "left, right.\n");
  EXPECT_TRUE(contains(import_badly(1, {"--friction", "left=0.03"}),
                       "12 cells get no value, the first one at "));
  EXPECT_TRUE(contains(import_badly(1, {"--boundary", "gate=wall"}),
                       "the line \"gate\" has no edge on the boundary of the mesh"));
}

TEST_F(Import, NamesTheBoundariesOfTheModelWithSediments) {
  folder.write("flood.txt", "2\n0 -1\n9 -1\n");
  EXPECT_EQ(import_badly(1, {"--sediment", "1", "--grain-diameter", "0.002", "--friction", "0.03",
                             "--boundary", "west=hydrograph:flood.txt"}),
            "quillmere-mesh: --boundary west=hydrograph: the model with sediments has no such "
            "boundary; expected transmissive, discharge:V, level:V or wall.\n");
}

TEST_F(Import, EndsWithStatus2ForWrongUsage) {
  EXPECT_TRUE(contains(import_badly(2, {"--boundary", "west=dam"}),
                       "found \"west=dam\", expected one of the kinds transmissive, discharge:V"));
  EXPECT_TRUE(contains(import_badly(2, {"--boundary", "west=level:high"}),
                       "expected a number after \"level:\""));
  EXPECT_TRUE(contains(import_badly(2, {"--boundary", "west"}), "expected NAME=KIND"));
  EXPECT_TRUE(contains(import_badly(2, {"--rain", "1"}), "--hyetograms"));
  EXPECT_TRUE(contains(import_badly(2, {"--sediment", "1"}), "--grain-diameter"));
  EXPECT_TRUE(contains(import_badly(2, {"--sediment", "1", "--grain-diameter", "0.002"}),
                       "needs --friction"));
  EXPECT_TRUE(contains(import_badly(2, {"--fill", "1"}), "needs --terrain"));
  for (const char* gauge : {"1", "1,2,3", "a,2", "1,", ""}) {
    EXPECT_TRUE(contains(import_badly(2, {"--gauge", gauge}), "expected X,Y")) << gauge;
  }
  EXPECT_TRUE(contains(import_badly(2, {"--snapshots", "0,soon"}), "expected T1,T2,..."));
  for (const char* times : {"-1,2", "0,5,5", "0,5,4", "0,0.005"}) {
    EXPECT_TRUE(contains(import_badly(2, {"--snapshots", times}), "increase by 0.01 s")) << times;
  }
  EXPECT_TRUE(contains(import_badly(2, {"--zero-depth", "0"}), "--zero-depth"));
  EXPECT_TRUE(contains(import_badly(2, {"--slope", "1"}), "--slope"));
}

TEST_F(Import, KeepsACaseThatIsThere) {
  import_well({"--end", "5"});
  const std::string before = folder.read("case/data.json");
  const auto result = import({"m.msh", "case", "--end", "6"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err,
            "quillmere-mesh: case/data.json: there is a case already; expected a new "
            "folder, or --overwrite.\n");
  EXPECT_EQ(folder.read("case/data.json"), before);
}

TEST_F(Import, RemovesWhatTheCaseThatWasThereWrote) {
  import_well({"--level", "1.5", "--end", "2", "--section", "gate"});
  run_case();
  const Words exports = {"case/export/results.nc", "case/export/results_0001.vtu",
                         "case/export/depth_1s.tif", "case/export/gauges.csv",
                         "case/export/pictures/depth.png"};
  const Words foreign = {"case/out/notes.txt", "case/export/mine.nc", "case/export/pictures/x.png",
                         "case/thesis.odt", "elsewhere/pic_0_00.txt"};
  for (const Words& names : {exports, foreign}) {
    for (const std::string& name : names) folder.write(name, "data");
  }
  folder.write("case/out/pic_9_00.txt", "of no snapshot of this case");
  std::filesystem::create_symlink("../../elsewhere/pic_0_00.txt",
                                  folder.file("case/export/results.pvd"));
  const Words results = {"case/log.txt",          "case/out/enveloppe.txt",
                         "case/out/gauges.txt",   "case/out/sections.txt",
                         "case/out/pic_0_00.txt", "case/out/pic_1_80.txt"};
  for (const std::string& name : results) EXPECT_TRUE(folder.has(name)) << name;

  const std::string out = import_well({"--level", "1.5", "--end", "20", "--overwrite"});
  EXPECT_TRUE(contains(out, " results of the case that was there.\n")) << out;
  for (const Words& names : {exports, results}) {
    for (const std::string& name : names) EXPECT_FALSE(folder.has(name)) << name;
  }
  for (const std::string& name : foreign) EXPECT_EQ(folder.read(name), "data") << name;
  EXPECT_TRUE(folder.has("case/out/pic_9_00.txt"));
  EXPECT_TRUE(std::filesystem::is_symlink(folder.file("case/export/results.pvd")));
}

TEST_F(Import, KeepsResultsThatItReadsOrThatLieOutsideOfTheCase) {
  import_well({"--level", "1.5", "--end", "2"});
  nlohmann::json changed = data();
  changed["output"]["folder"] = "../scratch/";
  folder.write("case/data.json", changed.dump());
  std::filesystem::create_directory(folder.file("scratch"));
  run_case();
  const std::string grid =
      support::asc_grid(9, 9, -2.0, -2.0, 1.0, [](double, double) { return 0.03; });
  folder.write("case/export/depth_1s.asc", grid);
  folder.write("case/log.txt", grid);  // whatever a result is called
  std::filesystem::rename(folder.file("case/log.txt"), folder.file("case/export/depth.tif"));
  std::filesystem::create_hard_link(folder.file("case/export/depth.tif"), folder.file("n.asc"));
  import_well({"--overwrite", "--friction", "n.asc"});
  EXPECT_TRUE(folder.has("scratch/enveloppe.txt"));
  EXPECT_EQ(folder.read("case/export/depth.tif"), grid);
}

TEST_F(Import, RefusesToReplaceFilesThatAreNoCase) {
  folder.write("case/edges.txt", "mine");
  folder.write("case/friction.txt", "mine too");
  folder.write("case/notes.txt", "");
  EXPECT_EQ(import_badly(1, {"--friction", "0.03"}),
            "quillmere-mesh: case: the case would replace 2 files of the folder: edges.txt, "
            "friction.txt; expected a new folder, or --overwrite.\n");
  EXPECT_EQ(folder.read("case/edges.txt"), "mine");
  EXPECT_FALSE(folder.has("case/nodes.txt"));
  EXPECT_FALSE(folder.has("case/nodes.txt.part"));
  import_well({"--overwrite", "--friction", "0.03"});
  run_case();
}

TEST_F(Import, ReplacesRegularFilesOnly) {
  import_well({"--end", "5"});
  folder.write("precious", "data");
  const std::string before = folder.read("case/data.json");
  std::filesystem::remove(folder.file("case/nodes.txt"));
  std::filesystem::create_symlink("../precious", folder.file("case/nodes.txt"));
  const auto result = import({"m.msh", "case", "--end", "6", "--overwrite"});
  EXPECT_EQ(result.status, 1);
  EXPECT_TRUE(contains(result.err, "case/nodes.txt couldn't be written: it is a link"))
      << result.err;
  EXPECT_TRUE(std::filesystem::is_symlink(folder.file("case/nodes.txt")));
  EXPECT_EQ(folder.read("precious"), "data");
  EXPECT_EQ(folder.read("case/data.json"), before);
}

TEST_F(Import, TakesThePlaceOfNoRasterThatItReads) {
  const std::string raster =
      "ncols 2\nnrows 2\nxllcorner -100\nyllcorner -100\ncellsize 200\n0.03 0.03\n0.03 0.03\n";
  folder.write("case/friction.txt", raster);
  const auto result = import({"m.msh", "case", "--friction", "case/friction.txt"});
  if (contains(result.err, "built without GDAL"))
    GTEST_SKIP() << "only GDAL reads rasters of that name";
  EXPECT_EQ(result.status, 1);
  EXPECT_TRUE(contains(result.err, "case/friction.txt would be replaced, but it is read"))
      << result.err;
  EXPECT_EQ(folder.read("case/friction.txt"), raster);
}

TEST_F(Import, WritesThroughNoLink) {
  folder.write("precious", "data");
  folder.write("case/readme", "");
  std::filesystem::create_symlink("../precious", folder.file("case/cells.txt.part"));
  import_well({});
  EXPECT_EQ(folder.read("precious"), "data");
  run_case();
}

TEST_F(Import, KeepsTheCaseThatIsThereWhereTheDiskIsFull) {
  import_well({"--end", "5"});
  const std::string data = folder.read("case/data.json"), nodes = folder.read("case/nodes.txt");
  const auto names = [this] {
    std::set<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(folder.file("case"))) {
      found.insert(entry.path().filename());
    }
    return found;
  };
  const std::set<std::string> before = names();
  support::RunOptions options;
  options.program = "/bin/sh";
  // The limit holds for the file that keeps the messages too: they run through a pipe.
  const auto result = support::run_program(
      folder.path(),
      {"-c",
       "(ulimit -f 0; \"$0\" import m.msh case --level 9 --end 6 --overwrite; echo status $?) "
       "2>&1 | cat",
       QUILLMERE_MESH_PROGRAM},
      options);
  EXPECT_TRUE(contains(result.out, "case/nodes.txt couldn't be written completely")) << result.out;
  EXPECT_TRUE(contains(result.out, "status 1\n")) << result.out;
  EXPECT_EQ(folder.read("case/data.json"), data);
  EXPECT_EQ(folder.read("case/nodes.txt"), nodes);
  EXPECT_EQ(names(), before);
}

TEST_F(Import, TellsTheCommandThatRunsACaseOfAnyName) {
  for (const auto& [name, word] :
       std::vector<std::pair<std::string, std::string>>{{"plain-1.2", "plain-1.2"},
                                                        {"a b$x", "'a b$x'"},
                                                        {"it's", "'it'\\''s'"},
                                                        {"-dash", "./-dash"}}) {
    const auto result = import({"--", "m.msh", name});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_TRUE(contains(result.out, "Run it: cd " + word + " && quillmere")) << result.out;
  }
}

TEST_F(Import, NamesTheLineOfADamagedSeries) {
  folder.write("flood.txt", "3\n0 -1\n10 -2\n5 -1\n");
  EXPECT_EQ(import_badly(1, {"--boundary", "west=hydrograph:flood.txt"}),
            "quillmere-mesh: Error in file flood.txt, line 4, sample 2 (of 0 to 2), time: found "
            "\"5\", expected a time later than that of the sample before.\n");
  EXPECT_EQ(import_badly(1, {"--boundary", "west=hydrograph:none.txt"}),
            "quillmere-mesh: Fatal error. Impossible to open file none.txt.\n");
}

TEST_F(Import, KeepsTheFilesOfRainAndSoilsToTheByte) {
  const std::string rain = "1  5 1 60\n0 1e-5\n", soils = "1\n2 Horton 1e-5 1e-6 1 .5 0 \n\n";
  folder.write("hyetograms.txt", rain);
  folder.write("soil_types.txt", soils);
  import_well({"--rain", "5", "--hyetograms", "hyetograms.txt", "--soil", "2", "--soils",
               "soil_types.txt"});
  EXPECT_EQ(folder.read("case/rain.txt"), rain);
  EXPECT_EQ(folder.read("case/soils.txt"), soils);
}

TEST_F(Import, RefusesRainAndSoilsThatNoRunWouldAccept) {
  folder.write("hyetograms.txt", "1\n5 1 60\n0 much\n");
  EXPECT_EQ(import_badly(1, {"--rain", "5", "--hyetograms", "hyetograms.txt"}),
            "quillmere-mesh: Error in file hyetograms.txt, line 3, hyetogram 0 (of 0 to 0), "
            "intensity: found \"much\", expected a finite number.\n");
  folder.write("soil_types.txt", "1\n2 Sand 1e-5\n");
  EXPECT_EQ(import_badly(1, {"--soil", "2", "--soils", "soil_types.txt"}),
            "quillmere-mesh: Error in file soil_types.txt, line 2, soil class 0 (of 0 to 0), type: "
            "found \"Sand\", expected GreenAmpt or Horton.\n");
  folder.write("hyetograms.txt", "1\n5 1 60\n0 1e-5\n");
  EXPECT_EQ(import_badly(1, {"--rain", "4", "--hyetograms", "hyetograms.txt"}),
            "quillmere-mesh: --rain: found the ID 4 in 24 cells, the first at (0.667, 0.333); "
            "expected one of hyetograms.txt, or -1.\n");
}

TEST_F(Import, ShowsExamplesFirst) {
  const auto result = import({"--help"});
  EXPECT_EQ(result.status, 0);
  EXPECT_TRUE(support::starts_with(result.out, "Examples:\n  quillmere-mesh import valley.msh"));
}

}  // namespace
