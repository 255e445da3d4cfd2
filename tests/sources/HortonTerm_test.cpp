#include "sources/HortonTerm.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "support/RunGlobals.hpp"

namespace {

/// Capacity from 5e-5 to 1e-5 m/s with a decay of 100 per metre, room for 0.05 m.
class HortonTermTest : public testing::Test {
 protected:
  /// Demand of one step of 10 s on water of depth h over soil that holds F (m).
  double demand(double h, double F, double kr = 0.0) {
    HortonTerm soil(3, 5e-5, 1e-5, 100.0, 0.05, kr);
    param.infiltrated_depth = F;
    state.h = h;
    soil.compute_source_term(0.0, source, state, param);
    return param.infiltration_step;
  }

  support::RunGlobals globals{0.01, 10.0};
  HydraulicVariableSWE source, state;
  ParamCell param;
};

TEST_F(HortonTermTest, FreshSoilTakesItsInitialCapacity) {
  EXPECT_DOUBLE_EQ(demand(1.0, 0.0), 5e-4);
}

TEST_F(HortonTermTest, CapacityDecaysWithTheInfiltratedDepth) {
  EXPECT_DOUBLE_EQ(demand(1.0, std::log(4.0) / 100.0), (1e-5 + 1e-5) * 10.0);
}

TEST_F(HortonTermTest, ADryCellOverSoilWithRoomGetsADemandToo) {
  EXPECT_DOUBLE_EQ(demand(0.0, 0.0), 5e-4);
}

TEST_F(HortonTermTest, DemandEndsAtTheRoomOfTheSoil) {
  EXPECT_DOUBLE_EQ(demand(1.0, 0.04999), 0.05 - 0.04999);
  EXPECT_DOUBLE_EQ(demand(1.0, 0.05), 0.0);
  EXPECT_DOUBLE_EQ(demand(1.0, 0.06), 0.05 - 0.06);
}

TEST_F(HortonTermTest, FullSoilUnderADryCellLeavesTheDemandAlone) {
  param.infiltration_step = 0.125;
  EXPECT_EQ(demand(0.0, 0.05), 0.125);
}

TEST_F(HortonTermTest, WithoutRecoveryTheInfiltratedDepthStays) {
  demand(1.0, 0.02);
  EXPECT_EQ(param.infiltrated_depth, 0.02);
  demand(1.0, 0.02, -1.0);
  EXPECT_EQ(param.infiltrated_depth, 0.02);
}

TEST_F(HortonTermTest, RecoveryDrainsTheSoilUnderADryCellToo) {
  demand(0.0, 0.05, 1e-3);
  EXPECT_DOUBLE_EQ(param.infiltrated_depth, 0.05 * std::exp(-0.01));
}

}  // namespace
