#include "case/initial_state.hpp"

#include <gtest/gtest.h>

#include <array>

namespace {

/// A triangle of 3, 4 and 5 m and one of twice its size, whose vertices lie at 1, 2 and 6 m.
class InitialStateTest : public testing::Test {
 protected:
  InitialStateTest() {
    cases::Mesh& mesh = contents.mesh;
    mesh.x = {0.0, 4.0, 0.0, 8.0, 0.0};
    mesh.y = {0.0, 0.0, 3.0, 0.0, 6.0};
    mesh.z = {1.0, 2.0, 6.0, 2.0, 6.0};
    mesh.add_cell(std::array{0, 3, 4});
    mesh.add_cell(std::array{0, 1, 2});
    contents.zero_depth = 0.01;
    contents.fields.level = {4.0, 3.5};
    contents.fields.qx = {0.25, 0.5};
    contents.fields.qy = {-0.25, -0.5};
  }

  cases::Case contents;
};

TEST_F(InitialStateTest, WithoutABedFileTheBedIsTheMeanOfTheVertices) {
  EXPECT_EQ(cases::bed_rock_of(contents, 0), 3.0);
  EXPECT_EQ(cases::bed_level_of(contents, 0), 3.0);
}

TEST_F(InitialStateTest, SedimentLiesOnTheBedRock) {
  contents.fields.bed = {1.0, 2.0};
  contents.fields.sediment = {0.5, 0.25};
  EXPECT_EQ(cases::bed_rock_of(contents, 1), 2.0);
  EXPECT_EQ(cases::bed_level_of(contents, 1), 2.25);
}

TEST_F(InitialStateTest, TheDepthIsCountedFromTheBedWithItsSediment) {
  contents.fields.sediment = {0.25, 0.5};
  const physics::InitialWater water = cases::initial_water_of(contents, 0);
  EXPECT_EQ(water.h, 0.75);
  EXPECT_EQ(water.qx, 0.25);
  EXPECT_EQ(water.qy, -0.25);
  EXPECT_EQ(cases::initial_water_of(contents, 1).h, 0.0);
}

}  // namespace
