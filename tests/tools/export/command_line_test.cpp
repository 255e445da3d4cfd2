#include "tools/export/ExportTest.hpp"

namespace {

class CommandLine : public ExportTest {
 protected:
  void expect_error(const std::vector<std::string>& arguments, const std::string& message) {
    const support::RunResult result = run(arguments);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "quillmere-export: " + message + "\n");
    EXPECT_EQ(result.out, "");
  }
};

}  // namespace

TEST_F(CommandLine, HelpBeginsWithExamples) {
  const support::RunResult result = run_well({"--help"});
  EXPECT_TRUE(support::starts_with(result.out, "Examples:\n  quillmere-export netcdf "));
  for (const char* command : {"netcdf", "vtu", "geotiff", "csv", "plot", "report"}) {
    EXPECT_TRUE(support::contains(result.out, std::string("\n  ") + command + " ")) << command;
    EXPECT_TRUE(support::contains(run_well({command, "--help"}).out, "CASE")) << command;
  }
}

TEST_F(CommandLine, VersionNamesTheProgram) {
  EXPECT_TRUE(support::starts_with(run_well({"--version"}).out, "quillmere-export "));
}

TEST_F(CommandLine, WrongUsageHasAStatusOfItsOwn) {
  for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
           {},
           {"shapefile", "."},
           {"netcdf"},
           {"netcdf", ".", "--crs", "UTM32"},
           {"netcdf", ".", "--crs", "EPSG:"},
           {"netcdf", ".", "--epoch", "yesterday"},
           {"geotiff", "."},
           {"geotiff", ".", "--resolution", "0"},
           {"geotiff", ".", "--resolution", "1", "--field", "depht"},
           {"plot", ".", "--all", "--gauges"},
           {"plot", ".", "--all", "--time", "1"},
           {"plot", ".", "--gauges", "--threshold", "1"},
           {"plot", ".", "--gauges", "--extent", "0,0,1,1"},
           {"plot", ".", "--gauges", "--arrows"},
           {"plot", ".", "--sections", "--no-gauges"},
           {"plot", ".", "--extent", "0,0,1"},
           {"plot", ".", "--extent", "1,0,0,1"},
           {"plot", ".", "--extent", "0,0,1,x"},
           {"plot", ".", "--range", "1"},
           {"plot", ".", "--range", "2:1"},
           {"plot", ".", "--range", "0:1", "--all"},
           {"plot", ".", "--range", "0:1", "--classes", "1,2"},
           {"plot", ".", "--range", "0:1", "--classes", "log"},
           {"plot", ".", "--classes", "log", "--field", "level"},
           {"plot", ".", "--classes", "logarithmic"},
           {"plot", ".", "--dpi", "0"},
           {"plot", ".", "--crs", "UTM32"},
           {"report"},
           {"report", ".", "--time", "1"},
           {"plot", ".", "--format", "gif"},
           {"plot", ".", "-o", "picture.jpg"}}) {
    const support::RunResult result = run(words);
    EXPECT_EQ(result.status, 2) << result.err;
    EXPECT_NE(result.err, "");
  }
}

TEST_F(CommandLine, ACaseThatIsNotThereIsAnError) {
  expect_error({"netcdf", "nowhere"},
               "There is no case nowhere: expected its folder or its data file.");
}

TEST_F(CommandLine, ADataFileThatLacksAKeyIsNamed) {
  support::Case c;
  c.data["mesh"].erase("cells");
  c.write(folder);
  expect_error({"netcdf", "."},
               "Error in file ./data.json: Error. The following key couldn't be found in the "
               "datafile: cells");
}

TEST_F(CommandLine, ACaseThatHasNotBeenRunIsNamed) {
  support::Case c;
  c.add_snapshots({0.5});
  c.write(folder);
  expect_error({"netcdf", "."},
               "No snapshot is there: expected ./out/pic_0_50.txt. Has the case been run?");
  expect_error({"geotiff", ".", "--resolution", "1"},
               "The file ./out/enveloppe.txt is not there. Has the case been run?");
}

TEST_F(CommandLine, AMalformedMeshFileIsAnErrorWithItsPlace) {
  support::Case c;
  c.files["nodes.txt"] = "1\n0 0 zero\n";
  c.write(folder);
  expect_error(
      {"netcdf", "."},
      "Error in file ./nodes.txt, line 2, node 0 (of 0 to 0), z: found \"zero\", expected a "
      "finite number.");
}

TEST_F(CommandLine, AReferenceSystemThatThereIsNotIsRefusedByEveryFormat) {
  support::Case c;
  c.add_snapshots({0.0});
  simulate(c);
  for (std::vector<std::string> words : std::vector<std::vector<std::string>>{
           {"netcdf", ".", "--crs", "EPSG:99999"},
           {"geotiff", ".", "--resolution", "1", "--crs", "EPSG:99999"}}) {
    expect_error(words,
                 "--crs: EPSG:99999 is not known; expected the code of a coordinate reference "
                 "system, as in EPSG:32632.");
  }
  EXPECT_FALSE(folder.has("export"));
}

TEST_F(CommandLine, TheEnvelopeHasNoTime) {
  simulate(support::Case());
  expect_error({"geotiff", ".", "--resolution", "1", "--time", "0.5"},
               "max_depth is that of the whole run: it has no time.");
}

TEST_F(CommandLine, TheDataFileStandsForItsFolder) {
  support::Case c;
  c.add_snapshots({0.0});
  simulate(c);
  std::filesystem::rename(folder.file("data.json"), folder.file("other.json"));
  EXPECT_EQ(run_well({"netcdf", "other.json"}).out, "export/results.nc\n");
  EXPECT_TRUE(folder.has("export/results.nc"));
}

TEST_F(CommandLine, AnOutputThatCannotBeWrittenIsAnError) {
  support::Case c = flood_case();
  simulate(c);
  folder.write("file", "");
  for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
           {"netcdf", ".", "-o", "file/results.nc"},
           {"vtu", ".", "-o", "file/results.pvd"},
           {"geotiff", ".", "--resolution", "1", "-o", "file/depth.tif"},
           {"csv", ".", "-o", "file/tables"},
           {"plot", ".", "-o", "file/depth.png"}}) {
    const support::RunResult result = run(words);
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(support::contains(result.err, "file")) << result.err;
  }
}
