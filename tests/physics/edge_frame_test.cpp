#include "physics/edge_frame.hpp"

#include <gtest/gtest.h>

namespace edge_frame_test {

constexpr double zero_depth = 0.01;
constexpr physics::Edge oblique{0.6, 0.8, 2.0};

TEST(EdgeFrame, DischargesTurnIntoNormalAndTangentialParts) {
  const physics::EdgeSide side = physics::to_edge_frame({4.0, 10.0, 5.0, 1.0, 5.0}, oblique, 0.01);
  EXPECT_DOUBLE_EQ(side.qn, 10.0);  // 10 * 0.6 + 5 * 0.8
  EXPECT_DOUBLE_EQ(side.qt, -5.0);  // 5 * 0.6 - 10 * 0.8
  EXPECT_DOUBLE_EQ(side.un, 2.5);
  EXPECT_DOUBLE_EQ(side.ut, -1.25);
  EXPECT_DOUBLE_EQ(side.c, std::sqrt(39.24));
  EXPECT_TRUE(side.wet);
  EXPECT_EQ(side.zb, 1.0);
  EXPECT_EQ(side.eta, 5.0);
}

TEST(EdgeFrame, ADrySideHasNoMotion) {
  const physics::EdgeSide side =
      physics::to_edge_frame({zero_depth, 10.0, 5.0, 1.0, 1.01}, oblique, zero_depth);
  EXPECT_FALSE(side.wet);
  EXPECT_EQ(side.h, zero_depth);
  EXPECT_EQ(side.qn, 0.0);
  EXPECT_EQ(side.qt, 0.0);
  EXPECT_EQ(side.un, 0.0);
  EXPECT_EQ(side.ut, 0.0);
  EXPECT_EQ(side.c, 0.0);
}

TEST(EdgeFrame, TheLeftSlotLosesWhatFlowsAlongTheNormal) {
  const physics::WaterSlot slot = physics::left_slot(oblique, 3.0, 5.0, 10.0);
  EXPECT_DOUBLE_EQ(slot.h, -6.0);
  EXPECT_DOUBLE_EQ(slot.qx, 10.0);   // -2 (5 * 0.6 - 10 * 0.8)
  EXPECT_DOUBLE_EQ(slot.qy, -20.0);  // -2 (5 * 0.8 + 10 * 0.6)
}

TEST(EdgeFrame, TheRightSlotGainsWhatFlowsAlongTheNormal) {
  const physics::WaterSlot slot = physics::right_slot(oblique, 3.0, 5.0, 10.0);
  EXPECT_DOUBLE_EQ(slot.h, 6.0);
  EXPECT_DOUBLE_EQ(slot.qx, -10.0);
  EXPECT_DOUBLE_EQ(slot.qy, 20.0);
}

TEST(EdgeFrame, ABoundarySlotIsThatOfALeftCell) {
  const physics::WaterSlot slot = physics::boundary_slot(oblique, {3.0, 5.0, 10.0});
  EXPECT_DOUBLE_EQ(slot.h, -6.0);
  EXPECT_DOUBLE_EQ(slot.qx, 10.0);
  EXPECT_DOUBLE_EQ(slot.qy, -20.0);
}

}  // namespace edge_frame_test
