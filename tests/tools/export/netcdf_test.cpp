// UGRID NetCDF, read back with netCDF4 for Python. Which rule of the format a reader insists on is
// what the mesh library of QGIS (MDAL 0.9.4 and 1.3.1) was found to do with a file that breaks it.
#include <set>
#include <tuple>

#include "tools/export/ExportTest.hpp"

namespace {

using nlohmann::json;

class Netcdf : public ExportTest {
 protected:
  json structure_of(const support::Case& c, const std::vector<std::string>& options = {}) {
    simulate(c);
    std::vector<std::string> arguments = {"netcdf", "."};
    arguments.insert(arguments.end(), options.begin(), options.end());
    run_well(arguments);
    return json::parse(read_export({"netcdf-structure", file}));
  }
  std::vector<std::string> values(const std::string& variable, const std::string& record = "") {
    if (record.empty()) return read_values({"netcdf", file, variable});
    return read_values({"netcdf", file, variable, record});
  }
  const std::string file = "export/results.nc";
};

const std::vector<std::string> flood_snapshots = {"out/pic_0_00.txt", "out/pic_0_50.txt",
                                                  "out/pic_1_25.txt"};

}  // namespace

TEST_F(Netcdf, EverySnapshotIsThereToItsSixDigits) {
  simulate(flood_case());
  EXPECT_EQ(run_well({"netcdf", "."}).out, "./export/results.nc\n");
  EXPECT_EQ(values("time"), (std::vector<std::string>{"0", "0.5", "1.25"}));
  for (std::size_t t = 0; t < flood_snapshots.size(); ++t) {
    const std::string record = std::to_string(t);
    EXPECT_EQ(values("Mesh2d_depth", record), column(flood_snapshots[t], 3, true));
    EXPECT_EQ(values("Mesh2d_unit_discharge_x", record), column(flood_snapshots[t], 4, true));
    EXPECT_EQ(values("Mesh2d_unit_discharge_y", record), column(flood_snapshots[t], 5, true));
    EXPECT_EQ(values("Mesh2d_infiltrated_depth", record), column(flood_snapshots[t], 6, true));
  }
  EXPECT_EQ(values("Mesh2d_max_depth"), column("out/enveloppe.txt", 3, false));
}

TEST_F(Netcdf, VelocityIsTheUnitDischargeByTheDepthAndHiddenWhereDry) {
  simulate(flood_case());
  run_well({"netcdf", "."});
  const auto u = values("Mesh2d_velocity_x", "2"), v = values("Mesh2d_velocity_y", "2");
  const auto level = values("Mesh2d_level", "2");
  const auto h = column("out/pic_1_25.txt", 3, true), qx = column("out/pic_1_25.txt", 4, true),
             qy = column("out/pic_1_25.txt", 5, true);
  int wet = 0, dry = 0;
  for (std::size_t i = 0; i < h.size(); ++i) {
    const double depth = std::stod(h[i]);
    if (depth <= 0.001) {
      ++dry;
      EXPECT_EQ(u[i] + v[i] + level[i], "nannannan");
    } else {
      ++wet;
      EXPECT_NEAR(std::stod(u[i]), std::stod(qx[i]) / depth, 1e-5 * std::fabs(std::stod(u[i])));
      EXPECT_NEAR(std::stod(v[i]), std::stod(qy[i]) / depth, 1e-5 * std::fabs(std::stod(v[i])));
    }
  }
  EXPECT_GT(wet, 0);
  EXPECT_GT(dry, 0);
}

TEST_F(Netcdf, BedAndLevelComeFromTheBedFileNotFromTheSnapshots) {
  const support::Case c = flood_case();
  simulate(c);
  run_well({"netcdf", "."});
  const auto bed = values("Mesh2d_bed"), level = values("Mesh2d_level", "0");
  const auto depth = values("Mesh2d_depth", "0");
  const auto lines = support::lines(c.files.at("bed.txt"));
  ASSERT_EQ(bed.size(), lines.size());
  int wet = 0;
  for (std::size_t i = 0; i < bed.size(); ++i) {
    EXPECT_EQ(bed[i], six_digits(std::stod(lines[i])));
    if (level[i] == "nan") continue;
    ++wet;
    EXPECT_NEAR(std::stod(level[i]), std::stod(bed[i]) + std::stod(depth[i]), 1e-3);
  }
  EXPECT_GT(wet, 0);
  EXPECT_NE(bed, column("out/pic_0_00.txt", 2, true));
}

TEST_F(Netcdf, WithoutABedFileTheBedIsTheMeanOfTheNodes) {
  support::Case c;
  c.bed = [](double x, double y) { return 0.1 * x + 0.01 * y; };
  c.add_snapshots({0.0});
  simulate(c);
  run_well({"netcdf", "."});
  EXPECT_EQ(values("Mesh2d_bed"), column("out/pic_0_00.txt", 2, true));
  EXPECT_EQ(values("Mesh2d_node_z").size(), 20u);
  EXPECT_EQ(values("Mesh2d_node_z")[6], "0.11");
}

TEST_F(Netcdf, OverSandTheBedMovesInTimeAndTheSedimentIsThere) {
  const json structure = structure_of(sand_case());
  EXPECT_EQ(structure["variables"]["Mesh2d_bed"]["dimensions"], json({"time", "Mesh2d_nFaces"}));
  EXPECT_FALSE(structure["variables"].contains("Mesh2d_max_level"));
  const std::string snapshot = "out/pic_0_25.txt";
  EXPECT_EQ(values("Mesh2d_bed", "1"), column(snapshot, 2, true));
  EXPECT_EQ(values("Mesh2d_depth", "1"), column(snapshot, 3, true));
  EXPECT_EQ(values("Mesh2d_sediment_thickness", "1"), column(snapshot, 6, true));
  EXPECT_EQ(values("Mesh2d_bed_load_x", "1"), column(snapshot, 7, true));
  EXPECT_EQ(values("Mesh2d_bed_load_y", "1"), column(snapshot, 8, true));
  const auto change = values("Mesh2d_bed_change", "1"), bed = column(snapshot, 2, true);
  int moved = 0;
  for (std::size_t i = 0; i < bed.size(); ++i) {
    EXPECT_NEAR(std::stod(change[i]), std::stod(bed[i]) - 0.5, 1e-7);
    if (std::stod(change[i]) != 0.0) ++moved;
  }
  EXPECT_GT(moved, 0);
}

TEST_F(Netcdf, TheTopologyNamesItsPartsAndTheFaceDimension) {
  const json structure = structure_of(flood_case());
  const json& mesh = structure["variables"]["Mesh2d"];
  EXPECT_EQ(mesh["dimensions"], json::array());
  const json& attributes = mesh["attributes"];
  EXPECT_EQ(attributes["cf_role"], "mesh_topology");
  EXPECT_EQ(attributes["topology_dimension"], 2);
  EXPECT_EQ(attributes["node_coordinates"], "Mesh2d_node_x Mesh2d_node_y");
  EXPECT_EQ(attributes["face_node_connectivity"], "Mesh2d_face_nodes");
  EXPECT_EQ(attributes["face_dimension"], "Mesh2d_nFaces");
  EXPECT_EQ(structure["dimensions"]["Mesh2d_nFaces"], 36);
  EXPECT_EQ(structure["dimensions"]["Mesh2d_nNodes"], 28);
  EXPECT_EQ(structure["attributes"]["Conventions"], "CF-1.8 UGRID-1.0");
  EXPECT_EQ(structure["attributes"]["title"], "River with everything");
}

TEST_F(Netcdf, TheConnectivityHasAnIntegerStartIndexAndRunsCounterClockwise) {
  const support::Case c = flood_case();  // its cells run clockwise
  const json structure = structure_of(c);
  const json& connectivity = structure["variables"]["Mesh2d_face_nodes"];
  EXPECT_TRUE(connectivity["attributes"]["start_index"].is_number_integer());
  EXPECT_EQ(connectivity["attributes"]["start_index"], 0);
  EXPECT_EQ(connectivity["dimensions"], json({"Mesh2d_nFaces", "Mesh2d_nMax_face_nodes"}));
  const auto nodes = values("Mesh2d_face_nodes");
  const auto x = values("Mesh2d_node_x"), y = values("Mesh2d_node_y");
  const int columns = c.nx + 1;  // six digits are too few for these coordinates
  for (std::size_t i = 0; i < nodes.size(); i += 3) {
    const int a = std::stoi(nodes[i]), b = std::stoi(nodes[i + 1]), d = std::stoi(nodes[i + 2]);
    const int area = (b % columns - a % columns) * (d / columns - a / columns) -
                     (d % columns - a % columns) * (b / columns - a / columns);
    EXPECT_EQ(area, 1);
  }
}

TEST_F(Netcdf, TheTimeIsCalledTimeAndCountsSecondsSinceADate) {
  const json structure = structure_of(flood_case(), {"--epoch", "2021-07-14 06:00:00"});
  EXPECT_EQ(structure["unlimited"], json({"time"}));
  EXPECT_EQ(structure["variables"]["time"]["dimensions"], json({"time"}));
  EXPECT_EQ(structure["variables"]["time"]["attributes"]["units"],
            "seconds since 2021-07-14 06:00:00");
}

TEST_F(Netcdf, EveryLongNameIsUniqueAndVectorsAreNamedAsSuch) {
  for (const support::Case& c : {flood_case(), sand_case()}) {
    const json structure = structure_of(c);
    std::set<std::string> names;
    for (const auto& [variable, content] : structure["variables"].items()) {
      const json& attributes = content["attributes"];
      ASSERT_TRUE(attributes.contains("long_name")) << variable;
      EXPECT_TRUE(names.insert(attributes["long_name"].get<std::string>()).second) << variable;
    }
    EXPECT_TRUE(names.count("velocity, x-component"));
    EXPECT_TRUE(names.count("velocity, y-component"));
  }
}

TEST_F(Netcdf, TheBedAtTheNodesIsAnAltitude) {
  const json structure = structure_of(flood_case());
  const json& bed = structure["variables"]["Mesh2d_node_z"];
  EXPECT_EQ(bed["dimensions"], json({"Mesh2d_nNodes"}));
  EXPECT_EQ(bed["attributes"]["standard_name"], "altitude");
  EXPECT_EQ(bed["attributes"]["mesh"], "Mesh2d");
  EXPECT_EQ(bed["attributes"]["location"], "node");
  EXPECT_EQ(structure["variables"]["Mesh2d_bed"]["attributes"]["long_name"], "bed elevation");
}

TEST_F(Netcdf, EveryResultLiesOnTheFacesAndHidesWithAFillValue) {
  const json structure = structure_of(flood_case());
  int results = 0;
  for (const auto& [variable, content] : structure["variables"].items()) {
    const json& dimensions = content["dimensions"];
    if (content["type"] != "float32") continue;
    ++results;
    EXPECT_TRUE(dimensions == json({"time", "Mesh2d_nFaces"}) ||
                dimensions == json({"Mesh2d_nFaces"}))
        << variable;
    const json& attributes = content["attributes"];
    EXPECT_EQ(attributes["mesh"], "Mesh2d") << variable;
    EXPECT_EQ(attributes["location"], "face") << variable;
    EXPECT_EQ(attributes["coordinates"], "Mesh2d_face_x Mesh2d_face_y") << variable;
    EXPECT_EQ(attributes["_FillValue"], "nan") << variable;
    EXPECT_TRUE(attributes.contains("units")) << variable;
  }
  EXPECT_EQ(results, 9);  // depth, level, two of velocity, two of discharge, infiltration, envelope
}

TEST_F(Netcdf, TheReferenceSystemHangsOnTheCoordinatesOfTheNodes) {
  const json structure = structure_of(flood_case(), {"--crs", "EPSG:32632"});
  EXPECT_EQ(structure["variables"]["Mesh2d_node_x"]["attributes"]["grid_mapping"], "crs");
  const json& crs = structure["variables"]["crs"]["attributes"];
  EXPECT_EQ(crs["EPSG_code"], "EPSG:32632");
  EXPECT_EQ(crs["epsg"], 32632);
}

TEST_F(Netcdf, TheReferenceSystemIsDescribedAsConventionsAskFor) {
  json crs = structure_of(flood_case(), {"--crs", "EPSG:32632"})["variables"]["crs"]["attributes"];
  if (!crs.contains("crs_wkt")) GTEST_SKIP() << "built without GDAL";
  EXPECT_EQ(crs["grid_mapping_name"], "transverse_mercator");
  EXPECT_EQ(crs["longitude_of_central_meridian"], 9.0);
  EXPECT_EQ(crs["latitude_of_projection_origin"], 0.0);
  EXPECT_EQ(crs["scale_factor_at_central_meridian"], 0.9996);
  EXPECT_EQ(crs["false_easting"], 500000.0);
  EXPECT_EQ(crs["false_northing"], 0.0);
  EXPECT_EQ(crs["longitude_of_prime_meridian"], 0.0);
  EXPECT_EQ(crs["semi_major_axis"], 6378137.0);
  EXPECT_NEAR(crs["inverse_flattening"].get<double>(), 298.257223563, 1e-9);
  EXPECT_EQ(crs["projected_crs_name"], "WGS 84 / UTM zone 32N");
  EXPECT_TRUE(support::starts_with(crs["crs_wkt"], "PROJCRS[\"WGS 84 / UTM zone 32N\""));
  for (const auto& [code, name, parameter, value] :
       std::vector<std::tuple<std::string, std::string, std::string, double>>{
           {"3035", "lambert_azimuthal_equal_area", "latitude_of_projection_origin", 52.0},
           {"28992", "stereographic", "scale_factor_at_projection_origin", 0.9999079},
           {"2056", "", "semi_major_axis", 6377397.155}}) {
    run_well({"netcdf", ".", "--crs", "EPSG:" + code});
    crs = json::parse(read_export({"netcdf-structure", file}))["variables"]["crs"]["attributes"];
    EXPECT_EQ(crs.value("grid_mapping_name", ""), name) << code;
    EXPECT_EQ(crs[parameter], value) << code;
    EXPECT_TRUE(support::starts_with(crs["crs_wkt"], "PROJCRS[")) << code;
  }
}

TEST_F(Netcdf, ThePlaceAndTheDateAreThoseOfTheDataFileUnlessTheyAreGiven) {
  support::Case c = flood_case();
  c.data["crs"] = "EPSG:25832";
  c.data["epoch"] = "2026-05-01T06:00:00Z";
  json variables = structure_of(c)["variables"];
  EXPECT_EQ(variables["crs"]["attributes"]["EPSG_code"], "EPSG:25832");
  EXPECT_EQ(variables["time"]["attributes"]["units"], "seconds since 2026-05-01 06:00:00");
  run_well({"netcdf", ".", "--crs", "epsg:32632", "--epoch", "2021-07-14T06:00:00Z"});
  variables = json::parse(read_export({"netcdf-structure", file}))["variables"];
  EXPECT_EQ(variables["crs"]["attributes"]["EPSG_code"], "EPSG:32632");
  EXPECT_EQ(variables["time"]["attributes"]["units"], "seconds since 2021-07-14 06:00:00");
}

TEST_F(Netcdf, WithoutAReferenceSystemNoneIsClaimed) {
  const json structure = structure_of(flood_case());
  EXPECT_FALSE(structure["variables"].contains("crs"));
  EXPECT_FALSE(structure["variables"]["Mesh2d_node_x"]["attributes"].contains("grid_mapping"));
}

TEST_F(Netcdf, ThereIsOneMeshInAFileWithoutStringsOfTheNewerKind) {
  const json structure = structure_of(flood_case());
  int meshes = 0;
  for (const auto& [variable, content] : structure["variables"].items()) {
    const json& attributes = content["attributes"];
    if (attributes.contains("cf_role") && attributes["cf_role"] == "mesh_topology") ++meshes;
  }
  EXPECT_EQ(meshes, 1);
  EXPECT_EQ(structure["format"], "NETCDF3_64BIT_OFFSET");  // which has characters alone
}

TEST_F(Netcdf, CompressedItHoldsTheSameValues) {
  const json structure = structure_of(flood_case(), {"--compress"});
  EXPECT_EQ(structure["format"], "NETCDF4_CLASSIC");
  EXPECT_EQ(values("Mesh2d_depth", "1"), column("out/pic_0_50.txt", 3, true));
  EXPECT_EQ(values("Mesh2d_max_depth"), column("out/enveloppe.txt", 3, false));
}

TEST_F(Netcdf, QuadrilateralsKeepTheirCorners) {
  folder.write("case/nodes.txt", "5\n0 0 1\n1 0 1\n2 0 1\n1 1 1\n0 1 1\n");
  folder.write("case/cells.txt", "2\n4 0 1 3 4\n3 1 2 3\n");
  folder.write("case/edges.txt", "0\n");
  folder.write("case/times.txt", "1 0\n");
  folder.write("case/pic_0_00.txt",
               "x\ty\tzb\th\tqx\tqy\n0.5\t0.5\t1\t2\t0\t0\n1.33333\t0.333333\t1\t3\t0\t0\n");
  folder.write("case/enveloppe.txt", "0.5\t0.5\t1\t2\n1.33333\t0.333333\t1\t3\n");
  json data = support::Case().data;
  data["output"]["folder"] = "";
  data["output"]["snapshots of flow"] = "times.txt";
  folder.write("case/data.json", data.dump());
  run_well({"netcdf", "case", "-o", "quads.nc"});
  EXPECT_EQ(read_values({"netcdf", "quads.nc", "Mesh2d_face_nodes"}),
            (std::vector<std::string>{"0", "1", "3", "4", "1", "2", "3", "nan"}));
  run_well({"vtu", "case", "-o", "quads.pvd"});
  EXPECT_EQ(read_values({"vtu", "quads_0000.vtu", "types"}),
            (std::vector<std::string>{"quad", "triangle"}));
}

TEST_F(Netcdf, TheSameResultsGiveTheSameBytes) {
  simulate(flood_case());
  run_well({"netcdf", ".", "-o", "one.nc"});
  run_well({"netcdf", ".", "-o", "two.nc"});
  EXPECT_EQ(folder.read("one.nc"), folder.read("two.nc"));
  EXPECT_FALSE(folder.has("one.nc.part"));
}

TEST_F(Netcdf, SnapshotsThatAreNotThereAreNamedAndTheOthersExported) {
  simulate(flood_case());
  std::filesystem::remove(folder.file("out/pic_1_25.txt"));
  const support::RunResult result = run({"netcdf", "."});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "Warning: snapshots not there: 1, the first of them ./out/pic_1_25.txt.\n");
  EXPECT_EQ(values("time"), (std::vector<std::string>{"0", "0.5"}));
}

TEST_F(Netcdf, AnExportThatFailsLeavesTheEarlierFileAsItWas) {
  simulate(flood_case());
  run_well({"netcdf", "."});
  const std::string before = folder.read(file);
  folder.write("out/pic_1_25.txt", "x\ty\tzb\th\tqx\tqy\tf\n1\t2\t3\n");
  EXPECT_EQ(run({"netcdf", "."}).status, 1);
  EXPECT_EQ(folder.read(file), before);
  EXPECT_FALSE(folder.has(file + ".part"));
}

TEST_F(Netcdf, TellsTheNamesOfGaugesAndSections) {
  simulate(flood_case());
  folder.write("names.json",
               R"({"gauges": ["pier", "", "Brücke"], "sections": ["bridge", "old weir"]})");
  for (const std::vector<std::string>& options :
       std::vector<std::vector<std::string>>{{}, {"--compress"}}) {
    std::vector<std::string> arguments = {"netcdf", "."};
    arguments.insert(arguments.end(), options.begin(), options.end());
    run_well(arguments);
    EXPECT_EQ(read_export({"netcdf-names", file, "station_name"}), "pier\ngauge 2\nBrücke\n");
    EXPECT_EQ(read_export({"netcdf-names", file, "section_name"}), "bridge\nold weir\n");
    EXPECT_EQ(values("station_x"), (std::vector<std::string>{"612000", "612005", "0"}));
    EXPECT_EQ(values("Mesh2d_depth", "1"), column("out/pic_0_50.txt", 3, true));
    const json structure = json::parse(read_export({"netcdf-structure", file}));
    const json& names = structure["variables"]["station_name"];
    EXPECT_EQ(names["attributes"]["cf_role"], "timeseries_id");
    EXPECT_EQ(names["dimensions"], json({"station", "station_name_length"}));
  }
}

TEST_F(Netcdf, LeavesOutNamesThatAreNoneOrOfAnotherList) {
  simulate(flood_case());
  run_well({"netcdf", "."});
  const std::string without = folder.read(file);
  for (const char* names : {R"({"gauges": ["pier"], "sections": []})",
                            R"({"gauges": ["", "", ""], "sections": ["", ""]})"}) {
    folder.write("names.json", names);
    run_well({"netcdf", "."});
    EXPECT_EQ(folder.read(file), without);
  }
}
