// What the positive schemes promise, on both paths.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "case/initial_state.hpp"
#include "fields/make_flow.hpp"
#include "report/VolumeLedger.hpp"
#include "support/RunGlobals.hpp"
#include "support/Told.hpp"
#include "support/TriangleGrid.hpp"
#include "support/trials.hpp"

namespace {

using cases::Number;
using fields::Field;
using support::GridSide;
using support::TriangleGrid;

double uniform(std::mt19937& generator, double low, double high) {
  return std::uniform_real_distribution<double>(low, high)(generator);
}
bool once_in(std::mt19937& generator, int count) { return uniform(generator, 0.0, count) < 1.0; }

/// A wall, a free outflow, a discharge or a level, constant or by one of the two series.
GridSide random_side(std::mt19937& generator, double relief) {
  switch (generator() % 7) {
    case 0:
      return {edge_code::transmissive};
    case 1:
      return {edge_code::discharge, uniform(generator, -3.0, 1.0)};
    case 2:
      return {edge_code::water_level, uniform(generator, -1.0, relief + 1.0)};
    case 3:
      return {edge_code::hydrograph, 0.0, 0};
    case 4:
      return {edge_code::limnigraph, 0.0, 1};
    default:
      return {};
  }
}

/// Random hills in the nodes or in a bed file, columns of water that fall apart, any boundaries,
/// friction, rain, and both soils.
cases::Case random_case(unsigned seed) {
  std::mt19937 generator(seed);
  const double relief = once_in(generator, 2) ? 1.0 : 10.0;
  const double wave = uniform(generator, 0.2, 1.5), phase = uniform(generator, 0.0, 6.0);
  TriangleGrid grid;
  grid.nx = 9;
  grid.ny = 7;
  grid.size = uniform(generator, 0.3, 20.0);
  grid.seed = seed + 1;
  grid.zero_depth = once_in(generator, 2) ? 1e-6 : 1e-3;
  const double k = wave / grid.size;
  grid.bed = [=](double x, double y) {
    return relief * (0.5 + 0.3 * std::sin(k * x + phase) * std::cos(1.3 * k * y) +
                     0.2 * std::sin(7.1 * x + 3.3 * y + phase));
  };
  grid.bed_by_file = once_in(generator, 2);
  const double still = uniform(generator, -0.2, 1.2) * relief;
  const double column = uniform(generator, 0.0, 3.0), edge = 4.0 * grid.size;
  grid.level = [=](double x, double y) { return x + y < edge ? still + column : still; };
  const double velocity = uniform(generator, -2.0, 2.0);
  grid.west = random_side(generator, relief);
  grid.east = random_side(generator, relief);
  grid.south = random_side(generator, relief);
  grid.north = random_side(generator, relief);

  cases::Case contents = grid.make();
  contents.scheme = once_in(generator, 3) ? cases::Scheme::hll1 : cases::Scheme::hll2;
  const auto n_cells = static_cast<std::size_t>(contents.mesh.n_cells());
  contents.series = {{"q.txt", {0.0, 1.0, 5.0, 60.0}, {0.0, -2.0, 1.0, -0.5}},
                     {"level.txt", {0.0, 2.0, 30.0}, {0.0, relief, -1.0}}};
  if (!once_in(generator, 3)) {
    contents.fields.manning.assign(n_cells, uniform(generator, 0.0, 0.1));
  }
  contents.rain = {{1, 1, {0.0, 3.0, 20.0}, {1e-4, 1e-3, 2e-5}}};
  contents.soils = {{1, cases::GreenAmptParameters{1e-4, 0.1, 0.1, 0.4, 0.5, 1e-4}},
                    {2, cases::HortonParameters{1e-3, 1e-4, 10.0, 0.05, 0.0}}};
  for (std::size_t i = 0; i < n_cells; ++i) {
    const double h = cases::initial_water_of(contents, static_cast<Number>(i)).h;
    contents.fields.qx[i] = h * velocity;
    contents.fields.rain.push_back(static_cast<int>(generator() % 2) - 1);
    contents.fields.soil.push_back(static_cast<int>(generator() % 3) - 1);
  }
  return contents;
}

/// Steps of the flow of a case on a path, with their books.
struct BookedRun {
  BookedRun(const cases::Case& of, const std::string& path)
      : contents(of),
        flow(watched(fields::make_flow(of, told, {.path = path}))),
        ledger(*flow, of) {}

  static std::unique_ptr<fields::Flow> watched(std::unique_ptr<fields::Flow> flow) {
    flow->watch();
    return flow;
  }
  void step() {
    const double dt = contents.cfl * stable;
    stable = flow->advance({t, contents.t_start, contents.t_end, dt});
    ledger.add_step(t, dt);
    t += dt;
  }
  const fields::WholeFlow& whole() const { return dynamic_cast<const fields::WholeFlow&>(*flow); }
  std::vector<double> depths() const {
    std::vector<double> values(cases::at(contents.mesh.n_cells()));
    whole().read(Field::depth, values);
    return values;
  }

  support::Told told;
  const cases::Case& contents;
  std::unique_ptr<fields::Flow> flow;
  VolumeLedger ledger;
  double t = contents.t_start;
  double stable = flow->stable_step(t);
};

enum class SoilOf { none, green_ampt, horton };

class PositiveSchemes : public testing::TestWithParam<const char*> {
 protected:
  const support::RunGlobals globals{1e-3};  // objects set them
};

}  // namespace

TEST_P(PositiveSchemes, KeepDepthsAtOrAboveZeroAndTheirBooksClosedInRandomCases) {
  long dry = 0, wet = 0;
  double fastest = 0.0;
  for (int seed = 1; seed <= support::trials(200); ++seed) {
    const cases::Case contents = random_case(static_cast<unsigned>(seed));
    BookedRun run(contents, GetParam());
    for (int step = 0; step < 150; ++step) {
      run.step();
      for (const double h : run.depths()) {
        ASSERT_GE(h, 0.0) << "seed " << seed << ", step " << step;
        (h > contents.zero_depth ? wet : dry) += 1;
      }
      ASSERT_GT(run.stable, 1e-4) << "seed " << seed << ", step " << step;
    }
    EXPECT_LE(std::fabs(run.ledger.water().relative_error()), 1e-13) << "seed " << seed;
    fastest = std::max(fastest, run.flow->looks(contents)->survey().largest_speed);
    EXPECT_EQ(run.flow->notes().not_finite, 0);
  }
  EXPECT_GT(dry, wet / 20);
  EXPECT_GT(wet, dry / 20);
  EXPECT_LT(fastest, 50.0);  // of water that falls by up to 15 m
}

TEST_P(PositiveSchemes, LetRainOnPlanesRunOffOrSoakInAndNothingElse) {
  for (const double slope : {0.01, 0.05, 0.2, 0.5}) {
    for (const SoilOf soil : {SoilOf::none, SoilOf::green_ampt, SoilOf::horton}) {
      TriangleGrid grid;
      grid.nx = 20;
      grid.ny = 3;
      grid.size = 5.0;
      grid.seed = 6;
      grid.zero_depth = 1e-5;
      grid.bed = [slope](double x, double) { return slope * (100.0 - x); };
      grid.level = [](double, double) { return 0.0; };
      grid.east = {edge_code::transmissive};
      cases::Case contents = grid.make();
      const auto n_cells = static_cast<std::size_t>(contents.mesh.n_cells());
      contents.fields.manning.assign(n_cells, 0.05);
      contents.rain = {{1, 1, {0.0, 1800.0}, {50e-3 / 3600.0, 0.0}}};
      contents.fields.rain.assign(n_cells, 0);
      contents.soils = {{1, cases::GreenAmptParameters{1e-6, 0.1, 0.1, 0.4, 0.5, 0.0}},
                        {2, cases::HortonParameters{1e-5, 2e-6, 100.0, 0.5, 0.0}}};
      if (soil != SoilOf::none) {
        contents.fields.soil.assign(n_cells, soil == SoilOf::green_ampt ? 0 : 1);
      }
      BookedRun run(contents, GetParam());
      while (run.t < 1700.0) run.step();
      const Books before = run.ledger.water();
      const double t = run.t;
      while (run.t < 1790.0) run.step();
      const Books after = run.ledger.water();
      const double left = after.boundaries[0].out.value() - before.boundaries[0].out.value();
      const double rained = after.rain - before.rain;
      const double soaked = after.infiltrated - before.infiltrated;
      EXPECT_NEAR(left, rained - soaked - (after.final - before.final), 1e-10 * rained);
      // After half an hour the plane sheds what falls on it.
      const double rate = 1500.0 * 50e-3 / 3600.0;  // m3/s
      if (soil != SoilOf::none) {
        EXPECT_GT(soaked, 0.0);
      } else {
        EXPECT_NEAR(left / (run.t - t), rate, 0.01 * rate) << slope;
      }
      for (const double h : run.depths()) EXPECT_GE(h, 0.0);
    }
  }
}

TEST_P(PositiveSchemes, TellWhatTheBoundOfDrainingFilmsTook) {
  const cases::Case contents = random_case(1);
  BookedRun run(contents, GetParam());
  for (int step = 0; step < 50; ++step) run.step();
  double sum = 0.0;
  for (Number cell = 0; cell < contents.mesh.n_cells(); ++cell) {
    const double taken = run.whole().unseen_depth(cell).taken_discharge;
    EXPECT_GE(taken, 0.0);
    sum += taken * contents.mesh.geometry_of(cell).area;
  }
  EXPECT_GT(sum, 0.0);
  EXPECT_NEAR(run.ledger.momentum_taken(), sum, 1e-12 * sum);
}

INSTANTIATE_TEST_SUITE_P(OnBothPaths, PositiveSchemes, testing::Values("objects", "tables"),
                         [](const auto& of) { return std::string(of.param); });
