#include "physics/hll_triangle.hpp"

#include <gtest/gtest.h>

#include "support/hll_random.hpp"

namespace hll_triangle_test {

using hll_random::Source;

constexpr int trials = 200;

TEST(HllTriangle, TheMidpointsLieHalfWayBetweenTheCorners) {
  const physics::PlanPoint a{1.0, 1.0}, b{7.0, 1.0}, c{1.0, 4.0};
  const physics::HllTriangle cell = physics::hll_triangle(a, b, c);
  EXPECT_DOUBLE_EQ(3.0 + cell.r0.x, 4.0);
  EXPECT_DOUBLE_EQ(2.0 + cell.r0.y, 1.0);
  EXPECT_DOUBLE_EQ(3.0 + cell.r1.x, 4.0);
  EXPECT_DOUBLE_EQ(2.0 + cell.r1.y, 2.5);
}

TEST(HllTriangle, ASlopeGivesEveryMidpointItsShareAndTheySumToZero) {
  const physics::HllTriangle cell = physics::hll_triangle({0.0, 0.0}, {6.0, 0.0}, {0.0, 3.0});
  const physics::EdgeValues m = physics::at_midpoints(cell, {2.0, 10.0});
  EXPECT_DOUBLE_EQ(m.k0, 2.0 * 1.0 + 10.0 * -1.0);
  EXPECT_DOUBLE_EQ(m.k1, 2.0 * 1.0 + 10.0 * 0.5);
  EXPECT_DOUBLE_EQ(m.k2, 2.0 * -2.0 + 10.0 * 0.5);
  EXPECT_EQ((m.k0 + m.k1) + m.k2, 0.0);
}

TEST(HllTriangle, TheNormalsAreAsLongAsTheEdgesAndPointOutwards) {
  const physics::OutwardNormals n =
      physics::outward_normals(physics::hll_triangle({0.0, 0.0}, {6.0, 0.0}, {0.0, 3.0}));
  EXPECT_DOUBLE_EQ(n.k0.x, 0.0);
  EXPECT_DOUBLE_EQ(n.k0.y, -6.0);
  EXPECT_DOUBLE_EQ(n.k1.x, 3.0);
  EXPECT_DOUBLE_EQ(n.k1.y, 6.0);
  EXPECT_DOUBLE_EQ(n.k2.x, -3.0);
  EXPECT_DOUBLE_EQ(n.k2.y, 0.0);
}

TEST(HllTriangle, ThePlaneThroughThreeNodesHasTheirSlope) {
  const auto node = [](double x, double y) {
    return physics::SpacePoint{x, y, 100.0 + 0.25 * x - 0.5 * y};
  };
  const physics::PlanVector slope =
      physics::slope_of_plane(node(5e5, 5e6), node(5e5 + 3.0, 5e6 + 1.0), node(5e5, 5e6 + 2.0));
  EXPECT_DOUBLE_EQ(slope.x, 0.25);
  EXPECT_DOUBLE_EQ(slope.y, -0.5);
}

TEST(HllTriangle, ACellWithoutAreaHasNoSlope) {
  const physics::PlanVector slope =
      physics::slope_of_plane({0.0, 0.0, 1.0}, {1.0, 1.0, 2.0}, {2.0, 2.0, 5.0});
  EXPECT_EQ(slope.x, 0.0);
  EXPECT_EQ(slope.y, 0.0);
}

TEST(HllTriangle, CentersLieAsFarApartAsTheirMeans) {
  const physics::PlanPoint from[] = {{5e5, 5e6}, {5e5 + 3.0, 5e6}, {5e5, 5e6 + 3.0}};
  const physics::PlanPoint to[] = {{5e5 + 3.0, 5e6}, {5e5 + 3.0, 5e6 + 3.0}, {5e5, 5e6 + 3.0}};
  const physics::PlanVector d = physics::between_centers(from, to);
  EXPECT_DOUBLE_EQ(d.x, 1.0);
  EXPECT_DOUBLE_EQ(d.y, 1.0);
}

TEST(HllTriangle, AWallMirrorsACellAcrossItself) {
  const physics::PlanVector d = physics::to_mirror_image({0.5, 7.0}, {1.0, 0.0, 2.0});
  EXPECT_EQ(d.x, 1.0);
  EXPECT_EQ(d.y, 0.0);
}

TEST(LeastSquaresWeights, GiveTheSlopeOfALinearField) {
  Source random;
  for (int i = 0; i < trials; ++i) {
    const auto far = [&] {
      return physics::PlanVector{random.between(-2, 2), random.between(-2, 2)};
    };
    const physics::PlanVector d0 = far(), d1 = far(), d2 = far(), g{3.0, -2.0};
    const physics::SlopeWeights w = physics::least_squares_weights(d0, d1, d2);
    const auto value = [&](const physics::PlanVector& d) { return g.x * d.x + g.y * d.y; };
    const double size = std::max({std::fabs(w.x0), std::fabs(w.x1), std::fabs(w.x2),
                                  std::fabs(w.y0), std::fabs(w.y1), std::fabs(w.y2)});
    EXPECT_NEAR(w.x0 * value(d0) + w.x1 * value(d1) + w.x2 * value(d2), g.x, 2e-6 * size);
    EXPECT_NEAR(w.y0 * value(d0) + w.y1 * value(d1) + w.y2 * value(d2), g.y, 2e-6 * size);
  }
}

TEST(LeastSquaresWeights, ASingleNeighbourGivesTheSlopeTowardsIt) {
  const physics::SlopeWeights w =
      physics::least_squares_weights({0.0, 0.0}, {3.0, 4.0}, {0.0, 0.0});
  EXPECT_EQ(w.x0, 0.0f);
  EXPECT_EQ(w.y2, 0.0f);
  EXPECT_FLOAT_EQ(w.x1, 3.0f / 25.0f);
  EXPECT_FLOAT_EQ(w.y1, 4.0f / 25.0f);
}

TEST(LeastSquaresWeights, WithoutNeighboursAreZero) {
  const physics::SlopeWeights w = physics::least_squares_weights({0, 0}, {0, 0}, {0, 0});
  for (const float weight : {w.x0, w.y0, w.x1, w.y1, w.x2, w.y2}) EXPECT_EQ(weight, 0.0f);
}

}  // namespace hll_triangle_test
