// Water at rest stays at rest.
#include <gtest/gtest.h>

#include <cmath>

#include "support/RectangleMesh.hpp"
#include "support/RunGlobals.hpp"

namespace {

constexpr double level = 0.0;
constexpr int steps = 1000;
const support::Rectangle square{16, 16, 16.0, 16.0};

double still_level(double, double) { return level; }

/// Between -1.0 and -0.5 m everywhere.
double uneven_bed(double x, double y) {
  return -0.75 + 0.25 * std::sin(1.3 * x) * std::cos(0.9 * y);
}

/// The same with an island in the middle, 7 by 7 nodes, that emerges by 0.2 m at its rim: little
/// enough for every cell of the shore to have its mean bed under water.
double bed_with_island(double x, double y) {
  const double off = std::max(std::abs(x - 8.0), std::abs(y - 8.0));
  if (off > 3.5) return uneven_bed(x, y);
  return off > 2.5 ? 0.2 : 0.6 + 0.1 * std::sin(x + y);
}

double largest_change_of_level(const SWE& model) {
  double change = 0.0;
  for (const auto& cell : model.cells) {
    if (cell->U.h <= Constants::ZERO_DEPTH) continue;
    change = std::max(change, std::abs(cell->bed_rock_level + cell->U.h - level));
  }
  return change;
}

int number_of_dry_cells(const SWE& model) {
  int dry = 0;
  for (const auto& cell : model.cells) dry += cell->U.h <= Constants::ZERO_DEPTH ? 1 : 0;
  return dry;
}

TEST(LakeAtRest, StaysOverAnUnevenBed) {
  const support::RunGlobals globals(1e-6);
  const auto model = support::build_rectangle(square, uneven_bed);
  support::fill(*model, still_level);
  ASSERT_EQ(number_of_dry_cells(*model), 0);
  support::advance(*model, steps, 0.9);
  EXPECT_GT(Globals::t, 10.0);
  EXPECT_LE(support::largest_discharge(*model), 1e-12);
  EXPECT_LE(largest_change_of_level(*model), 1e-12);
}

TEST(LakeAtRest, StaysAroundAnIslandOfTheMesh) {
  const support::RunGlobals globals(1e-6);
  const auto model = support::build_rectangle(square, bed_with_island);
  support::fill(*model, still_level);
  const int dry = number_of_dry_cells(*model);
  ASSERT_GT(dry, 40);
  support::advance(*model, steps, 0.9);
  EXPECT_LE(support::largest_discharge(*model), 1e-12);
  EXPECT_LE(largest_change_of_level(*model), 1e-12);
  EXPECT_EQ(number_of_dry_cells(*model), dry);
}

TEST(LakeAtRest, StaysBetweenLevelsImposedAtItsOwnLevel) {
  const support::RunGlobals globals(1e-6);
  support::Rectangle open = square;
  open.west = {edge_code::water_level, level};
  open.east = {edge_code::water_level, level};
  const auto model = support::build_rectangle(open, uneven_bed);
  support::fill(*model, still_level);
  support::advance(*model, steps, 0.9);
  EXPECT_LE(support::largest_discharge(*model), 1e-12);
  EXPECT_LE(largest_change_of_level(*model), 1e-12);
}

}  // namespace
