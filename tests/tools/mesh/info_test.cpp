#include "tools/mesh/CheckTest.hpp"

namespace {

class Info : public CheckTest {};

TEST_F(Info, TellsCountsExtentAreaAndWater) {
  c.x0 = 6000.25;
  c.y0 = 5200.5;
  c.size = 2.0;
  c.initial = [](double x, double) {
    return support::InitialState{x < 6004.25 ? 1.5 : -1.0};  // the western half holds water
  };
  c.write(folder);
  const support::RunResult result = mesh_tool({"info", ".", "--json"});
  ASSERT_EQ(result.status, 0) << result.err;
  const json facts = json::parse(result.out);
  EXPECT_EQ(facts["name"], "Still water");
  EXPECT_EQ(facts["mesh"]["nodes"], 20);
  EXPECT_EQ(facts["mesh"]["cells"], 24);
  EXPECT_EQ(facts["mesh"]["edges"], 43);
  EXPECT_EQ(facts["mesh"]["extent"]["x"], json::parse("[6000.25, 6008.25]"));
  EXPECT_EQ(facts["mesh"]["extent"]["y"], json::parse("[5200.5, 5206.5]"));
  EXPECT_EQ(facts["mesh"]["extent"]["z"], json::parse("[0.0, 0.0]"));
  EXPECT_NEAR(facts["mesh"]["area"].get<double>(), 48.0, 1e-6);
  EXPECT_EQ(facts["water"]["wet cells"], 12);
  EXPECT_NEAR(facts["water"]["area"].get<double>(), 24.0, 1e-6);
  EXPECT_NEAR(facts["water"]["volume"].get<double>(), 36.0, 1e-6);
  EXPECT_NEAR(facts["water"]["largest depth"].get<double>(), 1.5, 1e-12);

  const std::string text = mesh_tool({"info", "."}).out;
  EXPECT_TRUE(support::contains(text, "20 nodes, 24 cells, 43 edges"));
  EXPECT_TRUE(support::contains(text, "x 6000.25 to 6008.25 m"));
  EXPECT_TRUE(support::contains(text, "volume 36 m3 in 12 wet cells"));
}

TEST_F(Info, CountsWaterAboveTheBedFile) {
  c.add_fixed_bed(c.per_cell("0.25"));
  c.write(folder);
  const json facts = json::parse(mesh_tool({"info", ".", "--json"}).out);
  EXPECT_NEAR(facts["water"]["volume"].get<double>(), 9.0, 1e-12);
}

TEST_F(Info, NamesAllThatCannotBeRead) {
  c.files["cells.txt"] = "x";
  c.data["model"]["conditions"]["initial conditions"] = "nowhere.txt";
  c.write(folder);
  const support::RunResult result = mesh_tool({"info", "."});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_TRUE(support::contains(result.err, "cells.txt, line 1"));
  EXPECT_TRUE(support::contains(result.err, "nowhere.txt"));
}

TEST_F(Info, EndsWithStatusTwoAfterWrongUsage) { EXPECT_EQ(mesh_tool({"info"}).status, 2); }

}  // namespace
