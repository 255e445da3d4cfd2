// Values as users have them: with units, by other formulas, in capitals.
#include <filesystem>

#include "tools/mesh/ImportTest.hpp"

namespace {

using support::contains;

class FriendlyValues : public support::ImportTest {};

TEST_F(FriendlyValues, AreTimesWithUnits) {
  import_well({"--end", "2h", "--interval", "10 min"});
  EXPECT_EQ(data()["tend"], 7200.0);
  EXPECT_EQ(lines("snapshots.txt").at(2), "600");
  import_well({"--end", "0.5d", "--overwrite"});
  EXPECT_EQ(data()["tend"], 43200.0);
  const auto refused = import({"m.msh", "other", "--end", "2 weeks"});
  EXPECT_EQ(refused.status, 2);
  EXPECT_TRUE(
      contains(refused.err, "--end: found \"2 weeks\", expected a time, as in 600, 10min or 2h"))
      << refused.err;
}

TEST_F(FriendlyValues, AreStricklerCoefficients) {
  import_well({"--friction-strickler", "40", "--friction-strickler", "left=20"});
  const auto manning = column("friction.txt", 0, 0);
  EXPECT_EQ(manning.front(), 0.05);
  EXPECT_EQ(manning.back(), 0.025);
  import_well({"--friction", "0.05", "--overwrite"});
  folder.write("case/data.json", "");
  std::filesystem::remove(folder.file("case/data.json"));
  EXPECT_TRUE(contains(import_badly(1, {"--friction-strickler", "0", "--overwrite"}),
                       "--friction-strickler: found 0, expected above 0."));
  EXPECT_TRUE(contains(import_badly(2, {"--friction-strickler", "40", "--friction", "0.03"}),
                       "does not go with --friction-strickler"));
}

TEST_F(FriendlyValues, AreRainInMillimetresPerHour) {
  import_well({"--rain", "36mm/h", "--rain", "left=7.2 mm/h", "--friction", "0.1", "--end", "100"});
  run_case();
  const auto depths = column("out/pic_90_00.txt", 3, 1);
  ASSERT_EQ(depths.size(), 24U);
  double volume = 0.0;
  for (const double depth : depths) volume += 0.5 * depth;
  EXPECT_NEAR(volume, 90.0 * 6.0 * (1e-5 + 0.2e-5), 10.0 * 6.0 * 1.2e-5);
  EXPECT_EQ(lines("rain.txt"),
            (std::vector<std::string>{"2", "1 1 10", "0 1e-05", "2 1 10", "0 2e-06"}));
}

TEST_F(FriendlyValues, AreNoRainOfTwoKinds) {
  folder.write("rain.txt", "1\n5 1 60\n0 1e-5\n");
  EXPECT_TRUE(contains(import_badly(2, {"--rain", "5", "--rain", "left=7mm/h"}),
                       "name their file with --hyetograms, or give rain as in 20mm/h"));
  EXPECT_TRUE(
      contains(import_badly(2, {"--rain", "5", "--rain", "left=7mm/h", "--hyetograms", "rain.txt"}),
               "gives steady rain, in mm/h, which does not go with --hyetograms"));
}

TEST_F(FriendlyValues, AreExtensionsInCapitals) {
  folder.write("M.MSH", sample.msh4(true));
  EXPECT_EQ(import({"M.MSH", "case"}).status, 0);
  folder.write("M.XYZ", "");
  EXPECT_TRUE(contains(import({"M.XYZ", "case2"}).err, "found the extension \".XYZ\""));
}

TEST_F(FriendlyValues, AreElevationsOfTheSurfaceOfSediment) {
  const support::Words sediment = {"--sediment", "0.25", "--grain-diameter", "0.01",
                                   "--friction", "0.03", "--zero-depth",     "0.001"};
  const std::string out = import_well(sediment);
  EXPECT_TRUE(contains(out, "Elevations are those of the rock under the sediment")) << out;
  EXPECT_FALSE(folder.has("case/bed.txt"));
  support::Words of_surface = sediment;
  of_surface.insert(of_surface.end(), {"--terrain-is", "surface", "--overwrite"});
  EXPECT_FALSE(contains(import_well(of_surface), "Elevations are those of the rock"));
  const auto rock = column("bed.txt", 0, 0);
  ASSERT_EQ(rock.size(), 24U);
  EXPECT_NEAR(rock.front(), (sample.z(0, 0) + sample.z(1, 0) + sample.z(1, 1)) / 3.0 - 0.25, 1e-12);
  folder.write("case/data.json", "");
  std::filesystem::remove(folder.file("case/data.json"));
  EXPECT_TRUE(contains(import_badly(2, {"--terrain-is", "surface"}), "needs --sediment"));
}

}  // namespace
