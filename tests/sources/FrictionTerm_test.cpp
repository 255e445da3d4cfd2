#include "sources/FrictionTerm.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "support/RunGlobals.hpp"

namespace {

class FrictionTermTest : public testing::Test {
 protected:
  HydraulicVariableSWE source_of(double n, double h, double qx, double qy) {
    HydraulicVariableSWE source;
    source.set_values(0.5, 99.0, 99.0);  // rain, and momentum that friction must replace
    HydraulicVariableSWE state;
    state.set_values(h, qx, qy);
    FrictionTerm(n).compute_source_term(0.0, source, state, param);
    return source;
  }

  support::RunGlobals globals{0.01};
  ParamCell param;
};

TEST_F(FrictionTermTest, KnowsItsCoefficient) {
  EXPECT_EQ(FrictionTerm(0.03).get_friction_coefficient(), 0.03);
  EXPECT_EQ(FrictionTerm(0.03).getID(), -1);
  EXPECT_EQ(FrictionTerm(0.03).get_dts(), -1.0);
}

TEST_F(FrictionTermTest, ReplacesTheMomentumSourceAndKeepsTheDepth) {
  // n^2 |q| q / h^(10/3) with |q| = 5 and h^(10/3) = 8^(10/3) = 1024.
  const HydraulicVariableSWE source = source_of(0.04, 8.0, 3.0, -4.0);
  EXPECT_NEAR(source.qx, -0.0016 * 5.0 * 3.0 / 1024.0, 1e-18);
  EXPECT_NEAR(source.qy, 0.0016 * 5.0 * 4.0 / 1024.0, 1e-18);
  EXPECT_EQ(source.h, 0.5);
}

TEST_F(FrictionTermTest, ADepthAtTheThresholdFeelsNone) {
  const HydraulicVariableSWE source = source_of(0.04, 0.01, 3.0, -4.0);
  EXPECT_EQ(source.h, 0.5);
  EXPECT_EQ(source.qx, 99.0);
  EXPECT_EQ(source.qy, 99.0);
}

TEST_F(FrictionTermTest, WaterAtRestGetsAContributionOfZero) {
  const HydraulicVariableSWE source = source_of(0.04, 8.0, 0.0, 0.0);
  EXPECT_EQ(source.qx, 0.0);
  EXPECT_EQ(source.qy, 0.0);
}

TEST_F(FrictionTermTest, ASmoothBedGivesNegativeZeros) {
  const HydraulicVariableSWE source = source_of(0.0, 8.0, 3.0, 4.0);
  EXPECT_EQ(source.qx, 0.0);
  EXPECT_TRUE(std::signbit(source.qx));
  EXPECT_EQ(source.qy, 0.0);
  EXPECT_TRUE(std::signbit(source.qy));
}

}  // namespace
