// Runs of the model with sediments: what they need, what they check, what they write.
#include <gtest/gtest.h>

#include "support/Case.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/run_program.hpp"
#include "support/text.hpp"

namespace {

using support::Case;
using support::contains;
using support::RunResult;
using support::TemporaryFolder;

/// A dam break over a layer of sand, from 0 s to 0.5 s.
Case sand_case(const std::string& layer = "0.5") {
  Case c;
  c.nx = 8;
  c.initial = [](double x, double) { return support::InitialState{x < 4.0 ? 2.0 : 1.0}; };
  c.set_times(0.0, 0.5);
  c.data["model"]["name"] = "Bramsett";
  c.data["model"]["conditions"]["initial sediments level"] = "layer.txt";
  c.files["layer.txt"] = c.per_cell(layer);
  c.data["model"]["parameters"] = {{"sediments mean grain diameter", 0.001},
                                   {"sediments density", 2.65},
                                   {"sediments friction coefficient", 0.03},
                                   {"sediments porosity", 0.4}};
  c.add_friction(c.per_cell("0.03"));
  return c;
}

class Sediments : public testing::Test {
 protected:
  RunResult run(const Case& c) {
    c.write(folder_);
    return support::run_case(folder_);
  }
  RunResult run_with(const std::string& key, double value, const std::string& layer = "0.5") {
    Case c = sand_case(layer);
    c.data["model"]["parameters"][key] = value;
    return run(c);
  }

  TemporaryFolder folder_;
};

}  // namespace

TEST_F(Sediments, TheLogTellsTheModelAndItsParameters) {
  const RunResult result = run(sand_case());
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  const std::string log = folder_.read("log.txt");
  EXPECT_TRUE(contains(log, "  Shallow-water/Exner equations - with sediments\n"));
  EXPECT_TRUE(
      contains(log, "  Sediment level set from: layer.txt\n  Friction parameters set from"));
  EXPECT_TRUE(contains(log,
                       "Sediment transport parameters: \n"
                       "  Sediments mean grain diameter: 0.001 m\t\n"
                       "  Sediments density: 2.65 s\t\n"
                       "  Sediments friction coefficient: 0.03 s\t\n"
                       "  Sediments porosity: 0.4\n====="));
}

TEST_F(Sediments, SnapshotsHaveThePresentBedAndNoInfiltratedDepth) {
  Case c = sand_case();
  c.add_snapshots({0.0, 0.4});
  c.add_initial_infiltration(c.per_cell("0.1"));
  EXPECT_EQ(run(c).status, 0);
  const auto first = support::lines(folder_.read("out/pic_0_00.txt"));
  ASSERT_EQ(first.size(), static_cast<std::size_t>(c.n_cells()) + 1);
  EXPECT_EQ(first[0], "x\ty\tzb\th\tqx\tqy\ths\tqsx\tqsy");
  const auto row = support::split(first[1], '\t');
  ASSERT_EQ(row.size(), 9u);
  EXPECT_EQ(row[2], "0.5");  // a flat rock at 0 m under 0.5 m of sand
  EXPECT_EQ(row[3], "1.5");
  EXPECT_EQ(row[6], "0.5");
  EXPECT_EQ(row[7], "0");
  EXPECT_NE(folder_.read("out/pic_0_40.txt"), folder_.read("out/pic_0_00.txt"));
  EXPECT_TRUE(contains(folder_.read("out/pic_0_40.txt"), "\t0.49"));  // some bed was eroded
}

TEST_F(Sediments, ParametersAreRequired) {
  Case c = sand_case();
  c.data["model"].erase("parameters");
  const RunResult result = run(c);
  EXPECT_EQ(result.status, 255);
  EXPECT_EQ(result.err, "Error. The following key couldn't be found in the datafile: parameters\n");
}

TEST_F(Sediments, TheLayerIsRequired) {
  Case c = sand_case();
  c.data["model"]["conditions"].erase("initial sediments level");
  const RunResult result = run(c);
  EXPECT_EQ(result.status, 255);
  EXPECT_EQ(
      result.err,
      "Error. The following key couldn't be found in the datafile: initial sediments level\n");
}

TEST_F(Sediments, TimeSeriesBoundariesAreNotDefined) {
  Case c = sand_case();
  c.west = "-33 series.txt";  // which does not exist: the code is refused first
  const RunResult result = run(c);
  EXPECT_EQ(result.status, 255);
  EXPECT_EQ(result.err, "Boundary condition of type -33 not defined!\n");
}

TEST_F(Sediments, APorosityOutsideItsRangeIsRefused) {
  for (const double porosity : {1.0, -0.1, 40.0}) {
    const RunResult result = run_with("sediments porosity", porosity, "0");
    EXPECT_EQ(result.status, 255);
    EXPECT_TRUE(contains(result.err, "Error. \"sediments porosity\" is " +
                                         support::shown(porosity) + ", expected a number from 0"))
        << result.err;
  }
  EXPECT_EQ(run_with("sediments porosity", 0.0).status, 0);
}

TEST_F(Sediments, SenselessGrainsAreRefusedOnlyWhereThereIsSediment) {
  const std::pair<const char*, double> senseless[] = {{"sediments mean grain diameter", 0.0},
                                                      {"sediments mean grain diameter", -1.0},
                                                      {"sediments density", 1.0},
                                                      {"sediments density", 0.5}};
  for (const auto& [key, value] : senseless) {
    const RunResult with = run_with(key, value);
    EXPECT_EQ(with.status, 255) << key;
    EXPECT_TRUE(contains(with.err, "Error. \"" + std::string(key) + "\" is ")) << with.err;
    const RunResult without = run_with(key, value, "0");
    EXPECT_EQ(without.status, 0) << key;
    EXPECT_TRUE(support::starts_with(without.err, "Warning: \"" + std::string(key))) << without.err;
  }
}

TEST_F(Sediments, ADensityInKilogramsDrawsAWarning) {
  const RunResult result = run_with("sediments density", 2650.0);
  EXPECT_EQ(result.status, 0);
  EXPECT_TRUE(contains(result.err, "Warning: \"sediments density\" is 2650")) << result.err;
  EXPECT_TRUE(contains(result.err, "kg/m3"));
}

TEST_F(Sediments, InfiltrationThatIsIgnoredDrawsAWarning) {
  const std::string warning =
      "Warning: the case has infiltration, but nothing infiltrates in the model with sediments: it "
      "is left out of account.\n";
  Case with_soils = sand_case();
  with_soils.add_infiltration("1\n2 Horton 0.0001 0.00001 1 0.5 0\n", with_soils.per_cell("2"));
  RunResult result = run(with_soils);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, warning);
  Case with_initial_depth = sand_case();
  with_initial_depth.add_initial_infiltration(with_initial_depth.per_cell("0.1"));
  EXPECT_EQ(run(with_initial_depth).err, warning);
  EXPECT_EQ(run(sand_case()).err, "");
}

TEST_F(Sediments, AMobileBedWithoutFrictionDrawsAWarning) {
  Case c = sand_case();
  c.data["model"]["conditions"].erase("friction");
  const RunResult result = run(c);
  EXPECT_EQ(result.status, 0);
  EXPECT_TRUE(support::starts_with(result.err, "Warning: the bed is mobile, but there is no"));
}
