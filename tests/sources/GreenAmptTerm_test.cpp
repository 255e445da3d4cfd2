#include "sources/GreenAmptTerm.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "support/RunGlobals.hpp"

namespace {

/// Ks 1e-5 m/s, psi 0.1 m, moisture 0.2 of 0.4, a layer of 1 m: psi dtheta = 0.02 m, and room for
/// 1 * 0.2 / 0.4 = 0.5 m.
class GreenAmptTermTest : public testing::Test {
 protected:
  static GreenAmptTerm soil(double kr) { return {3, 1e-5, 0.1, 0.2, 0.4, 1.0, kr}; }

  /// Demand of one step of 10 s on water of depth h over soil that holds F (m).
  double demand(double h, double F, double kr = 0.0) {
    param.infiltrated_depth = F;
    state.h = h;
    soil(kr).compute_source_term(0.0, source, state, param);
    return param.infiltration_step;
  }

  support::RunGlobals globals{0.01, 10.0};
  HydraulicVariableSWE source, state;
  ParamCell param;
};

TEST_F(GreenAmptTermTest, TakesItsId) { EXPECT_EQ(soil(0.0).getID(), 3); }

TEST_F(GreenAmptTermTest, PondedInfiltrationSatisfiesTheImplicitRelation) {
  for (const double span : {10.0, 600.0, 86400.0}) {
    const double F = soil(0.0).newton_raphson(span);
    EXPECT_NEAR(F - 0.02 * std::log1p(F / 0.02), 1e-5 * span, 1e-8) << span;
    EXPECT_GT(F, 1e-5 * span);
  }
}

TEST_F(GreenAmptTermTest, FreshSoilStartsFromThePondedDepthOfOneStep) {
  const double Fe = soil(0.0).newton_raphson(10.0);
  const double first = demand(1.0, 0.0);
  EXPECT_TRUE(std::isfinite(first));
  EXPECT_DOUBLE_EQ(first, 1e-5 * (0.02 / Fe + 1.0) * 10.0);
}

TEST_F(GreenAmptTermTest, SoilThatHoldsWaterStartsFromWhatItHolds) {
  EXPECT_DOUBLE_EQ(demand(1.0, 0.01), 3e-4);
}

TEST_F(GreenAmptTermTest, DemandEndsAtTheRoomOfTheLayer) {
  EXPECT_DOUBLE_EQ(demand(1.0, 0.49999), 0.5 - 0.49999);
}

TEST_F(GreenAmptTermTest, FullSoilUnderWaterDemandsNothing) {
  EXPECT_DOUBLE_EQ(demand(1.0, 0.5), 0.0);
  EXPECT_NEAR(demand(1.0, 0.75), -0.25, 1e-15);
}

TEST_F(GreenAmptTermTest, FullSoilUnderADryCellLeavesTheDemandAlone) {
  param.infiltration_step = 0.125;
  EXPECT_EQ(demand(0.0, 0.5), 0.125);
}

TEST_F(GreenAmptTermTest, WithoutRecoveryTheInfiltratedDepthStays) {
  for (const double h : {0.0, 1.0}) {
    demand(h, 0.25);
    EXPECT_EQ(param.infiltrated_depth, 0.25);
  }
}

TEST_F(GreenAmptTermTest, RecoveryDrainsTheSoil) {
  demand(1.0, 0.01, 1e-3);
  EXPECT_DOUBLE_EQ(param.infiltrated_depth, 0.01 - (0.01 + 1.5e-4) * (1.0 - std::exp(-0.01)));
}

TEST_F(GreenAmptTermTest, NeitherWaterNorSourceChanges) {
  source.set_values(1.0, 2.0, 3.0);
  demand(1.0, 0.01);
  EXPECT_EQ(state.h, 1.0);
  EXPECT_EQ(source.h, 1.0);
  EXPECT_EQ(source.qx, 2.0);
  EXPECT_EQ(source.qy, 3.0);
}

}  // namespace
