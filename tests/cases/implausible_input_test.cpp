// What the simulator runs with, and says that it makes no sense.
#include "cases/CaseTest.hpp"

namespace {

class ImplausibleInput : public CaseTest {};

TEST_F(ImplausibleInput, IsACourantNumberAboveOne) {
  c.data["CFL"] = 1.5;
  run_with_warning("\"CFL\" is 1.5, expected at most 1");
}

TEST_F(ImplausibleInput, IsADryDepthBelowZero) {
  c.data["model"]["zero depth value"] = -0.1;
  run_with_warning("\"model/zero depth value\" is -0.1 m");
}

TEST_F(ImplausibleInput, IsADryDepthOfZeroWithSediments) {
  c.data["model"]["name"] = "Bramsett";
  c.data["model"]["zero depth value"] = 0.0;
  c.data["model"]["parameters"] = {{"sediments mean grain diameter", 0.001},
                                   {"sediments density", 2.65},
                                   {"sediments friction coefficient", 0.03},
                                   {"sediments porosity", 0.4}};
  c.data["model"]["conditions"]["initial sediments level"] = "sediment.txt";
  c.files["sediment.txt"] = c.per_cell("0.1");
  c.add_friction(c.per_cell("0.03"));
  run_with_warning("\"model/zero depth value\" is 0 m, expected more than 0 with sediments");
}

TEST_F(ImplausibleInput, IsAnIntervalThatIsNotPositive) {
  c.data["output"]["time step enveloppe of results"] = 0;
  run_with_warning("\"output/time step enveloppe of results\" is 0 s");
  c = support::Case();
  c.add_gauges({{0.6, 0.2}}, 0.0);
  run_with_warning("gauges_in.txt: the recording interval is 0 s");
  c = support::Case();
  c.add_sections({{0}}, -1.0);
  run_with_warning("sections_in.txt: the recording interval is -1 s");
}

TEST_F(ImplausibleInput, IsStricklersCoefficientForManningsAndANegativeOne) {
  c.add_friction(c.per_cell("30"));
  run_with_warning("friction.txt: the Manning coefficient is 30 in 24 cells, such as cell 0");
  c.add_friction("-0.03\n" + c.per_cell("0.03"));
  run_with_warning("friction.txt: the Manning coefficient is -0.03 in 1 cell, such as cell 0");
}

TEST_F(ImplausibleInput, IsRainThatFallsUpwardsAndANegativeStep) {
  c.add_rain("1\n7 1 1\n0 -1e-6\n", c.per_cell("7"));
  run_with_warning("rain.txt, hyetogram 7 falls to -1e-06 m/s");
  c.add_rain("1\n7 1 -5\n0 1e-6\n", c.per_cell("7"));
  run_with_warning("rain.txt, hyetogram 7 has a step of -5 s");
}

TEST_F(ImplausibleInput, IsASoilThatNoGroundHas) {
  c.add_infiltration("1\n7 GreenAmpt 1e-6 0.1 0.2 0.4 0 0\n", c.per_cell("7"));
  run_with_warning("soils.txt, soil 7: L is 0 m");
  c.add_infiltration("1\n7 Horton 1e-6 1e-5 1 0.5 0\n", c.per_cell("7"));
  run_with_warning("soils.txt, soil 7: fc is 1e-05 m/s, f0 is 1e-06 m/s");
}

TEST_F(ImplausibleInput, IsCountedFromTheEleventhSoilOn) {
  std::string soils = "12\n";
  for (int id = 0; id < 12; ++id) soils += std::to_string(id) + " Horton 1e-6 1e-6 1 0 0\n";
  c.add_infiltration(soils, c.per_cell("7"));
  const support::RunResult result = run();
  EXPECT_EQ(support::lines(result.err).size(), 11U) << result.err;
  EXPECT_TRUE(support::contains(result.err, "Warning: 2 more about soils.\n")) << result.err;
}

TEST_F(ImplausibleInput, NamesTheSoilOrTheCellThatMakesTheInfiltrationNoNumber) {
  c.add_infiltration("1\n7 GreenAmpt 1e-5 -1e308 0.2 0.4 1 0\n", c.per_cell("7"));
  EXPECT_TRUE(support::contains(run().err, "Warning: soils.txt, soil 7: psi is -1e+308 m"));
  c.add_infiltration("1\n7 GreenAmpt 1e-5 0.1 0.2 0.4 1 0\n", c.per_cell("7"));
  c.add_initial_infiltration(c.per_cell("0") + "-1e308\n");
  c.files["infiltrated.txt"] = "-1e308\n" + c.per_cell("0");
  const support::RunResult result = run();
  EXPECT_TRUE(support::contains(result.err,
                                "Warning: infiltrated.txt: the initial infiltration is negative "
                                "in 1 cell, such as cell 0"))
      << result.err;
}

TEST_F(ImplausibleInput, IsAnOutflowFromADryCell) {
  c.initial = [](double x, double) { return support::InitialState{x < 1.0 ? 0.0 : 0.5}; };
  c.west = "-33 outflow.txt";
  c.files["outflow.txt"] = "2\n0 0\n20 1e-12\n";
  c.set_times(0.0, 0.01);
  run_with_warning(
      "the imposed discharge of 3 edges, such as edge 3 (counted from 0), takes water out of dry "
      "cells");
}

TEST_F(ImplausibleInput, IsNoMeshWithoutCells) {
  for (const char* const name : {"nodes.txt", "cells.txt", "edges.txt"}) c.files[name] = "0\n";
  expect_stop(
      "Error in file cells.txt, header, number of records: found 0, expected 1 or more: a mesh has "
      "cells.\n");
}

TEST_F(ImplausibleInput, IsAMeshSoFarFromTheOriginThatAreasLoseDigits) {
  c.size = 0.125;
  c.x0 = 262144.0;
  c.y0 = 4194304.0;
  const std::string text = run_with_warning("cells lose more than 1e-06 of their area").err;
  EXPECT_TRUE(support::contains(text, "quillmere-mesh import --origin 262000,4194000")) << text;
}

}  // namespace
