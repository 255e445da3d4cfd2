#include <iomanip>
#include <sstream>

#include "cases/CaseTest.hpp"

namespace {

class Snapshots : public CaseTest {
 protected:
  /// The first line of a snapshot.
  std::string header(const std::string& name) {
    return support::lines(folder.read("out/" + name)).at(0);
  }
  std::string first_depth(const std::string& name) { return column("out/" + name, 3).at(0); }
  std::vector<std::string> written() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.file("out"))) {
      const std::string name = entry.path().filename().string();
      if (name != "enveloppe.txt") names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
  }
  /// The whole snapshot of the initial state, formatted by an output stream.
  std::string expected_initial_snapshot() {
    std::ostringstream text;
    text << "x\ty\tzb\th\tqx\tqy\n";
    for (int cell = 0; cell < c.n_cells(); ++cell) {
      const support::Point centre = c.center(cell);
      const support::InitialState state = c.initial(centre.x, centre.y);
      if (std::abs(centre.x) >= 1000.0) text << std::fixed << std::setprecision(3);
      text << centre.x << '\t' << centre.y << '\t' << c.bed(centre.x, centre.y) << '\t';
      text << std::defaultfloat << std::setprecision(6);
      text << state.zs - c.bed(centre.x, centre.y) << '\t' << state.qx << '\t' << state.qy << '\n';
    }
    return text.str();
  }
};

TEST_F(Snapshots, ShowTheInitialStateAtTheStart) {
  c.bed = [](double x, double y) { return 0.2 + 0.1 * x + 0.05 * y; };
  c.initial = [](double x, double y) { return support::InitialState{2.0, 0.1 * x, -1e-7 * y}; };
  c.add_snapshots({0.0});
  run_well();
  EXPECT_EQ(folder.read("out/pic_0_00.txt"), expected_initial_snapshot());
}

TEST_F(Snapshots, WritePlacesFromAThousandMetresOnWithThreeDecimals) {
  c.size = 3.0;
  c.x0 = 992.0;  // centres on 1000 m exactly, and on both sides of it
  c.y0 = 2000000.0;
  c.initial = [](double x, double) { return support::InitialState{1234.5678, x, -0.00012345678}; };
  c.add_snapshots({0.0});
  run_well();
  EXPECT_EQ(folder.read("out/pic_0_00.txt"), expected_initial_snapshot());
  EXPECT_TRUE(support::contains(expected_initial_snapshot(),
                                "\n1000.000\t2000001.000\t0.000\t1234.57\t1000\t-0.000123457\n"));
}

TEST_F(Snapshots, ShowTheFirstPassFromTheirTimeOn) {
  let_it_rain();
  const double step = step_at_rest();
  c.add_snapshots({0.1, 0.25});
  c.add_gauges({{0.6, 0.2}}, 1e-9);  // every pass
  c.add_sections({}, 1e-9, "passes.txt");
  run_well();
  const std::vector<std::string> depths = column("out/gauges.txt", 1);
  const auto pass_from = [&](double time) {
    const std::vector<double> passes = pass_times();
    std::size_t pass = 0;
    while (passes.at(pass) < time) ++pass;
    return pass;
  };
  EXPECT_NEAR(pass_times()[pass_from(0.1)], 3.0 * step, 0.01 * step);
  EXPECT_EQ(first_depth("pic_0_10.txt"), depths.at(pass_from(0.1)));
  EXPECT_EQ(first_depth("pic_0_25.txt"), depths.at(pass_from(0.25)));
  EXPECT_NE(first_depth("pic_0_10.txt"), first_depth("pic_0_25.txt"));
}

TEST_F(Snapshots, OfOneStepAreWrittenInConsecutivePasses) {
  let_it_rain();
  c.add_snapshots({0.5, 0.51, 0.52});
  c.add_gauges({{0.6, 0.2}}, 1e-9);
  run_well();
  const std::vector<std::string> depths = column("out/gauges.txt", 1);
  const auto first = std::find(depths.begin(), depths.end(), first_depth("pic_0_50.txt"));
  ASSERT_LT(first + 2, depths.end());
  EXPECT_EQ(first_depth("pic_0_51.txt"), *(first + 1));
  EXPECT_EQ(first_depth("pic_0_52.txt"), *(first + 2));
}

TEST_F(Snapshots, WithTheSameTwoDecimalsOverwriteEachOther) {
  let_it_rain();
  c.add_snapshots({0.501, 0.509});
  c.add_gauges({{0.6, 0.2}}, 1e-9);
  const support::RunResult result = run();
  EXPECT_EQ(result.status, 0);
  EXPECT_TRUE(support::starts_with(result.err, "Warning: snapshot 1 (counted from 0), "))
      << result.err;
  EXPECT_EQ(written(), (std::vector<std::string>{"gauges.txt", "pic_0_50.txt"}));
  c.add_snapshots({0.501});
  const std::string later = first_depth("pic_0_50.txt");
  run_well();
  EXPECT_LT(std::stod(first_depth("pic_0_50.txt")), std::stod(later));
}

TEST_F(Snapshots, AreNamedAfterTheirTimeCutOffAtTwoDecimals) {
  c.set_times(0.0, 13.0);
  c.add_snapshots({0.0, 0.125, 12.5});
  run_well();
  EXPECT_EQ(written(), (std::vector<std::string>{"pic_0_00.txt", "pic_0_12.txt", "pic_12_50.txt"}));
}

TEST_F(Snapshots, AreNotWrittenWhenNoPassStartsFromTheirTimeOn) {
  const double step = step_at_rest();
  c.set_times(0.0, 10.5 * step);  // the last pass starts after ten steps
  c.add_snapshots({9.5 * step, 10.4 * step, 10.5 * step, 100.0});
  run_well();
  EXPECT_EQ(written().size(), 1U);
}

TEST_F(Snapshots, AreWrittenWithinTheToleranceBeforeTheirTime) {
  c.add_snapshots({5e-9});
  c.set_times(0.0, 0.5 * step_at_rest());  // one pass, at 0 s
  run_well();
  EXPECT_EQ(written(), std::vector<std::string>{"pic_0_00.txt"});
  c.add_snapshots({0.01 + 2e-8});
  std::filesystem::remove(folder.file("out/pic_0_00.txt"));
  c.set_times(0.01, 0.02);
  run_well();
  EXPECT_TRUE(written().empty());
}

TEST_F(Snapshots, WithoutTimesWriteNothing) {
  c.add_snapshots({});
  run_well();
  EXPECT_TRUE(written().empty());
}

TEST_F(Snapshots, ShowTheMeanNodeElevationThoughABedFileIsGiven) {
  c.bed = [](double x, double) { return 0.1 * x; };
  c.add_fixed_bed(c.per_cell("0.75"));
  c.add_snapshots({0.0});
  run_well();
  const std::vector<std::string> zb = column("out/pic_0_00.txt", 2);
  for (int cell = 0; cell < c.n_cells(); ++cell) {
    EXPECT_EQ(zb.at(static_cast<std::size_t>(cell)), support::shown(0.1 * c.center(cell).x));
  }
  // The depth stands on the bed of the file.
  EXPECT_EQ(column("out/pic_0_00.txt", 3), std::vector<std::string>(24, "0.25"));
}

TEST_F(Snapshots, ShowTheInfiltratedDepthOnlyWithInfiltration) {
  const std::string plain = "x\ty\tzb\th\tqx\tqy";
  c.add_snapshots({0.0, 0.5});
  let_it_rain();
  run_well();
  EXPECT_EQ(header("pic_0_00.txt"), plain);

  c.add_infiltration("1\n1 Horton 0.01 0.01 0 100 0\n", c.per_cell("1"));
  run_well();
  EXPECT_EQ(header("pic_0_00.txt"), plain + "\tf");
  EXPECT_EQ(column("out/pic_0_00.txt", 6), std::vector<std::string>(24, "0"));
  EXPECT_GT(std::stod(column("out/pic_0_50.txt", 6).at(0)), 0.004);
}

TEST_F(Snapshots, ShowTheInfiltratedDepthWithInitialInfiltrationAlone) {
  c.add_snapshots({0.0});
  c.add_initial_infiltration(c.per_cell("0.125"));
  run_well();
  EXPECT_EQ(header("pic_0_00.txt"), "x\ty\tzb\th\tqx\tqy\tf");
  EXPECT_EQ(column("out/pic_0_00.txt", 6), std::vector<std::string>(24, "0.125"));
}

}  // namespace
