#include "physics/cell_update.hpp"

#include <gtest/gtest.h>

namespace cell_update_test {

constexpr double zero_depth = 0.01;

TEST(MomentumChange, MultipliesASourceByGravityDepthAndStep) {
  EXPECT_DOUBLE_EQ(physics::momentum_change(2.0, 0.5, 4.0), 2.0 * 19.62);
}

TEST(IsReversed, AsksForOppositeSigns) {
  EXPECT_TRUE(physics::is_reversed(1.0, -1e-3));
  EXPECT_TRUE(physics::is_reversed(-1.0, 1e-3));
  EXPECT_FALSE(physics::is_reversed(-1.0, -2.0));
  EXPECT_FALSE(physics::is_reversed(0.0, -1.0));
  EXPECT_FALSE(physics::is_reversed(1.0, 0.0));
}

physics::Maxima maxima_after(const physics::Maxima& before, double h, double qx, double qy) {
  return physics::updated_maxima(before, h, physics::depth_terms(h, zero_depth), qx, qy,
                                 zero_depth);
}

TEST(UpdatedMaxima, KeepTheDeepestWater) {
  EXPECT_EQ(maxima_after({1.0, 0.0, 0.0}, 2.0, 0.0, 0.0).h, 2.0);
  EXPECT_EQ(maxima_after({3.0, 0.0, 0.0}, 2.0, 0.0, 0.0).h, 3.0);
}

TEST(UpdatedMaxima, KeepTheFastestVelocityAsAVector) {
  const auto faster = maxima_after({9.0, 3.0, 0.0}, 2.0, 2.0, -6.0);
  EXPECT_EQ(faster.u, 1.0);
  EXPECT_EQ(faster.v, -3.0);
  const auto slower = maxima_after({9.0, 3.0, 0.0}, 2.0, 4.0, 4.0);
  EXPECT_EQ(slower.u, 3.0);
  EXPECT_EQ(slower.v, 0.0);
}

TEST(UpdatedMaxima, AnEqualSpeedDoesNotReplaceTheFirst) {
  const auto equal = maxima_after({9.0, 3.0, 4.0}, 2.0, -10.0, 0.0);
  EXPECT_EQ(equal.u, 3.0);
  EXPECT_EQ(equal.v, 4.0);
}

TEST(UpdatedMaxima, AFilmCountsForTheDepthAndNotForTheVelocity) {
  const auto film = maxima_after({0.0, 0.0, 0.0}, zero_depth, 1.0, 1.0);
  EXPECT_EQ(film.h, zero_depth);
  EXPECT_EQ(film.u, 0.0);
  EXPECT_EQ(film.v, 0.0);
}

}  // namespace cell_update_test
