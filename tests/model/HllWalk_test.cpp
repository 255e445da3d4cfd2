// What the positive schemes promise, on small meshes.
#include "model/HllWalk.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

#include "support/HllRun.hpp"
#include "support/TriangleGrid.hpp"

namespace {

using cases::Number;
using cases::Scheme;
using support::HllRun;
using support::TriangleGrid;

constexpr Scheme both_schemes[] = {Scheme::hll1, Scheme::hll2};

/// An island of 0.8 m in a lake whose bed lies about 0.6 m below its level.
double lake_bed(double x, double y) {
  const double r = std::hypot(x - 8.3, y - 7.7);
  return -0.6 + 0.1 * std::sin(1.3 * x + 0.4) * std::cos(0.9 * y) + 1.4 * std::exp(-r * r / 9.0);
}

TriangleGrid lake(bool bed_by_file, unsigned seed, double level) {
  TriangleGrid grid;
  grid.nx = grid.ny = 16;
  grid.seed = seed;
  grid.bed = lake_bed;
  grid.bed_by_file = bed_by_file;
  grid.level = [level](double, double) { return level; };
  return grid;
}

TEST(HllWalk, ALakeStaysAtRestAroundAnIslandHoweverItsBedAndItsEdgesAreGiven) {
  for (const Scheme scheme : both_schemes) {
    for (const bool by_file : {false, true}) {
      for (const unsigned seed : {0U, 3U}) {
        for (const double level : {0.0, 0.137}) {
          cases::Case contents = lake(by_file, seed, level).make();
          contents.scheme = scheme;
          HllRun run(contents);
          const double least = run.least_depth(), volume = run.volume();
          ASSERT_EQ(least, 0.0);
          while (run.steps() < 500) run.step();
          EXPECT_LE(run.largest_discharge(), 1e-12) << by_file << seed << level;
          EXPECT_NEAR(run.volume(), volume, 1e-12 * volume);
        }
      }
    }
  }
}

TEST(HllWalk, ALakeStaysAtRestBetweenLevelsImposedAtItsOwn) {
  for (const Scheme scheme : both_schemes) {
    TriangleGrid grid = lake(false, 5, 0.1);
    grid.west = grid.north = {edge_code::water_level, 0.1};
    grid.south = {edge_code::discharge, 0.0};
    cases::Case contents = grid.make();
    contents.scheme = scheme;
    HllRun run(contents);
    while (run.steps() < 300) run.step();
    EXPECT_LE(run.largest_discharge(), 1e-12);
  }
}

TEST(HllWalk, ADisturbanceDoesNotGrowBesideAnImposedDischargeOnTrianglesOfAnyShape) {
#ifdef QUILLMERE_SANITIZED
  GTEST_SKIP() << "shorter tests run the same code";
#endif
  for (unsigned seed = 1; seed <= 30; ++seed) {
    TriangleGrid grid;
    grid.nx = 4;
    grid.ny = 10;
    grid.size = 0.02;
    grid.seed = seed;
    grid.level = [](double x, double) { return 1.0 + 1e-6 * std::sin(50.0 * x); };
    grid.west = {edge_code::discharge, 0.0};
    grid.east = {edge_code::water_level, 1.0};
    const cases::Case contents = grid.make();
    HllRun run(contents);
    run.until(1.0);
    for (const double h : run.water().h) ASSERT_NEAR(h, 1.0, 1e-5) << "seed " << seed;
  }
}

TEST(HllWalk, WaterDoesNotPassALeveeThatOneRowOfNodesForms) {
  for (const double level : {1.5, 1.9}) {
    TriangleGrid grid;
    grid.nx = 20;
    grid.ny = 4;
    grid.bed = [](double x, double) { return x == 10.0 ? 2.0 : 0.0; };
    grid.level = [level](double x, double) { return x < 10.0 ? level : 0.0; };
    const cases::Case contents = grid.make();
    HllRun run(contents);
    run.until(600.0);
    double behind = 0.0;
    for (Number i = 0; i < contents.mesh.n_cells(); ++i) {
      if (contents.mesh.center_of(i).x > 10.0) behind += run.depth(i);
    }
    EXPECT_EQ(behind, 0.0) << level;
    EXPECT_GT(run.volume(), 0.9 * level * 36.0);
  }
}

/// A film of q = 0.05 m2/s down a slope of 0.3 with Manning's n = 0.033 over cells of 5 m: by
/// Manning's formula it is (n q / sqrt(S))^(3/5) deep.
struct Film {
  double depth, velocity;
};

Film film_down_a_slope(Scheme scheme, bool bed_by_file) {
  TriangleGrid grid;
  grid.nx = 20;
  grid.ny = 3;
  grid.size = 5.0;
  grid.seed = 2;
  grid.bed = [](double x, double) { return 0.3 * (100.0 - x); };
  grid.bed_by_file = bed_by_file;
  grid.level = grid.bed;
  grid.west = {edge_code::discharge, -0.05};
  grid.east = {edge_code::transmissive};
  cases::Case contents = grid.make();
  contents.scheme = scheme;
  contents.fields.manning.assign(static_cast<std::size_t>(contents.mesh.n_cells()), 0.033);
  HllRun run(contents);
  run.until(600.0);
  Film sum{0.0, 0.0};
  double area = 0.0;
  for (Number i = 0; i < contents.mesh.n_cells(); ++i) {
    const double x = contents.mesh.center_of(i).x;
    if (x < 40.0 || x > 90.0) continue;
    const std::size_t k = cases::at(i);
    sum.depth += run.area(i) * run.water().h[k];
    sum.velocity += run.area(i) * run.water().qx[k];
    area += run.area(i);
  }
  return {sum.depth / area, sum.velocity / sum.depth};
}

TEST(HllWalk, AFilmRunsDownASlopeAtManningsSpeed) {
  const double exact = std::pow(0.033 * 0.05 / std::sqrt(0.3), 0.6);
  const Film nodes = film_down_a_slope(Scheme::hll2, false);
  EXPECT_NEAR(nodes.depth, exact, 0.03 * exact);
  EXPECT_NEAR(nodes.velocity, 0.05 / exact, 0.03 * 0.05 / exact);
  const Film file = film_down_a_slope(Scheme::hll2, true);
  EXPECT_NEAR(file.depth, exact, 0.03 * exact);
  EXPECT_NEAR(file.velocity, 0.05 / exact, 0.03 * 0.05 / exact);
  // The first-order form loses a part of it where the steps of the bed are higher than the film.
  const Film first = film_down_a_slope(Scheme::hll1, false);
  EXPECT_NEAR(first.velocity, 0.05 / exact, 0.2 * 0.05 / exact);
}

TEST(HllWalk, UniformFlowStaysUniformUpToItsOpenEnds) {
  const double n = 0.03, q = 1.0, slope = 0.005;
  const double depth = std::pow(n * q / std::sqrt(slope), 0.6);
  TriangleGrid grid;
  grid.nx = 20;
  grid.ny = 3;
  grid.seed = 8;
  grid.bed = [&](double x, double) { return slope * (20.0 - x); };
  grid.level = [&](double x, double y) { return grid.bed(x, y) + depth; };
  grid.qx = [&](double, double) { return q; };
  grid.west = {edge_code::discharge, -q};
  grid.east = {edge_code::water_level, depth};
  cases::Case contents = grid.make();
  contents.fields.manning.assign(cases::at(contents.mesh.n_cells()), n);
  HllRun run(contents);
  run.until(100.0);
  for (Number cell = 0; cell < contents.mesh.n_cells(); ++cell) {
    // The level is flat in the cells of the inflow, up to the edge, which the next ones feel.
    const bool is_inlet = contents.mesh.center_of(cell).x < 4.0;
    EXPECT_NEAR(run.depth(cell), depth, (is_inlet ? 3e-3 : 1e-4) * depth);
    EXPECT_NEAR(run.water().qx[cases::at(cell)], q, (is_inlet ? 3e-3 : 1e-3) * q);
  }
}

TEST(HllWalk, ASteepValleyDrainsWithoutADepthBelowZeroOrASpeedBeyondItsHead) {
#ifdef QUILLMERE_SANITIZED
  GTEST_SKIP() << "shorter tests run the same code";
#endif
  for (const Scheme scheme : both_schemes) {
    TriangleGrid grid;
    grid.nx = 30;
    grid.ny = 9;
    grid.size = 10.0;
    grid.seed = 4;
    grid.bed = [](double x, double y) { return 0.3 * (300.0 - x) + 0.5 * std::fabs(y - 45.0); };
    grid.level = [&](double x, double y) { return x < 80.0 ? 95.0 : grid.bed(x, y); };
    grid.east = {edge_code::transmissive};
    cases::Case contents = grid.make();
    contents.scheme = scheme;
    contents.fields.manning.assign(static_cast<std::size_t>(contents.mesh.n_cells()), 0.04);
    HllRun run(contents);
    const double before = run.volume();
    double passed = 0.0, least = 0.0, fastest = 0.0;
    run.until(3000.0, [&] {
      passed += run.inflow();
      least = std::min(least, run.least_depth());
      fastest = std::max(fastest, run.largest_speed());
    });
    EXPECT_EQ(least, 0.0);
    EXPECT_LT(fastest, 2.0 * std::sqrt(2.0 * 9.81 * 95.0));
    EXPECT_LT(run.volume(), 2e-3 * before);
    EXPECT_NEAR(run.volume() - passed, before, 1e-12 * before);
  }
}

TEST(HllWalk, FrictionDoesNotTurnWaterRound) {
  TriangleGrid grid;
  grid.level = [](double, double) { return 0.01; };
  grid.qx = [](double, double) { return 0.05; };
  grid.west = grid.east = {edge_code::transmissive};
  cases::Case contents = grid.make();
  contents.fields.manning.assign(static_cast<std::size_t>(contents.mesh.n_cells()), 0.5);
  HllRun run(contents);
  run.step();
  for (const double qx : run.water().qx) EXPECT_GE(qx, 0.0);
  EXPECT_LT(run.largest_discharge(), 0.01);
}

TEST(HllWalk, ASoilTakesNoMoreThanTheRainThatFell) {
  for (const bool is_green_ampt : {true, false}) {
    TriangleGrid grid;
    grid.level = [](double, double) { return 0.0; };
    cases::Case contents = grid.make();
    const auto n_cells = static_cast<std::size_t>(contents.mesh.n_cells());
    contents.rain = {{1, 1, {0.0, 60.0}, {1e-5, 0.0}}};
    contents.fields.rain.assign(n_cells, 0);
    if (is_green_ampt) {
      contents.soils = {{1, cases::GreenAmptParameters{1e-4, 0.1, 0.1, 0.4, 1.0, 0.0}}};
    } else {
      contents.soils = {{1, cases::HortonParameters{1e-3, 1e-4, 1.0, 0.5, 0.0}}};
    }
    contents.fields.soil.assign(n_cells, 0);
    HllRun run(contents);
    run.until(120.0);
    for (std::size_t i = 0; i < n_cells; ++i) {
      EXPECT_NEAR(run.water().infiltrated[i], 6e-4, 1e-5);
      EXPECT_EQ(run.water().h[i], 0.0);
    }
  }
}

TEST(HllWalk, TheStepIsBoundByWavesAndNotByDryGround) {
  TriangleGrid grid;
  grid.level = [](double x, double) { return x < 2.0 ? 1.0 : 0.0; };
  cases::Case contents = grid.make();
  const HllWalk walk(contents);
  const HllWalk::StepBound bound = walk.step_bound(0.0);
  EXPECT_NEAR(bound.step, walk.char_length_min() / std::sqrt(9.81), 1e-12);
  EXPECT_LT(contents.mesh.center_of(bound.cell).x, 2.0);
  const HllWalk::StepBound again = walk.step_bound(0.0, bound.cell + 2);
  EXPECT_EQ(again.cell, bound.cell + 2);
}

TEST(HllWalk, DryGroundWaitsForWhatABoundarySendsIn) {
  TriangleGrid grid;
  grid.level = [](double, double) { return 0.0; };
  grid.west = {edge_code::water_level, 1.0};
  const cases::Case contents = grid.make();
  const HllWalk walk(contents);
  EXPECT_NEAR(walk.step_bound(0.0).step, walk.char_length_min() / (2.0 * std::sqrt(9.81)), 1e-12);
  grid.west = {};
  const cases::Case closed = grid.make();
  EXPECT_EQ(HllWalk(closed).step_bound(0.0).step, walk.char_length_min() / 10.0);
  EXPECT_EQ(HllWalk(closed).step_bound(0.0).cell, -1);
}

TEST(HllWalk, ReadsSeriesInTheMiddleOfTheStep) {
  TriangleGrid grid;
  grid.west = {edge_code::hydrograph, 0.0, 0};
  cases::Case contents = grid.make();
  contents.series = {{"series.txt", {0.0, 10.0, 20.0}, {0.0, -1.0, 0.0}}};
  HllRun run(contents);
  double volume = run.volume(), passed = 0.0;
  run.until(20.0, [&] { passed += run.inflow(); });
  EXPECT_NEAR(run.volume(), volume + passed, 1e-12 * run.volume());
  // 80 m3 in all; the middle of a step is exact but across the break.
  const double last = run.t() - 20.0;
  EXPECT_LT(last, 0.2);
  EXPECT_NEAR(passed, 80.0, 0.01);
}

TEST(HllWalk, RefusesRainBelowZero) {
  cases::Case contents = TriangleGrid{}.make();
  contents.rain = {{7, 1, {0.0, 60.0}, {1e-5, -1e-6}}};
  try {
    const HllWalk walk(contents);
    FAIL() << "accepted";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(),
                 "Error. The flux scheme HLL2 takes no rain below zero, as hyetogram 7 has it.");
  }
}

}  // namespace
