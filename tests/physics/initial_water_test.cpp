#include "physics/initial_water.hpp"

#include <gtest/gtest.h>

namespace initial_water_test {

constexpr double zero_depth = 0.01;

TEST(InitialWater, IsAsDeepAsTheLevelStandsAboveTheBed) {
  const physics::InitialWater water = physics::initial_water(3.5, 3.0, 0.25, -0.5, zero_depth);
  EXPECT_EQ(water.h, 0.5);
  EXPECT_EQ(water.qx, 0.25);
  EXPECT_EQ(water.qy, -0.5);
}

TEST(InitialWater, ALevelBelowTheBedIsADryCell) {
  const physics::InitialWater water = physics::initial_water(2.0, 3.0, 0.25, -0.5, zero_depth);
  EXPECT_EQ(water.h, 0.0);
  EXPECT_EQ(water.qx, 0.0);
  EXPECT_EQ(water.qy, 0.0);
}

TEST(InitialWater, AFilmKeepsItsDepthAndStandsStill) {
  const physics::InitialWater film = physics::initial_water(0.009, 0.0, 0.25, -0.5, zero_depth);
  EXPECT_EQ(film.h, 0.009);
  EXPECT_EQ(film.qx, 0.0);
  EXPECT_EQ(film.qy, 0.0);
  EXPECT_EQ(physics::initial_water(zero_depth, 0.0, 0.25, -0.5, zero_depth).qx, 0.25);
}

}  // namespace initial_water_test
