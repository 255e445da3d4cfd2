#include "physics/section_discharge.hpp"

#include <gtest/gtest.h>

namespace section_discharge_test {

TEST(SectionDischarge, AddsTheNormalDischargeTimesTheLength) {
  // (10 * 0.6 + 5 * 0.8) * 2 = 20 m3/s on top of 7.
  EXPECT_DOUBLE_EQ(physics::add_edge_discharge(7.0, 10.0, 5.0, {0.6, 0.8, 2.0}), 27.0);
}

TEST(SectionDischarge, FlowAgainstTheNormalCountsNegative) {
  EXPECT_DOUBLE_EQ(physics::add_edge_discharge(0.0, 10.0, 5.0, {-0.6, -0.8, 2.0}), -20.0);
}

TEST(SectionDischarge, FlowAlongTheEdgeDoesNotCount) {
  EXPECT_EQ(physics::add_edge_discharge(1.0, 0.0, 3.0, {-1.0, 0.0, 5.0}), 1.0);
}

}  // namespace section_discharge_test
