// Discharges of whole boundaries, in m3/s.
#include <cmath>
#include <map>
#include <set>

#include "tools/mesh/ImportTest.hpp"

namespace {

using support::contains;

class Discharge : public support::ImportTest {
 protected:
  /// The words behind the code on the edges of a code, by their order in the edges file.
  std::vector<std::string> arguments(int code) {
    std::vector<std::string> found;
    for (const auto& line : lines("edges.txt")) {
      std::istringstream words(line);
      int left, right, node1, node2, of_edge;
      std::string argument;
      if (words >> left >> right >> node1 >> node2 >> of_edge >> argument && of_edge == code) {
        found.push_back(argument);
      }
    }
    return found;
  }
  std::vector<double> values(int code) {
    std::vector<double> found;
    for (const auto& argument : arguments(code)) found.push_back(std::stod(argument));
    return found;
  }
  /// Of the water up to a level in the three cells at the west, whose edges are 1 m long.
  std::vector<double> conveyances(double level) {
    std::vector<double> found;
    for (int j = 0; j < 3; ++j) {
      const double bed = (sample.z(0, j) + sample.z(1, j + 1) + sample.z(0, j + 1)) / 3.0;
      found.push_back(std::pow(std::max(level - bed, 0.0), 5.0 / 3.0) / friction(j));
    }
    return found;
  }
  static double friction(int j) { return j == 0 ? 0.03 : 0.06; }
  /// Friction that differs between the southern row of cells and the others.
  std::string friction_grid() {
    return folder.write("n.asc", support::asc_grid(40, 30, 0.0, 0.0, 0.1, [](double, double y) {
                          return friction(static_cast<int>(y));
                        }));
  }
  void expect_spread(const std::vector<double>& given, const std::vector<double>& weights,
                     double total) {
    ASSERT_EQ(given.size(), weights.size());
    double sum = 0.0, weight = 0.0;
    for (std::size_t i = 0; i < given.size(); ++i) {
      sum += given[i];
      weight += weights[i];
    }
    EXPECT_NEAR(sum, total, 1e-14 * std::abs(total));
    for (std::size_t i = 0; i < given.size(); ++i) {
      EXPECT_NEAR(given[i], total * weights[i] / weight, 1e-10 * std::abs(total));
    }
  }
};

TEST_F(Discharge, IsSpreadByTheConveyanceOfTheInitialWater) {
  const std::string out = import_well(
      {"--level", "0.2", "--friction", friction_grid(), "--boundary", "west=discharge:-40m3/s"});
  EXPECT_TRUE(contains(out,
                       "Spread the discharge of west over 3 of 3 edges, by conveyance of the "
                       "initial water.\n"))
      << out;
  EXPECT_TRUE(contains(out, "-40 m3/s (in)")) << out;
  expect_spread(values(-3), conveyances(0.2), -40.0);
}

TEST_F(Discharge, IsSpreadByTheConveyanceBelowAGivenLevel) {
  const std::string out = import_well({"--level", "2", "--friction", friction_grid(), "--boundary",
                                       "west=discharge: 1.5 m³/s", "--spread", "west=0.1"});
  EXPECT_TRUE(contains(out, "over 2 of 3 edges, by conveyance below 0.1 m.\n")) << out;
  expect_spread(values(-3), conveyances(0.1), 1.5);
}

TEST_F(Discharge, IsSpreadEvenlyWhereItIsAskedForAndWhereItIsDry) {
  import_well({"--level", "2", "--boundary", "west=discharge:-40m3/s", "--spread", "west=even"});
  expect_spread(values(-3), {1.0, 1.0, 1.0}, -40.0);
  const std::string out = import_well({"--boundary", "west=discharge:-4000l/s", "--overwrite"});
  EXPECT_TRUE(contains(out, "evenly, as it is dry at the start")) << out;
  expect_spread(values(-3), {1.0, 1.0, 1.0}, -4.0);
}

TEST_F(Discharge, StaysAUnitDischargeWithoutCubicMetres) {
  import_well(
      {"--level", "1", "--boundary", "west=discharge:-2.5m2/s", "--boundary", "east=level:1.25 m"});
  EXPECT_EQ(values(-3), (std::vector<double>{-2.5, -2.5, -2.5}));
  EXPECT_EQ(values(-4), (std::vector<double>{1.25, 1.25, 1.25}));
}

TEST_F(Discharge, OfATableIsSpreadOverEveryTime) {
  folder.write("flood.csv",
               "# measured at the bridge\r\ntime [h],discharge [m³/s]\r\n0,-1\r\n0.5,-4.2\r\n"
               "2,-0.3\r\n");
  import_well(
      {"--level", "0.2", "--friction", friction_grid(), "--boundary", "west=hydrograph:flood.csv"});
  EXPECT_EQ(data()["tend"], 7200.0);
  const auto files = arguments(-33);
  EXPECT_EQ((std::set<std::string>(files.begin(), files.end()).size()), 3U);
  const std::vector<double> times = {0.0, 1800.0, 7200.0}, totals = {-1.0, -4.2, -0.3};
  for (std::size_t k = 0; k < totals.size(); ++k) {
    std::vector<double> given;
    for (const auto& file : files) {
      EXPECT_EQ(column(file, 0, 1).at(k), times[k]);
      given.push_back(column(file, 1, 1).at(k));
    }
    expect_spread(given, conveyances(0.2), totals[k]);
  }
}

TEST_F(Discharge, OfATableSpreadEvenlyTakesOneFile) {
  folder.write("flood.txt", "t [min] Q [m3/s]\n0 -1\n1 -3\n");
  import_well({"--boundary", "west=hydrograph:flood.txt", "--spread", "west=even"});
  EXPECT_EQ(arguments(-33), (std::vector<std::string>(3, "boundary_west.txt")));
  EXPECT_EQ(column("boundary_west.txt", 0, 1), (std::vector<double>{0.0, 60.0}));
  EXPECT_NEAR(column("boundary_west.txt", 1, 1).at(1), -1.0, 1e-15);
}

TEST_F(Discharge, IsWhatFlowsIn) {
  folder.write("flood.txt", "t_min; Q_m3s\n0; -0.5\n10; -0.5\n");
  import_well({"--level", "0.8", "--friction", friction_grid(), "--boundary",
               "west=hydrograph:flood.txt", "--boundary", "east=level:0.8", "--section", "gate",
               "--end", "200"});
  run_case();
  EXPECT_NEAR(column("out/sections.txt", 1, 0).back(), 0.5, 0.03);
}

TEST_F(Discharge, IsOneRowOfTheCheck) {
  folder.write("flood.csv", "time [s],discharge [m3/s]\n0,-2\n60,-3\n");
  import_well({"--level", "0.2", "--boundary", "west=hydrograph:flood.csv", "--boundary",
               "east=discharge:1m3/s", "--end", "90"});
  support::RunOptions options;
  options.program = QUILLMERE_MESH_PROGRAM;
  const auto checked =
      support::run_program(folder.path(), {"check", "case", "--quick", "--json"}, options);
  const auto report = nlohmann::json::parse(checked.out);
  std::map<std::string, double> discharges;
  for (const auto& boundary : report["boundaries"]) {
    if (boundary["name"].is_null()) continue;
    const bool is_new =
        discharges.insert({boundary["name"], boundary["discharge"].get<double>()}).second;
    EXPECT_TRUE(is_new) << report["boundaries"];
    EXPECT_EQ(boundary["edges"], 3);
  }
  ASSERT_EQ(discharges.size(), 2U);
  EXPECT_NEAR(discharges["west"], -2.0, 1e-14);
  EXPECT_NEAR(discharges["east"], 1.0, 1e-14);
  EXPECT_EQ(report["warnings"].dump().find("boundary_west.2.txt ends"), std::string::npos);
}

TEST_F(Discharge, OfAnotherUnitIsRefused) {
  EXPECT_TRUE(contains(import_badly(2, {"--boundary", "west=discharge:-40m"}),
                       "found \"west=discharge:-40m\", expected a number after \"discharge:\", in "
                       "m2/s, or in m3/s as in -40m3/s"));
  EXPECT_TRUE(contains(import_badly(2, {"--boundary", "west=level:4m3/s"}), "in m"));
}

TEST_F(Discharge, IsNotSpreadWhereNothingIs) {
  EXPECT_TRUE(contains(import_badly(2, {"--spread", "west=wet"}),
                       "found \"west=wet\", expected NAME=even or NAME=LEVEL"));
  EXPECT_TRUE(contains(
      import_badly(1, {"--boundary", "west=discharge:-4", "--spread", "west=even"}),
      "--spread west: no discharge in m3/s is given for \"west\"; expected the name of a boundary "
      "that has one, as in --boundary west=discharge:-40m3/s."));
  EXPECT_TRUE(contains(
      import_badly(1, {"--boundary", "west=discharge:-4m3/s", "--spread", "west=-3"}),
      "--spread west=-3: no cell along the boundary lies below this level, the lowest at 0.0466667 "
      "m; expected a higher one."));
}

TEST_F(Discharge, TablesThatDoNotSuitAreRefusedWithTheirLine) {
  const std::map<std::string, std::string> faults = {
      {"time [h],level [m]\n0,1\n1,1\n",
       "line 1: found \"level [m]\", expected a title that ends in m3/s or m2/s"},
      {"time [ft],Q [m3/s]\n0,1\n1,1\n",
       "line 1: found \"time [ft]\", expected a title that ends in s, min, h or d"},
      {"time [s]\n0\n1\n", "line 1: found \"time [s]\", expected two titles"},
      {"time [s],Q [m3/s],b\n0,1,2\n1,2,3\n",
       "line 1: found \"time [s],Q [m3/s],b\", expected two"},
      {"time [s],Q [m3/s]\n0,1\n0,2\n",
       "line 3: found \"0\", expected a time later than that of the line before"},
      {"time [s],Q [m3/s]\n0,1\n\n2,x\n", "line 4: found \"x\", expected a number"},
      {"time [s],Q [m3/s]\n0,1\n2\n", "line 3: found \"2\", expected a time and a value"},
      {"time [s],Q [m3/s]\n0,1\n", "found 1 lines of values, expected at least 2"}};
  for (const auto& [text, message] : faults) {
    folder.write("q.csv", text);
    const std::string err = import_badly(1, {"--boundary", "west=hydrograph:q.csv"});
    EXPECT_TRUE(contains(err, "q.csv")) << err;
    EXPECT_TRUE(contains(err, message)) << err;
  }
}

}  // namespace
