// What a run leaves that collapses or loses a state.
#include <algorithm>
#include <cmath>

#include "cases/ReportTest.hpp"

namespace {

using nlohmann::json;
using support::RunResult;

class Failure : public ReportTest {
 protected:
  /// The inflow explodes after half a second.
  void let_it_collapse() {
    c.west = "-33 surge.txt";
    c.files["surge.txt"] = "2\n0 -0.1\n0.5 -1e14\n";
    c.set_times(0.0, 100.0);
  }
  /// An open edge without length has no normal: its flux is not a number.
  void break_an_edge() {
    std::vector<std::string> edges = support::lines(c.edges_text());
    edges.at(2) = "0 -1 1 1 -2";
    for (const std::string& line : edges) c.files["edges.txt"] += line + "\n";
    c.set_times(0.0, 2.0);
  }
};

TEST_F(Failure, OfACollapsedStepIsDescribedInFull) {
  let_it_collapse();
  on_every_path([&] {
    const RunResult result = run_with_report();
    EXPECT_EQ(result.status, 255);
    EXPECT_TRUE(support::starts_with(result.err, "dt too small!\nLimiting cell: ")) << result.err;
    const json all = report();
    EXPECT_EQ(all["outcome"]["status"], "failed");
    EXPECT_EQ(all["outcome"]["reason"], "the time step is too small");
    const json& failure = all["failure"];
    EXPECT_EQ(failure["what"], "the time step is too small");
    EXPECT_EQ(failure["time_s"], all["time"]["reached_s"]);
    EXPECT_EQ(failure["steps_computed"], all["steps"]["computed"]);

    const int cell = failure["cells"][0]["cell"];
    EXPECT_TRUE(support::contains(result.err, "cell: " + std::to_string(cell) + " (counted"));
    EXPECT_EQ(all["steps"]["smallest"]["cell"], cell);
    EXPECT_EQ(failure["cells"][0]["depth_m"], all["steps"]["smallest"]["depth_m"]);

    const json& steps = failure["last_steps"];
    EXPECT_GT(steps.size(), 3U);
    EXPECT_LE(steps.back()["step_s"].get<double>(), 1e-8);
    EXPECT_EQ(steps.back()["cell"], cell);
    for (std::size_t k = 1; k < steps.size(); ++k) {
      // The clock goes on by the step that was just set.
      EXPECT_EQ(steps[k]["time_s"].get<double>(),
                steps[k - 1]["time_s"].get<double>() + steps[k]["step_s"].get<double>());
    }
    EXPECT_EQ(failure["snapshot"], "out/failure.txt");
    EXPECT_EQ(support::lines(folder.read("out/failure.txt")).size(), 25U);
  });
}

TEST_F(Failure, ShowsTheNeighboursAndTheFluxesOfAllTheirEdges) {
  // Still water in which one cell is deep: the run ends at its first step. The only flux is that of
  // the pressure, g h^2 / 2 per metre, but around the deep cell.
  const int deep = c.upper(2, 1);
  const support::Point centre = c.center(deep);
  c.initial = [centre](double x, double y) {
    return support::InitialState{x == centre.x && y == centre.y ? 4.0 : 1.0};
  };
  c.data["CFL"] = 1e-9;
  on_every_path([&] {
    EXPECT_EQ(run_with_report().status, 255);
    const json failure = report()["failure"];
    // The lower triangle of the square, that of the square above, the upper one to the west.
    ASSERT_EQ(failure["cells"].size(), 4U);
    EXPECT_EQ(failure["cells"][0]["cell"], deep);
    EXPECT_EQ(failure["cells"][0]["depth_m"], 4.0);
    std::vector<int> neighbours;
    for (std::size_t k = 1; k < 4; ++k) {
      neighbours.push_back(failure["cells"][k]["cell"]);
      EXPECT_EQ(failure["cells"][k]["depth_m"], 1.0);
      EXPECT_NEAR(failure["cells"][k]["area_m2"], 0.5, 1e-14);
    }
    std::sort(neighbours.begin(), neighbours.end());
    std::vector<int> expected = {c.lower(2, 1), c.lower(2, 2), c.lower(1, 1)};
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(neighbours, expected);

    // Three edges of the deep cell, and two more of each neighbour.
    ASSERT_EQ(failure["edges"].size(), 9U);
    int of_deep = 0;
    for (const json& edge : failure["edges"]) {
      const bool is_of_deep = edge["left_cell"] == deep || edge["right_cell"] == deep;
      of_deep += is_of_deep ? 1 : 0;
      const double into_left = edge["into_left"]["water_m3_per_s"];
      EXPECT_NEAR(into_left, -edge["into_right"]["water_m3_per_s"].get<double>(), 1e-12);
      if (is_of_deep) {
        EXPECT_GT(edge["right_cell"] == deep ? into_left : -into_left, 0.1);
      } else {
        EXPECT_NEAR(into_left, 0.0, 1e-12);
        const json& momentum = edge["into_left"]["momentum_m4_per_s2"];
        EXPECT_NEAR(std::hypot(momentum[0].get<double>(), momentum[1].get<double>()),
                    4.905 * edge["length_m"].get<double>(), 1e-12);
      }
    }
    EXPECT_EQ(of_deep, 3);
  });
}

TEST_F(Failure, ShowsTheFluxesOfItsTimeAndItsDryDepth) {
  const int deep = c.upper(0, 1);
  const support::Point centre = c.center(deep);
  c.initial = [centre](double x, double y) {
    const bool is_deep = std::hypot(x - centre.x, y - centre.y) < 1e-9;
    return is_deep ? support::InitialState{4.0, 80.0} : support::InitialState{0.5};
  };
  c.data["model"]["zero depth value"] = 0.6;
  c.west = "-33 inflow.txt";
  c.files["inflow.txt"] = "2\n0 0\n10 -1\n";
  c.set_times(5.0, 6.0);
  c.data["CFL"] = 1e-9;
  on_every_path([&] {
    EXPECT_EQ(run_with_report().status, 255);
    int of_deep = 0, between_dry = 0;
    const json failure = report()["failure"];
    for (const json& edge : failure["edges"]) {
      const double water = edge["into_left"]["water_m3_per_s"];
      const auto momentum = edge["into_left"]["momentum_m4_per_s2"].get<std::vector<double>>();
      if (edge["left_cell"] == deep && edge["right_cell"].is_null()) {
        EXPECT_NEAR(water, 0.5, 1e-12);
        ++of_deep;
      } else if (edge["left_cell"] != deep && edge["right_cell"] != deep) {
        if (edge["right_cell"].is_null()) continue;  // the inflow
        EXPECT_EQ(std::hypot(momentum[0], momentum[1]), 0.0);
        ++between_dry;
      }
    }
    EXPECT_EQ(of_deep, 1);
    EXPECT_GT(between_dry, 0);
  });
}

TEST_F(Failure, KeepsTheLastFiftySteps) {
  let_it_collapse();
  c.files["surge.txt"] = "3\n0 -0.1\n5 -0.1\n5.5 -1e14\n";
  EXPECT_EQ(run_with_report().status, 255);
  const json all = report();
  EXPECT_GT(all["steps"]["computed"].get<int>(), 60);
  EXPECT_EQ(all["failure"]["last_steps"].size(), 50U);
}

TEST_F(Failure, OfAStateThatIsNotANumberIsDescribedAtItsFirstInstant) {
  break_an_edge();
  on_every_path([&] {
    const RunResult result = run_with_report();
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(support::contains(result.err, " cells is not a number at t = ")) << result.err;
    EXPECT_TRUE(support::contains(result.err, "Cell whose state is not a number: ")) << result.err;
    const json all = report();
    EXPECT_EQ(all["outcome"]["status"], "complete");
    EXPECT_TRUE(support::contains(all["outcome"]["reason"], "not every state is a number"));
    EXPECT_GT(all["not_a_number"]["cells_at_end"].get<int>(), 0);
    EXPECT_EQ(all["not_a_number"]["first_seen_after_steps"], 1);
    EXPECT_EQ(all["water"]["final_m3"], nullptr);
    EXPECT_EQ(all["water"]["relative_error"], nullptr);
    const json& failure = all["failure"];
    EXPECT_EQ(failure["what"], "a state is not a number");
    EXPECT_EQ(failure["steps_computed"], 1);
    EXPECT_EQ(failure["cells"][0]["cell"], 0);  // the one with the broken edge, and no other yet
    EXPECT_EQ(failure["cells"][0]["depth_m"], nullptr);
    EXPECT_EQ(failure["last_steps"].size(), 2U);
    const std::vector<std::string> rows = support::lines(folder.read("out/failure.txt"));
    ASSERT_EQ(rows.size(), 25U);
    EXPECT_TRUE(support::contains(rows[1], "nan"));
    for (std::size_t k = 2; k < rows.size(); ++k) EXPECT_FALSE(support::contains(rows[k], "nan"));
  });
}

TEST_F(Failure, IsToldInShortWithoutAReportAndLeavesNoFile) {
  break_an_edge();
  c.write(folder);
  const RunResult lost = support::run_case(folder);
  EXPECT_EQ(lost.status, 0);
  EXPECT_TRUE(support::contains(lost.err, " cells is not a number at t = ")) << lost.err;
  EXPECT_TRUE(support::contains(lost.err, "Cell whose state is not a number: ")) << lost.err;
  EXPECT_EQ(run_with_report().err, lost.err);
  std::filesystem::remove(folder.file("out/failure.txt"));

  c = {};
  let_it_collapse();
  const RunResult collapsed = run();
  EXPECT_EQ(collapsed.status, 255);
  EXPECT_FALSE(folder.has("out/failure.txt"));
  EXPECT_EQ(run_with_report().err, collapsed.err);
}

TEST_F(Failure, ReplacesNoInputFileWithItsSnapshot) {
  let_it_collapse();
  c.files["out/failure.txt"] = c.initial_text();
  c.data["model"]["conditions"]["initial conditions"] = "out/failure.txt";
  const support::RunResult result = run_with_report();
  EXPECT_EQ(result.status, 255);
  EXPECT_EQ(result.err,
            "Error. The snapshot of a failure (out/failure.txt) would replace an input file of "
            "this run (out/failure.txt).\n");
  EXPECT_EQ(folder.read("out/failure.txt"), c.initial_text());
}

TEST_F(Failure, LeavesASnapshotUnderWayAsItIs) {
  // The run ends while the snapshot of its first instant is being written.
  c = support::Case();
  c.nx = c.ny = 150;
  c.data["CFL"] = 1e-9;
  c.add_snapshots({0.0});
  EXPECT_EQ(run_with_report().status, 255);
  const std::vector<std::string> depths = column("out/pic_0_00.txt", 3);
  EXPECT_EQ(depths.size(), 45000U);
  EXPECT_EQ(std::count(depths.begin(), depths.end(), "1"), 45000);
  EXPECT_EQ(column("out/failure.txt", 3), depths);
}

TEST_F(Failure, OfSedimentIsDescribedToo) {
  let_it_collapse();
  c.west = "-3 -1e14";
  lay_sand(c, "0.25");
  on_every_path([&] {
    EXPECT_EQ(run_with_report().status, 255);
    const json failure = report()["failure"];
    EXPECT_GE(failure["cells"].size(), 2U);
    EXPECT_EQ(failure["cells"][1]["sediment_m"], 0.25);
    EXPECT_TRUE(failure["edges"][0]["into_left"].contains("sediment_m3_per_s"));
    const auto header = support::lines(folder.read("out/failure.txt")).at(0);
    EXPECT_EQ(header, "x\ty\tzb\th\tqx\tqy\ths\tqsx\tqsy");
  });
}

}  // namespace
