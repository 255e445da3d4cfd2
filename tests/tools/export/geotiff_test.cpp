// GeoTIFF, read back with GDAL for Python.
#include <set>

#include "tools/export/ExportTest.hpp"

namespace {

using nlohmann::json;

class Geotiff : public ExportTest {
 protected:
  json export_field(const std::vector<std::string>& options) {
    std::vector<std::string> arguments = {"geotiff", ".", "-o", "field.tif"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    run_well(arguments);
    return json::parse(read_export({"geotiff", "field.tif"}));
  }
  /// Checks every pixel against the cell of the rectangle mesh in which its centre lies. Returns
  /// how many of the mesh are dry.
  int expect_values(const json& raster, const support::Case& c,
                    const std::vector<std::string>& expected) {
    const double west = raster["transform"][0], size = raster["transform"][1];
    const double north = raster["transform"][3];
    int wet = 0, dry = 0;
    for (int row = 0; row < raster["rows"].get<int>(); ++row) {
      for (int column = 0; column < raster["columns"].get<int>(); ++column) {
        const double x = west + (column + 0.5) * size - c.x0;
        const double y = north - (row + 0.5) * size - c.y0;
        const double found = raster["values"][row][column];
        if (y > c.ny) {
          EXPECT_EQ(found, -9999.0);  // outside the mesh
          continue;
        }
        const int i = static_cast<int>(x), j = static_cast<int>(y);
        const bool is_lower = y - j < x - i;
        const int cell = is_lower ? c.lower(i, j) : c.upper(i, j);
        const double depth = std::stod(expected[static_cast<std::size_t>(cell)]);
        if (depth > 0.001) {
          ++wet;
          EXPECT_EQ(six_digits(found), expected[static_cast<std::size_t>(cell)]);
        } else {
          ++dry;
          EXPECT_EQ(found, -9999.0);
        }
      }
    }
    EXPECT_GT(wet, 0);
    return dry;
  }
};

}  // namespace

TEST_F(Geotiff, EveryPixelHasTheValueOfItsCell) {
  support::Case c = flood_case();
  c.y0 += 0.05;  // so that no pixel's centre lies on an edge of the mesh
  simulate(c);
  const json raster = export_field(
      {"--field", "depth", "--time", "0.5", "--resolution", "0.25", "--crs", "EPSG:32632"});
  EXPECT_EQ(raster["columns"], 24);
  EXPECT_EQ(raster["rows"], 13);
  EXPECT_EQ(raster["transform"], json({612000.0, 0.25, 0.0, 5235003.25, 0.0, -0.25}));
  EXPECT_EQ(raster["no data"], -9999.0);
  EXPECT_EQ(raster["unit"], "m");
  EXPECT_EQ(raster["description"], "depth");
  EXPECT_EQ(raster["epsg"], "32632");
  EXPECT_GT(expect_values(raster, c, column("out/pic_0_50.txt", 3, true)), 0);
  expect_values(export_field({"--resolution", "0.25"}), c, column("out/enveloppe.txt", 3, false));
}

TEST_F(Geotiff, TheLastSnapshotIsTheUsualOneAndTheEnvelopeTheUsualField) {
  const support::Case c = flood_case();
  simulate(c);
  run_well({"geotiff", ".", "--resolution", "1"});
  EXPECT_EQ(json::parse(read_export({"geotiff", "export/max_depth.tif"}))["description"],
            "largest depth");
  EXPECT_EQ(export_field({"--resolution", "1", "--field", "level"})["values"],
            export_field({"--resolution", "1", "--field", "level", "--time", "1.25"})["values"]);
}

TEST_F(Geotiff, AFieldOrATimeThatTheCaseDoesNotHaveIsRefused) {
  simulate(flood_case());
  EXPECT_EQ(
      run({"geotiff", ".", "--resolution", "1", "--field", "bed_change"}).err,
      "quillmere-export: The snapshots of . have no bed_change; expected one of depth, level, "
      "velocity, infiltrated_depth.\n");
  const support::RunResult result =
      run({"geotiff", ".", "--resolution", "1", "--field", "depth", "--time", "7"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err,
            "quillmere-export: No snapshot is there for the time 7 s; those there are for 0, 0.5, "
            "1.25 s.\n");
}

TEST_F(Geotiff, RastersOfTwoTimesHaveTwoNames) {
  simulate(flood_case());
  const std::vector<std::string> depth = {"geotiff", ".", "--resolution", "1", "--field", "depth"};
  EXPECT_EQ(run_well(depth).out, "./export/depth_1.25s.tif\n");
  std::vector<std::string> early = depth;
  early.insert(early.end(), {"--time", "0"});
  EXPECT_EQ(run_well(early).out, "./export/depth_0s.tif\n");
}

TEST_F(Geotiff, TheBedIsThereAlsoWhereItDoesNotMove) {
  simulate(flood_case());
  const json raster = export_field({"--resolution", "0.25", "--field", "bed"});
  EXPECT_EQ(raster["description"], "bed elevation");
  std::set<double> found;
  for (const auto& row : raster["values"]) {
    for (const double value : row) {
      if (value != -9999.0) found.insert(value);
    }
  }
  EXPECT_GE(*found.begin(), 101.0);
  EXPECT_LE(*found.rbegin(), 101.75);
  EXPECT_GT(found.size(), 3u);
  EXPECT_EQ(run({"geotiff", ".", "--resolution", "1", "--field", "bed", "--time", "1"}).err,
            "quillmere-export: The bed does not move: it has no time.\n");
}

TEST_F(Geotiff, ARasterOfTooManyPixelsIsRefused) {
  simulate(flood_case());
  const support::RunResult result = run({"geotiff", ".", "--resolution", "1e-5"});
  EXPECT_EQ(result.status, 1);
  EXPECT_TRUE(support::contains(result.err, "choose a coarser one")) << result.err;
}
