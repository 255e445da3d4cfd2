#include <iomanip>
#include <sstream>

#include "cases/CaseTest.hpp"

namespace {

class Enveloppe : public CaseTest {
 protected:
  void write_every(double interval) {
    c.data["output"]["time step enveloppe of results"] = interval;
  }
  /// The largest depth of every cell.
  std::vector<std::string> depths() {
    std::vector<std::string> values;
    for (const std::string& line : support::lines(folder.read("out/enveloppe.txt"))) {
      values.push_back(support::split(line, '\t').at(3));
    }
    return values;
  }
};

TEST_F(Enveloppe, IsFirstWrittenAtTheSecondPass) {
  let_it_rain();
  write_every(1000.0);
  c.add_snapshots({0.5 * step_at_rest()});  // due at the second pass, too
  run_well();
  EXPECT_EQ(depths(), column("out/pic_0_02.txt", 3));
}

TEST_F(Enveloppe, IsNotWrittenInARunOfOnePass) {
  c.set_times(0.0, 0.5 * step_at_rest());
  run_well();
  EXPECT_FALSE(folder.has("out/enveloppe.txt"));
}

TEST_F(Enveloppe, HoldsTheLatestOfSeveralWrites) {
  let_it_rain();
  c.set_times(0.0, 0.8);
  write_every(0.5);
  c.add_snapshots({0.01, 0.5000001});
  run_well();
  EXPECT_EQ(support::lines(folder.read("out/enveloppe.txt")).size(), 24U);
  EXPECT_EQ(depths(), column("out/pic_0_50.txt", 3));
  EXPECT_NE(depths(), column("out/pic_0_01.txt", 3));
}

TEST_F(Enveloppe, ReplacesTheEnvelopeOfAnEarlierRun) {
  folder.write("out/enveloppe.txt", std::string(100000, 'x'));
  run_well();
  EXPECT_EQ(depths(), std::vector<std::string>(24, "1"));
}

TEST_F(Enveloppe, KeepsTheLargestDepthWhileTheWaterSinks) {
  c.add_infiltration("1\n1 Horton 0.1 0.1 0 100 0\n", c.per_cell("1"));
  write_every(0.01);
  c.add_gauges({{0.6, 0.2}}, 0.01);
  run_with_warning("f0 is 0.1 m/s");
  const std::vector<std::string> gauge = column("out/gauges.txt", 1);
  EXPECT_LT(std::stod(gauge.back()), 0.95);
  // The depth after the first step; the initial state itself does not count.
  EXPECT_EQ(depths(), std::vector<std::string>(24, gauge.at(1)));
}

TEST_F(Enveloppe, StartsWithTheStartOfTheRun) {
  let_it_rain();
  c.set_times(100.0, 100.0 + 1.5 * step_at_rest());
  run_well();
  EXPECT_EQ(depths().size(), 24U);
}

TEST_F(Enveloppe, IsTheOnlyResultWithoutFurtherOutputs) {
  c.set_times(0.0, 20.0);
  run_well();
  int files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder.file("out"))) {
    EXPECT_EQ(entry.path().filename(), "enveloppe.txt");
    ++files;
  }
  EXPECT_EQ(files, 1);
}

TEST_F(Enveloppe, WritesAnyPlaceWithSixDigitsBelowAThousandMetres) {
  c.x0 = 990.0;
  c.y0 = 5000000.0;
  c.bed = [](double x, double) { return 0.001 * x; };
  c.initial = [](double, double) { return support::InitialState{2.0}; };
  run_with_warning("of their area");
  const std::string text = folder.read("out/enveloppe.txt");
  EXPECT_TRUE(support::starts_with(text, "990.667\t5e+06\t0.990667\t")) << text;
}

TEST_F(Enveloppe, WritesThePlaceWithThreeDecimalsFromAThousandMetresOn) {
  c.size = 3.0;
  c.x0 = 992.0;  // centres on 1000 m exactly, and on both sides of it
  c.y0 = 2000000.0;
  c.bed = [](double, double) { return 0.123456; };
  c.initial = [](double, double) { return support::InitialState{2.0}; };
  run_well();
  std::ostringstream expected;
  for (int cell = 0; cell < c.n_cells(); ++cell) {
    const support::Point centre = c.center(cell);
    if (centre.x >= 1000.0) expected << std::fixed << std::setprecision(3);
    expected << centre.x << '\t' << centre.y << '\t' << 0.123456 << '\t';
    expected << std::defaultfloat << std::setprecision(6) << 2.0 - 0.123456 << '\n';
  }
  EXPECT_EQ(folder.read("out/enveloppe.txt"), expected.str());
  EXPECT_TRUE(support::contains(expected.str(), "\n1000.000\t2000001.000\t0.123\t1.87654\n"));
  EXPECT_TRUE(support::contains(expected.str(), "\n997\t2e+06\t0.123456\t1.87654\n"));
}

TEST_F(Enveloppe, CountsTheDistanceFromZeroOnBothSides) {
  c.x0 = -5000.0;
  run_well();
  EXPECT_TRUE(support::starts_with(folder.read("out/enveloppe.txt"),
                                   "-4999.333\t0.333\t0.000\t1\n-4999.667\t0.667\t0.000\t1\n"));
}

}  // namespace
