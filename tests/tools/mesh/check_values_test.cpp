#include "tools/mesh/CheckTest.hpp"

namespace {

class CheckValues : public CheckTest {
 protected:
  json& parameter(const std::string& name) { return c.data["model"]["parameters"][name]; }
};

// --- Boundaries ---------------------------------------------------------------------------------

TEST_F(CheckValues, ListsTheBoundaries) {
  c.west = "-33 inflow.txt";
  c.files["inflow.txt"] = "3\n-1 -0.1\n1 -0.3\n20 -0.1\n";
  c.east = "-4 0.9";
  c.north = "-2";
  check();
  const json& table = report["boundaries"];
  ASSERT_EQ(table.size(), 4U) << table.dump(2);
  EXPECT_EQ(table[0]["kind"], "transmissive");
  EXPECT_EQ(table[1]["kind"], "level");
  EXPECT_EQ(table[1]["first value"], 0.9);
  EXPECT_EQ(table[2]["kind"], "wall");
  EXPECT_EQ(table[2]["edges"], 4);
  EXPECT_EQ(table[2]["length"], 4.0);
  EXPECT_TRUE(table[2]["first value"].is_null());
  EXPECT_EQ(table[3]["kind"], "hydrograph");
  EXPECT_EQ(table[3]["series"], "inflow.txt");
  EXPECT_EQ(table[3]["edges"], 3);
  EXPECT_NEAR(table[3]["first value"].get<double>(), -0.2, 1e-12);
  EXPECT_NEAR(table[3]["discharge"].get<double>(), -0.6, 1e-12);
}

TEST_F(CheckValues, RefusesASeriesOnceForAllItsEdges) {
  c.west = "-33 inflow.txt";
  c.files["inflow.txt"] = "2\n0 -0.1\n0 -0.3\n";
  expect_error("series", {"inflow.txt, line 3, sample 1", "later than"});
  c.files["inflow.txt"] = "1\n0 -0.1\n";
  expect_error("series", {"at least 2"});
  c.files.erase("inflow.txt");
  c.west = "-44 nowhere.txt";
  expect_error("series", {"nowhere.txt"});
}

TEST_F(CheckValues, RefusesASeriesEvenIfTheMeshIsAtFault) {
  c.west = "-33 nowhere.txt";
  c.files["nodes.txt"] = "x";
  check();
  EXPECT_EQ(texts("errors", "series").size(), 1U);
  EXPECT_EQ(texts("errors", "malformed value").size(), 1U);
}

TEST_F(CheckValues, WarnsOfASeriesThatBeginsLate) {
  c.west = "-44 level.txt";
  c.files["level.txt"] = "2\n0.5 1\n20 1\n";
  expect_warning("series coverage", {"level.txt begins at 0.5 s", "(0 s)"});
}

TEST_F(CheckValues, WarnsOfASeriesThatEndsEarly) {
  c.west = "-44 level.txt";
  c.files["level.txt"] = "2\n0 1\n0.5 1\n";
  expect_warning("series coverage", {"level.txt ends at 0.5 s", "(1 s)"});
}

TEST_F(CheckValues, WarnsOfADischargeThatIsNotPerMetre) {
  c.west = "-33 inflow.txt";
  c.files["inflow.txt"] = "2\n0 0\n20 -200\n";
  expect_warning("boundary value", {"hydrograph inflow.txt (3 edges)", "-200 m2/s", "per metre"});
}

TEST_F(CheckValues, WarnsOfAnOutflowFromDryCells) {
  c.initial = [](double, double) { return support::InitialState{0.0}; };
  c.west = "-3 0.1";
  expect_warning("boundary value", {"discharge 0.1", "an inflow is negative"});
}

TEST_F(CheckValues, WarnsOfAnOutflowFromCellsOfWhichOneIsDry) {
  c.initial = [](double, double y) { return support::InitialState{y > 2.0 ? 0.0 : 1.0}; };
  c.west = "-3 0.1";
  expect_warning("boundary value", {"discharge 0.1", "an inflow is negative"});
}

TEST_F(CheckValues, WarnsOfALevelBelowTheBed) {
  c.bed = [](double, double) { return 10.0; };
  c.initial = [](double, double) { return support::InitialState{11.0}; };
  c.west = "-4 1.5";
  expect_warning("boundary value", {"level 1.5", "below the bed", "10 m"});
}

TEST_F(CheckValues, WarnsOfALevelHighAboveTheBed) {
  c.west = "-4 150";
  expect_warning("boundary value", {"150 m above the bed"});
}

// --- Fields -------------------------------------------------------------------------------------

TEST_F(CheckValues, WarnsOfAnImplausibleDepth) {
  c.bed = [](double, double) { return -150.0; };
  expect_warning("depth", {"151 m in 24 cells, such as cell 0"});
}

TEST_F(CheckValues, WarnsOfAnImplausibleVelocity) {
  c.initial = [](double x, double) { return support::InitialState{1.0, x > 3.5 ? 25.0 : 0.0}; };
  expect_warning("velocity", {"25 m/s in 3 cells"});
}

TEST_F(CheckValues, WarnsOfDepthsInPlaceOfLevels) {
  c.bed = [](double, double) { return 10.0; };
  expect_warning("depth", {"1 m at the highest", "10 m at the lowest", "are they depths?"});
}

TEST_F(CheckValues, WarnsOfImplausibleFriction) {
  c.add_friction(c.per_cell("0.0001"));
  expect_warning("friction", {"0.0001 in 24 cells", "0.005 to 1 s/m"});
  c.add_friction(c.per_cell("-0.03"));
  expect_warning("friction", {"-0.03"});
  c.add_friction(c.per_cell("30"));
  expect_warning("friction", {"30 in 24 cells", "Strickler"});
  c.add_friction(c.per_cell("0"));
  expect_clean();
}

// --- Rain and soils -----------------------------------------------------------------------------

TEST_F(CheckValues, WarnsOfRainInMillimetresPerHour) {
  c.add_rain("1\n1 1 1\n0 20\n", c.per_cell("1"));
  c.set_times(0.0, 0.001);
  expect_warning("rain", {"rain.txt, hyetogram 1", "20 m/s = 7.2e+07 mm/h"});
}

TEST_F(CheckValues, WarnsOfNegativeRain) {
  c.add_rain("1\n1 2 1\n0 1e-5\n0.5 -1e-6\n", c.per_cell("1"));
  check();
  ASSERT_EQ(texts("warnings", "rain").size(), 1U);
  EXPECT_TRUE(support::contains(texts("warnings", "rain")[0], "-1e-06 m/s"));
}

TEST_F(CheckValues, WarnsOfANegativeStepOfRain) {
  c.add_rain("1\n1 1 -5\n0 1e-5\n", c.per_cell("1"));
  expect_warning("rain", {"rain.txt, hyetogram 1 has a step of -5 s"});
}

TEST_F(CheckValues, WarnsOfRainWithoutOrder) {
  c.add_rain("1\n1 3 1\n0 1e-5\n0.6 2e-5\n0.5 0\n", c.per_cell("1"));
  expect_warning("rain", {"do not increase"});
}

TEST_F(CheckValues, WarnsOfAHyetogramWithoutIntervals) {
  c.add_rain("2\n1 1 1\n0 1e-5\n2 0 1\n", c.per_cell("1"));
  c.files["hyetocells.txt"] = "2\n" + c.per_cell("1");
  expect_warning("rain", {"hyetogram 2 has no intervals"});
}

TEST_F(CheckValues, WarnsOfRainThatDoesNotCoverTheRun) {
  c.add_rain("1\n1 2 1\n0.25 1e-5\n0.5 0\n", c.per_cell("1"));
  expect_warning("series coverage", {"begins at 0.25 s"});
  c.add_rain("1\n1 2 1\n0 1e-5\n0.5 2e-5\n", c.per_cell("1"));
  expect_warning("series coverage", {"last changes at 0.5 s", "2e-05 m/s = 72 mm/h"});
  c.add_rain("1\n1 2 1\n0 1e-5\n0.5 0\n", c.per_cell("1"));
  expect_clean();
}

TEST_F(CheckValues, RefusesIdsThatTheCaseDoesNotDefine) {
  c.add_rain("1\n1 1 1\n0 1e-5\n", "2\n" + c.per_cell("1"));
  expect_error("source term ID", {"hyetocells.txt, cell 0: found hyetogram 2"});
  c = recorded_case();
  c.add_infiltration("1\n1 Horton 1e-5 1e-6 1 0.5 0\n", "1\n-2\n" + c.per_cell("1"));
  expect_error("source term ID", {"infiltracells.txt, cell 1: found soil -2"});
}

TEST_F(CheckValues, NamesIdsThatNoCellHas) {
  c.add_rain("2\n1 1 1\n0 1e-5\n4 1 1\n0 1e-5\n", c.per_cell("1"));
  expect_warning("unused hyetogram", {"hyetogram 4 is in no cell of hyetocells.txt"});
}

TEST_F(CheckValues, NamesIdsThatAreDefinedTwice) {
  c.add_rain("2\n1 1 1\n0 1e-5\n1 1 1\n0 2e-5\n", c.per_cell("1"));
  expect_warning("repeated ID", {"rain.txt: hyetogram 1"});
  c = recorded_case();
  c.add_infiltration("2\n1 Horton 1e-5 1e-6 1 0.5 0\n1 Horton 1e-5 1e-6 1 0.5 0\n",
                     c.per_cell("1"));
  expect_warning("repeated ID", {"soils.txt: soil 1"});
}

TEST_F(CheckValues, RefusesAnUnknownSoilType) {
  c.add_infiltration("1\n1 CN 70\n", c.per_cell("-1"));
  expect_error("malformed value", {"soil class 0", "\"CN\"", "GreenAmpt or Horton"});
}

TEST_F(CheckValues, WarnsOfInfiltrationInMillimetresPerHour) {
  c.add_infiltration("1\n1 Horton 10 1e-6 1 0.5 0\n", c.per_cell("1"));
  expect_warning("infiltration", {"soil 1: f0 is 10 m/s"});
  c.add_infiltration("1\n1 GreenAmpt 10 0.1 0.2 0.4 1 0\n", c.per_cell("1"));
  expect_warning("infiltration", {"soil 1: Ks is 10 m/s"});
}

TEST_F(CheckValues, WarnsOfSoilsThatNoGroundHas) {
  const auto expect = [this](const std::string& soil, const std::string& text) {
    c.add_infiltration("1\n1 " + soil + "\n", c.per_cell("1"));
    expect_warning("infiltration", {"soils.txt, soil 1: ", text});
  };
  expect("GreenAmpt 1e-6 0 0.2 0.4 1 0", "psi is 0 m");
  expect("GreenAmpt 1e-6 -1e308 0.2 0.4 1 0", "psi is -1e+308 m");
  expect("GreenAmpt 1e-6 0.1 0.2 0.4 0 0", "L is 0 m");
  expect("GreenAmpt 1e-6 0.1 0.2 0.4 1 2", "kr is 2 1/s");
  expect("Horton 1e-6 1e-5 1 0.5 0", "fc is 1e-05 m/s, f0 is 1e-06 m/s");
  expect("Horton 1e-5 -1e-6 1 0.5 0", "fc is -1e-06 m/s");
  expect("Horton 1e-5 1e-6 -1 0.5 0", "k is -1 1/m");
  expect("Horton 1e-5 1e-6 1 0 0", "Fmax is 0 m");
  expect("Horton 1e-5 1e-6 1 0.5 1.5", "kr is 1.5 1/s");
  c.add_infiltration("1\n1 Horton 1e-5 1e-5 0 0.5 -1\n", c.per_cell("1"));
  expect_clean();  // a rate below 0 means no recovery
}

TEST_F(CheckValues, WarnsOfImpossibleMoisture) {
  c.add_infiltration("1\n1 GreenAmpt 1e-6 0.1 20 40 1 0\n", c.per_cell("1"));
  expect_warning("infiltration", {"theta_i is 20, theta_s is 40"});
}

TEST_F(CheckValues, WarnsOfInfiltratedDepthsInMillimetres) {
  c.add_initial_infiltration(c.per_cell("150"));
  expect_warning("infiltration", {"infiltrated.txt", "150 m in 24 cells"});
}

TEST_F(CheckValues, WarnsOfNegativeInfiltratedDepth) {
  c.add_initial_infiltration(c.per_cell("-0.1"));
  expect_warning("infiltration", {"negative in 24 cells"});
}

// --- Sediments ----------------------------------------------------------------------------------

TEST_F(CheckValues, FindsNothingInACleanSedimentCase) {
  use_sediments(0.1);
  expect_clean();
}

TEST_F(CheckValues, WarnsOfInfiltrationThatTheModelWithSedimentsIgnores) {
  use_sediments(0.5);
  c.add_initial_infiltration(c.per_cell("0.01"));
  expect_warning("infiltration", {"nothing infiltrates in the model with sediments"});
}

TEST_F(CheckValues, RefusesTheParametersThatTheSimulatorRefuses) {
  use_sediments(0.1);
  parameter("sediments porosity") = 1.0;
  expect_error("sediments", {"\"sediments porosity\" is 1"});
  use_sediments(0.1);
  parameter("sediments mean grain diameter") = 0.0;
  expect_error("sediments", {"\"sediments mean grain diameter\" is 0 m"});
  use_sediments(0.1);
  parameter("sediments density") = 1.0;
  expect_error("sediments", {"\"sediments density\" is 1"});
}

TEST_F(CheckValues, WarnsOfSenselessParametersWhereThereIsNoSediment) {
  use_sediments(0.0);
  parameter("sediments mean grain diameter") = 0.0;
  expect_warning("sediments", {"\"sediments mean grain diameter\" is 0 m"});
  use_sediments(0.0);
  parameter("sediments density") = 1.0;
  expect_warning("sediments", {"\"sediments density\" is 1"});
}

TEST_F(CheckValues, WarnsOfSedimentsInOtherUnits) {
  use_sediments(0.1);
  parameter("sediments mean grain diameter") = 2.0;
  expect_warning("sediments", {"is 2 m", "millimetres"});
  use_sediments(0.1);
  parameter("sediments density") = 2650.0;
  expect_warning("sediments", {"2650", "kg/m3"});
}

TEST_F(CheckValues, WarnsOfSedimentsWithoutADryDepth) {
  use_sediments(0.1);
  c.data["model"]["zero depth value"] = 0;
  expect_warning("zero depth", {"is 0 m, expected more than 0 with sediments"});
}

TEST_F(CheckValues, WarnsOfNegativeThickness) {
  use_sediments(-0.1);
  expect_warning("sediments", {"negative in 24 cells"});
}

TEST_F(CheckValues, WarnsOfAMobileBedWithoutFriction) {
  use_sediments(0.1);
  c.data["model"]["conditions"].erase("friction");
  expect_warning("sediments", {"no friction file"});
}

// --- Flux scheme ---------------------------------------------------------------------------------

TEST_F(CheckValues, WarnsOfRainOnGroundThatTheFirstSchemeDoesNotBear) {
  c.bed = [](double x, double) { return x > 2.0 ? 0.1 * (x - 2.0) : 0.0; };
  c.add_rain("1\n1 2 1\n0 1e-5 3600 0\n", c.per_cell("1"));
  check();
  ASSERT_EQ(texts("warnings", "steep rain").size(), 1U) << report.dump(2);
  const std::string text = texts("warnings", "steep rain")[0];
  EXPECT_TRUE(support::contains(text, "falls by more than 1 % across ")) << text;
  EXPECT_TRUE(support::contains(text, "\"HLL2\" does not")) << text;
}

TEST_F(CheckValues, DoesNotWarnOfRainOnGroundThatIsFlatOrUnderAnotherScheme) {
  const auto warns = [&](double slope, const std::string& scheme) {
    c.bed = [slope](double x, double) { return slope * x; };
    c.add_rain("1\n1 2 1\n0 1e-5 3600 0\n", c.per_cell("1"));
    c.data["model"]["flux scheme"] = scheme;
    check();
    return !texts("warnings", "steep rain").empty();
  };
  EXPECT_FALSE(warns(0.009, "LHLLC"));
  EXPECT_TRUE(warns(0.05, "LHLLC"));
  EXPECT_FALSE(warns(0.05, "HLL2"));
}

TEST_F(CheckValues, DoesNotWarnOfSteepGroundWithoutRain) {
  c.bed = [](double x, double) { return 0.1 * x; };
  check();
  EXPECT_TRUE(texts("warnings", "steep rain").empty());
}

TEST_F(CheckValues, WarnsOfASmallDryDepthOverSteepGroundUnderTheFirstScheme) {
  const auto warnings = [&](double slope, double zero_depth, const std::string& scheme) {
    c.bed = [slope](double x, double) { return slope * x; };
    c.data["model"]["zero depth value"] = zero_depth;
    c.data["model"]["flux scheme"] = scheme;
    check();
    return texts("warnings", "thin films");
  };
  EXPECT_EQ(
      warnings(0.05, 1e-4, "LHLLC"),
      std::vector<std::string>{
          "\"zero depth value\" is 0.0001 m, and the ground falls by more than 1 % across 29 "
          "edges of 29 (by 4.47 % between the cells 16 and 19): expected 0.001 m or more, as LHLLC "
          "lets films that thin fall below zero there; \"HLL2\" does not"});
  EXPECT_TRUE(warnings(0.009, 1e-4, "LHLLC").empty());
  EXPECT_TRUE(warnings(0.05, 0.001, "LHLLC").empty());
  EXPECT_TRUE(warnings(0.05, 1e-4, "HLL2").empty());
}

}  // namespace
