// The maxima of the flow in every format.
#include "tools/export/ExportTest.hpp"

namespace {

using nlohmann::json;

const std::vector<std::string> names = {"peak_depth",     "peak_level",      "peak_speed",
                                        "peak_discharge", "hazard",          "time_of_peak",
                                        "arrival_time",   "time_under_water"};
constexpr std::size_t first_column = 3;  // of the table: that of the first name

class MaximaExport : public ExportTest {
 protected:
  MaximaExport() {
    c = flood_case();
    c.data["output"]["maxima of flow"] = {{"file", "maxima.txt"}, {"arrival depth", 0.2}};
    simulate(c);
  }
  std::vector<std::string> expected(std::size_t name) {
    return column("out/maxima.txt", first_column + name, true);
  }
  static std::size_t count_of_nan(const std::vector<std::string>& values) {
    return static_cast<std::size_t>(std::count(values.begin(), values.end(), "nan"));
  }

  support::Case c;
};

}  // namespace

TEST_F(MaximaExport, OfACaseWhereSomeCellsNeverAreUnderWater) {
  EXPECT_GT(count_of_nan(expected(6)), 0U);
  EXPECT_LT(count_of_nan(expected(6)), expected(6).size());
}

TEST_F(MaximaExport, VtuHasThemInAFileOfTheirOwn) {
  run_well({"vtu", "."});
  for (std::size_t k = 0; k < names.size(); ++k) {
    EXPECT_EQ(read_values({"vtu", "export/results_maxima.vtu", names[k]}), expected(k)) << names[k];
  }
}

TEST_F(MaximaExport, NetcdfHasThemWithoutATime) {
  run_well({"netcdf", "."});
  for (std::size_t k = 0; k < names.size(); ++k) {
    EXPECT_EQ(read_values({"netcdf", "export/results.nc", "Mesh2d_" + names[k]}), expected(k))
        << names[k];
  }
  const json structure = json::parse(read_export({"netcdf-structure", "export/results.nc"}));
  const json arrival = structure["variables"]["Mesh2d_arrival_time"];
  EXPECT_EQ(arrival["dimensions"], json({"Mesh2d_nFaces"}));
  EXPECT_EQ(arrival["attributes"]["units"], "s");
  EXPECT_EQ(arrival["attributes"]["_FillValue"], "nan");
}

#ifndef QUILLMERE_SANITIZED  // Python draws, which sanitizers do not see; reports run our code
TEST_F(MaximaExport, AllPicturesShowThem) {
  for (const char* key : {"snapshots of flow", "gauges", "discharges"}) c.data["output"].erase(key);
  c.write(folder);
  run_well({"plot", ".", "--all", "-o", "pictures"});
  for (const std::string& name : names) EXPECT_TRUE(folder.has("pictures/" + name + ".png"));
}
#endif

TEST_F(MaximaExport, CsvNamesUnitsAndLeavesEmptyWhatHasNotBeen) {
  run_well({"csv", "."});
  const std::vector<std::string> rows = support::lines(folder.read("export/maxima.csv"));
  EXPECT_EQ(rows.at(0),
            "cell,x (m),y (m),peak depth (m),peak water level (m),peak speed (m/s),peak unit "
            "discharge (m2/s),peak product of depth and speed (m2/s),time of the peak depth "
            "(s),time of arrival (s),time under water (s)");
  ASSERT_EQ(rows.size(), expected(0).size() + 1);
  for (std::size_t i = 0; i + 1 < rows.size(); ++i) {
    const std::vector<std::string> words = support::split(rows[i + 1], ',');
    ASSERT_EQ(words.size(), 3 + names.size());
    EXPECT_EQ(words[0], std::to_string(i));
    EXPECT_NEAR(std::stod(words[1]), c.center(static_cast<int>(i)).x, 1e-6);
    for (std::size_t k = 0; k < names.size(); ++k) {
      const std::string value = expected(k)[i];
      EXPECT_EQ(words[3 + k], value == "nan" ? "" : value) << names[k] << " of cell " << i;
    }
  }
}

TEST_F(MaximaExport, GeotiffHasNoDataWhereSomethingHasNotBeenAndBelowTheThreshold) {
  const auto no_data = [&](const std::vector<std::string>& options) {
    std::vector<std::string> arguments = {"geotiff", ".", "-o", "field.tif", "--resolution", "0.1"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    run_well(arguments);
    const json raster = json::parse(read_export({"geotiff", "field.tif"}));
    int count = 0;
    for (const json& row : raster["values"]) {
      for (const json& value : row) count += value == -9999.0 ? 1 : 0;
    }
    return std::pair(count, raster["unit"].get<std::string>());
  };
  const auto [depths, metres] = no_data({"--field", "peak_depth"});
  const auto [deep, same_metres] = no_data({"--field", "peak_depth", "--threshold", "0.2"});
  const auto [arrivals, seconds] = no_data({"--field", "arrival_time"});
  EXPECT_EQ(metres, "m");
  EXPECT_EQ(seconds, "s");
  EXPECT_LT(depths, deep);
  EXPECT_EQ(arrivals, deep);  // water that was deeper than the arrival depth has arrived
}

#ifndef QUILLMERE_SANITIZED  // Python draws, which sanitizers do not see; reports run our code
TEST_F(MaximaExport, PlotDrawsArrivalWithLinesAndHazardInClasses) {
  run_well({"plot", ".", "--field", "arrival_time", "-o", "arrival.svg"});
  const std::string arrival = folder.read("arrival.svg");
  EXPECT_TRUE(support::contains(arrival, "time of arrival (s)"));
  EXPECT_TRUE(support::contains(arrival, "QuadContourSet") ||
              support::contains(arrival, "LineCollection") ||
              support::contains(arrival, "PathCollection"));
  run_well({"plot", ".", "--field", "hazard", "--classes", "0.125,0.375", "-o", "hazard.svg"});
  const std::string hazard = folder.read("hazard.svg");
  for (const char* text : {"peak product of depth and speed (m²/s)", ">0.125<", ">0.375<"}) {
    EXPECT_TRUE(support::contains(hazard, text)) << text;
  }
  run_well({"plot", ".", "--field", "time_under_water", "-o", "duration.svg"});
}
#endif

TEST_F(MaximaExport, ClassesMustIncreaseAndBelongToAMap) {
  EXPECT_EQ(run({"plot", ".", "--field", "hazard", "--classes", "0.5,0.5"}).status, 2);
  EXPECT_EQ(run({"plot", ".", "--all", "--classes", "0.5"}).status, 2);
  EXPECT_EQ(run({"plot", ".", "--field", "hazard", "--classes", "deep"}).status, 2);
}

TEST_F(MaximaExport, ThoseThatAreNotThereAreNamed) {
  std::filesystem::remove(folder.file("out/maxima.txt"));
  EXPECT_TRUE(support::contains(run({"vtu", "."}).err,
                                "Warning: the maxima ./out/maxima.txt are not there."));
  EXPECT_EQ(run({"geotiff", ".", "--field", "hazard", "--resolution", "1"}).status, 1);
  c.data["output"].erase("maxima of flow");
  c.write(folder);
  EXPECT_EQ(run({"plot", ".", "--field", "hazard"}).err,
            "quillmere-export: ./data.json asks for no maxima of flow.\n");
}

TEST_F(MaximaExport, ATableThatIsNotOfTheCaseIsRefused) {
  const std::string table = folder.read("out/maxima.txt");
  for (const std::string& text :
       {std::string(), table.substr(2), table + "1\t2\n", table.substr(0, table.size() / 2)}) {
    folder.write("out/maxima.txt", text);
    const auto result = run({"geotiff", ".", "--field", "hazard", "--resolution", "1"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(support::contains(result.err, "Error in file ./out/maxima.txt")) << result.err;
  }
}
