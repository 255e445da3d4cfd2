// What a program does to a simulation between its steps.
#include <cmath>

#include "library/LibraryTest.hpp"

namespace {

using quillmere::EdgeKind;
using quillmere::Field;
using quillmere::Simulation;

std::vector<double> of_all(const Simulation& simulation, double value) {
  return std::vector<double>(static_cast<std::size_t>(simulation.number_of_cells()), value);
}

using LibrarySetters = LibraryFiles;

}  // namespace

TEST(SetDepth, OfAllCellsGivesTheRunThatStartsWithIt) {
  Simulation deep(pool(6, 4, 2.0)), raised(pool(6, 4, 1.0));
  raised.set_depth(of_all(raised, 2.0));
  EXPECT_EQ(sight_of(raised), sight_of(deep));
  const std::vector<int> cells = {3, 7};
  const std::vector<double> depths = {2.5, 1.5};
  for (Simulation* const one : {&deep, &raised}) {
    take_steps(*one, 5);
    one->set_depth(cells, depths);
    take_steps(*one, 20);
  }
  EXPECT_EQ(sight_of(raised), sight_of(deep));
}

TEST(SetDepth, OfSomeCellsLeavesTheOthersAndSetsTheStepAnew) {
  Simulation simulation(pool());
  const double before = simulation.time_step();
  const std::vector<int> cells = {5};
  const std::vector<double> depths = {4.0};
  simulation.set_depth(cells, depths);
  std::vector<double> expected = of_all(simulation, 1.0);
  expected[5] = 4.0;
  EXPECT_EQ(simulation.read(Field::depth), expected);
  EXPECT_NEAR(simulation.time_step(), before / 2.0, 1e-12);
  simulation.step();
  EXPECT_LT(simulation.read(Field::depth)[5], 4.0);
}

TEST(SetDepth, WakesCellsThatWereAtRest) {
  Simulation simulation(pool(60, 60, 0.0));
  take_steps(simulation, 3);
  const std::vector<int> cells = {6000};
  const std::vector<double> depths = {1.0};
  simulation.set_depth(cells, depths);
  take_steps(simulation, 3);
  EXPECT_LT(simulation.read(Field::depth)[6000], 1.0);
}

TEST(SetDischarges, AreThoseOfTheNextStepButForFilms) {
  Simulation simulation(pool());
  const std::vector<int> cells = {4, 5};
  const std::vector<double> depths = {1.0, 1e-4}, qx = {0.5, 0.5}, qy = {-0.25, 0.25};
  simulation.set_depth(cells, depths);
  simulation.set_discharges(cells, qx, qy);
  EXPECT_EQ(simulation.read(Field::discharge_x)[4], 0.5);
  EXPECT_EQ(simulation.read(Field::discharge_y)[4], -0.25);
  EXPECT_EQ(simulation.read(Field::discharge_x)[5], 0.0);
  simulation.set_discharges(of_all(simulation, 0.1), of_all(simulation, 0.2));
  EXPECT_EQ(simulation.read(Field::discharge_y)[0], 0.2);
  simulation.set_depth(cells, std::vector<double>{1e-4, 1.0});
  EXPECT_EQ(simulation.read(Field::discharge_x)[4], 0.0);
  take_steps(simulation, 5);
  EXPECT_NE(simulation.read(Field::discharge_x)[0], 0.1);
}

TEST(SetRain, BringsItsIntensityTimesTheSteps) {
  Simulation simulation(pool());
  simulation.set_rain(1e-3);
  double time = 0.0;
  for (int i = 0; i < 20; ++i) {
    time += simulation.time_step();
    simulation.step();
  }
  EXPECT_NEAR(volume_of(simulation), 24.0 * (1.0 + 1e-3 * time), 1e-12);
  simulation.set_rain(0.0);
  take_steps(simulation, 20);
  EXPECT_NEAR(volume_of(simulation), 24.0 * (1.0 + 1e-3 * time), 1e-12);
}

TEST(SetRain, FallsOnTheCellsThatAreGiven) {
  Simulation simulation(pool(60, 60, 0.0));
  take_steps(simulation, 3);  // nothing can change any more
  const std::vector<int> cells = {100, 7000};
  const std::vector<double> rain = {1e-4, 2e-4};
  simulation.set_rain(cells, rain);
  const double step = simulation.time_step();
  simulation.step();
  const std::vector<double> depths = simulation.read(Field::depth);
  EXPECT_DOUBLE_EQ(depths[100], 1e-4 * step);
  EXPECT_DOUBLE_EQ(depths[7000], 2e-4 * step);
  EXPECT_EQ(depths[101], 0.0);
}

TEST_F(LibrarySetters, RainTakesThePlaceOfAHyetogramWhereItIsSet) {
  support::Case c;
  c.add_rain("1\n7 1 1\n0 0.001\n", c.per_cell("7"));
  c.set_times(0.0, 50.0);
  Simulation simulation = open(c), dry = open(c);
  dry.set_rain(0.0);
  const std::vector<int> cells = {0};
  simulation.set_rain(cells, std::vector<double>{0.0});
  simulation.run_until(10.0);
  dry.run_until(10.0);
  EXPECT_NEAR(volume_of(dry), 12.0, 1e-12);
  const double rain = volume_of(simulation) - 12.0;
  EXPECT_NEAR(rain, 11.5 * 0.01, 11.5 * 0.001);  // 23 of 24 cells; a burst and a step more or less
}

TEST(SetBoundary, GivesTheRunOfThatBoundary) {
  struct Kind {
    EdgeKind given, same;
    double value;
  };
  quillmere::Series series{{0.0, 1e4}, {0.25, 0.25}};
  for (const Kind& kind : {Kind{EdgeKind::discharge, EdgeKind::discharge, -0.5},
                           Kind{EdgeKind::water_level, EdgeKind::water_level, 1.25},
                           Kind{EdgeKind::hydrograph, EdgeKind::discharge, -0.5},
                           Kind{EdgeKind::limnigraph, EdgeKind::water_level, 1.25}}) {
    quillmere::Case other = open_pool(kind.given, 0.75, 0);
    other.series.push_back(series);
    Simulation expected(open_pool(kind.same, kind.value)), simulation(other);
    for (const int edge : western_edges(other)) simulation.set_boundary(edge, kind.value);
    take_steps(expected, 30);
    take_steps(simulation, 30);
    EXPECT_EQ(sight_of(simulation), sight_of(expected)) << static_cast<int>(kind.given);
    EXPECT_GT(volume_of(simulation), 24.0);
  }
}

TEST(SetBoundary, TellsWhatEnters) {
  const quillmere::Case contents = open_pool(EdgeKind::discharge, -0.5);
  Simulation simulation(contents);
  const int edge = western_edges(contents).front();
  EXPECT_EQ(simulation.inflow(edge), 0.0);
  simulation.step();
  EXPECT_DOUBLE_EQ(simulation.inflow(edge), 0.5);
  simulation.set_boundary(edge, 0.25);
  simulation.step();
  EXPECT_DOUBLE_EQ(simulation.inflow(edge), -0.25);
}
