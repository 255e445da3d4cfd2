#include "physics/hll_limited_slope.hpp"

#include <gtest/gtest.h>

#include "support/hll_random.hpp"

namespace hll_limited_slope_test {

using hll_random::Source;
using physics::EdgeValues;
using physics::PlanVector;

constexpr int trials = 2000;

/// An equilateral cell among its like: all weights are regular.
const physics::HllTriangle shape =
    physics::hll_triangle({0.0, 0.0}, {2.0, 0.0}, {1.0, std::sqrt(3.0)});
const physics::SlopeWeights weights = physics::least_squares_weights(
    {2 * shape.r0.x, 2 * shape.r0.y}, {2 * shape.r1.x, 2 * shape.r1.y},
    {-2 * (shape.r0.x + shape.r1.x), -2 * (shape.r0.y + shape.r1.y)});

EdgeValues differences_of(const PlanVector& slope) {
  const EdgeValues m = physics::at_midpoints(shape, slope);
  return {2 * m.k0, 2 * m.k1, 2 * m.k2};
}

TEST(LimitedSlope, KeepsALinearField) {
  const PlanVector g{0.25, -1.5};
  for (const double beta : {1.0, 1.5}) {
    const PlanVector s = physics::limited_slope(differences_of(g), weights, shape, beta);
    EXPECT_NEAR(s.x, g.x, 1e-6);
    EXPECT_NEAR(s.y, g.y, 1e-6);
  }
}

TEST(LimitedSlope, IsExactlyZeroAtAnExtremum) {
  for (const EdgeValues& D : {EdgeValues{0.5, 0.25, 0.125}, EdgeValues{-0.5, -0.25, -0.125},
                              EdgeValues{0.5, 0.0, 0.125}, EdgeValues{0.0, 0.0, 0.0}}) {
    const PlanVector s = physics::limited_slope(D, weights, shape, 1.5);
    EXPECT_EQ(s.x, 0.0);
    EXPECT_EQ(s.y, 0.0);
  }
}

TEST(LimitedSlope, LeadsNoMidpointFurtherThanItsFactorTimesTheLargestDifference) {
  Source random;
  int limited = 0;
  for (int i = 0; i < trials; ++i) {
    const physics::HllCell cell = random.cell();
    const physics::SlopeWeights w = random.weights();
    const EdgeValues D{random.between(-1, 1), random.between(-1, 1), random.between(-1, 1)};
    const PlanVector s = physics::limited_slope(D, w, cell.shape, 1.5);
    const EdgeValues m = physics::at_midpoints(cell.shape, s);
    const double most = std::max(physics::largest_of(D), 0.0);
    const double least = std::min(physics::smallest_of(D), 0.0);
    EXPECT_LE(physics::largest_of(m), 1.5 * most + 1e-14);
    EXPECT_GE(physics::smallest_of(m), 1.5 * least - 1e-14);
    limited += physics::largest_of(m) > 1.5 * most - 1e-12;
  }
  EXPECT_GT(limited, trials / 10);
}

TEST(LimitedSlope, TurnsItsSignWithThatOfTheDifferences) {
  Source random;
  for (int i = 0; i < trials; ++i) {
    const physics::HllCell cell = random.cell();
    const physics::SlopeWeights w = random.weights();
    const EdgeValues D{random.between(-1, 1), random.between(-1, 1), random.between(-1, 1)};
    const PlanVector s = physics::limited_slope(D, w, cell.shape, 1.0);
    const PlanVector t = physics::limited_slope({-D.k0, -D.k1, -D.k2}, w, cell.shape, 1.0);
    EXPECT_EQ(s.x, -t.x);
    EXPECT_EQ(s.y, -t.y);
  }
}

}  // namespace hll_limited_slope_test
