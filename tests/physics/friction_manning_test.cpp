#include "physics/friction_manning.hpp"

#include <gtest/gtest.h>

namespace friction_manning_test {

TEST(FrictionManning, OpposesTheFlowWithTheSquareOfTheVelocity) {
  // h = 8 m: h^(4/3) = 16. n^2 |q| / (h h^(4/3)) = 0.0016 * 5 / 128 = 6.25e-5, over h again.
  const physics::MomentumSource source = physics::friction_manning(0.04, 8.0, 0.125, 3.0, -4.0);
  EXPECT_NEAR(source.qx, -2.34375e-5, 1e-18);
  EXPECT_NEAR(source.qy, 3.125e-5, 1e-18);
}

TEST(FrictionManning, WaterAtRestFeelsNone) {
  const physics::MomentumSource source = physics::friction_manning(0.04, 8.0, 0.125, 0.0, 0.0);
  EXPECT_EQ(source.qx, 0.0);
  EXPECT_EQ(source.qy, 0.0);
}

TEST(FrictionManning, ASmoothBedGivesNegativeZero) {
  const physics::MomentumSource source = physics::friction_manning(0.0, 8.0, 0.125, 3.0, 4.0);
  EXPECT_EQ(source.qx, 0.0);
  EXPECT_TRUE(std::signbit(source.qx));
  EXPECT_EQ(source.qy, 0.0);
  EXPECT_TRUE(std::signbit(source.qy));
}

}  // namespace friction_manning_test
