// Between walls, water neither appears nor disappears.
#include <gtest/gtest.h>

#include <cmath>

#include "sources/HortonTerm.hpp"
#include "sources/RainTerm.hpp"
#include "support/RectangleMesh.hpp"
#include "support/RunGlobals.hpp"

namespace {

const support::Rectangle basin{20, 10, 20.0, 10.0};
constexpr double area = 200.0;

/// A slope from -1 to 1 m, so that part of the basin is dry.
double slope(double x, double) { return 0.1 * (x - 10.0); }
/// A level that tilts across the slope, so that the water sloshes.
double tilted(double, double y) { return 0.05 * (y - 5.0); }

TEST(ClosedBasin, KeepsItsVolumeWhileTheWaterSloshes) {
  const support::RunGlobals globals(1e-4);
  const auto model = support::build_rectangle(basin, slope);
  support::fill(*model, tilted);
  const double initial = support::volume_of(*model);
  support::advance(*model, 20, 0.9);
  EXPECT_GT(support::largest_discharge(*model), 1e-2);
  support::advance(*model, 480, 0.9);
  EXPECT_NEAR(support::volume_of(*model), initial, 1e-12 * initial);
}

TEST(ClosedBasin, GainsTheRainThatFalls) {
  const support::RunGlobals globals(1e-4);
  const auto model = support::build_rectangle(basin, slope);
  support::fill(*model, tilted);
  // Without a burst length rain falls in every step, up to the time at which the last one starts.
  RainTerm rain(1, 2, 0);
  rain.times = {0.0, 2.0};
  rain.intensities = {1e-3, 4e-3};
  for (const auto& cell : model->cells) cell->add_source_term(&rain);
  const double initial = support::volume_of(*model);
  support::advance(*model, 300, 0.9);
  const double last_start = Globals::t - Globals::dt;
  ASSERT_GT(last_start, 3.0);
  const double expected = initial + area * (1e-3 * 2.0 + 4e-3 * (last_start - 2.0));
  EXPECT_NEAR(support::volume_of(*model), expected, 1e-12 * expected);
}

TEST(ClosedBasin, LosesWhatTheSoilTakes) {
  const support::RunGlobals globals(1e-4);
  const auto model = support::build_rectangle(basin, slope);
  support::fill(*model, tilted);
  HortonTerm soil(1, 2e-3, 5e-4, 10.0, 1.0, 0.0);
  for (const auto& cell : model->cells) cell->add_source_term(&soil);
  const double initial = support::volume_of(*model);
  support::advance(*model, 300, 0.9);
  double infiltrated = 0.0;
  for (const auto& cell : model->cells) {
    infiltrated += cell->param.infiltrated_depth * cell->area;
  }
  EXPECT_GT(infiltrated, 0.1);
  EXPECT_NEAR(support::volume_of(*model) + infiltrated, initial, 1e-12 * initial);
}

}  // namespace
