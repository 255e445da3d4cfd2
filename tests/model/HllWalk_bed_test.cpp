// What the first-order positive scheme promises of a bed that moves, on small meshes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <vector>

#include "case/boundary_kinds.hpp"
#include "support/HllRun.hpp"
#include "support/SinkingChannel.hpp"
#include "support/TriangleGrid.hpp"

namespace {

using cases::Number;
using support::HllRun;
using support::SinkingChannel;
using support::TriangleGrid;

/// A case over sand of a thickness (m) of each cell.
cases::Case over_sand(const TriangleGrid& grid, const std::function<double(double, double)>& layer,
                      double manning = 0.03) {
  cases::Case contents = grid.make();
  contents.scheme = cases::Scheme::hll1;
  contents.has_sediments = true;
  contents.sediment = {.d50 = 0.002, .density = 2.65, .manning = manning, .porosity = 0.4};
  for (Number cell = 0; cell < contents.mesh.n_cells(); ++cell) {
    const physics::SpacePoint center = contents.mesh.center_of(cell);
    contents.fields.sediment.push_back(layer(center.x, center.y));
    contents.fields.manning.push_back(manning);
  }
  return contents;
}

double bed_volume(const HllRun& run) {
  double sum = 0.0;
  for (std::size_t i = 0; i < run.water().hs.size(); ++i) {
    sum += run.water().hs[i] * run.area(static_cast<Number>(i));
  }
  return sum;
}

double bed_inflow(const HllRun& run, const cases::Case& contents) {
  double sum = 0.0;
  for (std::size_t b = 0; b < contents.mesh.boundaries.size(); ++b) {
    sum += run.walk().bed_inflow(b) * run.dt();
  }
  return sum;
}

double least_sediment(const HllRun& run) {
  return *std::min_element(run.water().hs.begin(), run.water().hs.end());
}

/// Hills of sand with bare rock between them, and a dam that breaks over them.
TriangleGrid hills(unsigned seed) {
  TriangleGrid grid;
  grid.nx = 24;
  grid.ny = 8;
  grid.size = 0.5;
  grid.seed = seed;
  grid.bed = [](double x, double y) { return 0.1 * std::sin(2.0 * x) * std::cos(1.7 * y); };
  grid.level = [](double x, double) { return x < 5.0 ? 2.0 : -1.0; };
  return grid;
}
double patches_of_sand(double x, double y) {
  return std::fabs(0.3 * std::sin(1.1 * x) * std::cos(1.3 * y)) * (std::fmod(x, 3.0) > 1.0);
}

TEST(HllWalkBed, ALakeStaysAtRestOverAnySandAndMovesNone) {
  for (const unsigned seed : {0U, 3U}) {
    TriangleGrid grid = hills(seed);
    grid.level = [](double, double) { return 0.2; };
    const cases::Case contents = over_sand(grid, patches_of_sand);
    HllRun run(contents);
    ASSERT_EQ(run.least_depth(), 0.0);  // some hills are dry
    while (run.steps() < 300) run.step();
    EXPECT_LE(run.largest_discharge(), 1e-12);
    EXPECT_EQ(run.water().hs, contents.fields.sediment);
  }
}

TEST(HllWalkBed, ADamBreakKeepsWaterAndSandAboveZeroAndBothVolumes) {
  for (const unsigned seed : {0U, 5U}) {
    const cases::Case contents = over_sand(hills(seed), patches_of_sand);
    HllRun run(contents);
    const double water = run.volume(), sand = bed_volume(run);
    double least_depth = 0.0, least = 0.0;
    run.until(20.0, [&] {
      least_depth = std::min(least_depth, run.least_depth());
      least = std::min(least, least_sediment(run));
    });
    EXPECT_EQ(least_depth, 0.0);
    EXPECT_EQ(least, 0.0);
    EXPECT_NEAR(run.volume(), water, 1e-13 * water);
    EXPECT_NEAR(bed_volume(run), sand, 1e-13 * sand);
    EXPECT_GT(std::fabs(run.water().hs[40] - contents.fields.sediment[40]), 1e-3);  // it moved
  }
}

TEST(HllWalkBed, TheBooksOfTheSandCloseOverOpenBoundaries) {
  TriangleGrid grid = hills(7);
  grid.west = {edge_code::discharge, -1.0};
  grid.north = {edge_code::water_level, 0.3};
  grid.east = {edge_code::transmissive};
  const cases::Case contents = over_sand(grid, patches_of_sand);
  HllRun run(contents);
  const double before = bed_volume(run);
  double passed = 0.0;
  run.until(20.0, [&] { passed += bed_inflow(run, contents); });
  EXPECT_LT(passed, -1e-3 * before);
  EXPECT_GE(least_sediment(run), 0.0);
  EXPECT_NEAR(bed_volume(run) - passed, before, 1e-13 * before);
}

/// The transport formula has this film carry a hundred times its own discharge of bed.
TEST(HllWalkBed, AStepMovesATenthOfTheDepthOfAFilm) {
  const double depth = 0.002;
  TriangleGrid grid;
  grid.level = [&](double, double) { return 1.0 + depth; };
  grid.qx = [](double, double) { return 0.004; };
  const cases::Case contents = over_sand(
      grid, [](double, double) { return 1.0; }, 0.05);
  HllRun run(contents);
  run.step();
  // Behind the wall that the film leaves nothing comes in.
  EXPECT_NEAR(1.0 - least_sediment(run), 0.1 * depth, 1e-9);
}

TEST(HllWalkBed, AFilmMovesNoMoreThanThereIs) {
  TriangleGrid grid;
  grid.level = [](double, double) { return 1.0; };
  grid.qx = [](double, double) { return 4.0; };
  const cases::Case contents = over_sand(
      grid, [](double, double) { return 1e-6; }, 0.05);
  HllRun run(contents);
  run.step();
  EXPECT_GE(least_sediment(run), 0.0);
  EXPECT_LT(least_sediment(run), 1e-15);
}

TEST(HllWalkBed, DryCellsAndSlowWaterMoveNone) {
  TriangleGrid grid;
  grid.zero_depth = 1e-3;
  grid.bed = [](double x, double) { return x < 4.0 ? 0.5 : 0.0; };
  grid.bed_by_file = true;
  grid.level = [&](double x, double y) { return x < 4.0 ? grid.bed(x, y) + 0.3009 : 0.75; };
  grid.qx = [](double, double) { return 0.05; };
  const cases::Case contents = over_sand(grid, [](double, double) { return 0.3; });
  HllRun run(contents);
  run.step();
  EXPECT_GT(run.largest_discharge(), 0.0);
  EXPECT_EQ(run.water().hs, contents.fields.sediment);
}

/// Sand from an even bed whose lower part is rock, under slow water and under fast, where loads
/// taken from the side that the water comes from would pile it up.
TEST(HllWalkBed, SandPassesBareRockAndDoesNotPileUpBeforeIt) {
  for (const double slope : {0.002, 0.04}) {
    const double q = 1.0, n = 0.025, depth = std::pow(n * q / std::sqrt(slope), 0.6);
    const auto layer = [](double x, double) { return x < 15.0 ? 2.0 : 0.0; };
    TriangleGrid grid;
    grid.nx = 25;
    grid.ny = 2;
    grid.bed = [&](double x, double y) { return slope * (25.0 - x) - layer(x, y); };
    grid.bed_by_file = true;
    grid.level = [&](double x, double) { return slope * (25.0 - x) + depth; };
    grid.qx = [&](double, double) { return q; };
    grid.west = {edge_code::discharge, -q};
    grid.east = {edge_code::transmissive};
    const cases::Case contents = over_sand(grid, layer, n);
    HllRun run(contents);
    double passed = 0.0, most_on_rock = 0.0;
    run.until(100.0, [&] {
      passed += bed_inflow(run, contents);
      for (std::size_t i = 0; i < run.water().hs.size(); ++i) {
        if (contents.fields.sediment[i] > 0.0) continue;
        most_on_rock = std::max(most_on_rock, run.water().hs[i]);
      }
    });
    EXPECT_LT(passed, -0.05) << slope;
    EXPECT_LT(most_on_rock, 0.02) << slope;
    EXPECT_LT(*std::max_element(run.water().hs.begin(), run.water().hs.end()), 2.02) << slope;
  }
}

/// Means of the sand over the squares of a row, m.
std::vector<double> sand_along(const HllRun& run, const cases::Case& contents) {
  std::vector<double> along;
  for (Number i = 0; i < contents.mesh.n_cells(); i += 2) {
    along.push_back(0.5 * (run.water().hs[cases::at(i)] + run.water().hs[cases::at(i + 1)]));
  }
  return along;
}
double variation(const std::vector<double>& values, std::size_t from, std::size_t to) {
  double sum = 0.0;
  for (std::size_t i = from; i < to; ++i) sum += std::fabs(values[i + 1] - values[i]);
  return sum;
}

/// Against the water, as the bed wave runs there.
TEST(HllWalkBed, ABumpUnderFastWaterWandersUpstreamAndDoesNotGrow) {
  const double depth = 0.3, u = 4.0, n = 0.02;
  const double slope = n * n * u * u / std::pow(depth, 4.0 / 3.0);
  const auto layer = [](double x, double) {
    return 1.0 + 0.03 * std::exp(-(x - 60.0) * (x - 60.0) / 36.0);
  };
  TriangleGrid grid;
  grid.nx = 100;
  grid.ny = 1;
  grid.bed = [&](double x, double) { return slope * (100.0 - x); };
  grid.bed_by_file = true;
  grid.level = [&](double x, double y) { return grid.bed(x, y) + layer(x, y) + depth; };
  grid.qx = [&](double, double) { return u * depth; };
  grid.west = {edge_code::discharge, -u * depth};
  grid.east = {edge_code::transmissive};
  const cases::Case contents = over_sand(grid, layer, n);
  HllRun run(contents);
  const double before = variation(sand_along(run, contents), 40, 75);
  run.until(20.0);
  const std::vector<double> after = sand_along(run, contents);
  EXPECT_LT(variation(after, 40, 75), before);
  const auto top = std::max_element(after.begin() + 40, after.begin() + 75) - after.begin();
  EXPECT_LT(top, 60);
}

// --- An exact solution ---------------------------------------------------------------------------

struct BedErrors {
  double bed, depth;
};

BedErrors errors_after(double t_end, int cells_along) {
  const SinkingChannel exact;
  const double layer = 0.5, dx = exact.L / cells_along;
  TriangleGrid grid;
  grid.nx = cells_along;
  grid.ny = 1;
  grid.size = dx;
  grid.bed = [&](double x, double) { return exact.bed(x, 0.0) - layer; };
  grid.bed_by_file = true;
  grid.level = [&](double x, double) { return exact.bed(x, 0.0) + exact.h(x); };
  grid.qx = [&](double, double) { return exact.q; };
  grid.zero_depth = 1e-4;
  grid.west = {edge_code::discharge, -exact.q};
  grid.east = {edge_code::limnigraph, 0.0, 0};
  cases::Case contents = over_sand(
      grid, [&](double, double) { return layer; }, exact.n);
  contents.sediment = {exact.d, exact.s, exact.n, exact.porosity};
  const double at_outlet = exact.bed(exact.L, 0.0) + exact.h(exact.L);
  contents.series = {{"level.txt", {0.0, t_end}, {at_outlet, at_outlet - exact.sunk(t_end)}}};
  HllRun run(contents);
  run.until(t_end);
  double area = 0.0, bed = 0.0, depth = 0.0, exact_depth = 0.0;
  for (Number i = 0; i < contents.mesh.n_cells(); ++i) {
    const double x = contents.mesh.center_of(i).x;
    if (x < 40.0 || x > 95.0) continue;
    area += run.area(i);
    bed += run.area(i) * std::fabs(run.walk().bed(i) - exact.bed(x, run.t()));
    depth += run.area(i) * std::fabs(run.depth(i) - exact.h(x));
    exact_depth += run.area(i) * exact.h(x);
  }
  return {bed / area, depth / exact_depth};
}

TEST(HllWalkBed, TheSinkingChannelSinksAsItShould) {
  const double t_end = 900.0, sunk = SinkingChannel::sunk(t_end);
  const BedErrors coarse = errors_after(t_end, 25), fine = errors_after(t_end, 50);
  std::printf("bed: %.3g %% and %.3g %% of the sinking\n", 100.0 * coarse.bed / sunk,
              100.0 * fine.bed / sunk);
  EXPECT_LT(fine.bed, 0.1 * sunk);
  EXPECT_LT(fine.bed, 0.7 * coarse.bed);
  EXPECT_LT(fine.depth, 2e-3);
}

}  // namespace
