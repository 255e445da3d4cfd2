#include "physics/infiltration.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace infiltration_test {

// psi dtheta = 0.02 m.
constexpr physics::GreenAmptSoil loam{1e-5, 0.1, 0.2, 0.5, 0.0};
// Capacity 5e-5 m/s on fresh soil, halfway to 1e-5 at F = ln 2 / 100.
constexpr physics::HortonSoil field{5e-5, 1e-5, 100.0, 0.05, 0.0};

/// Root of F - P ln(1 + F / P) = Ks tau by bisection.
double ponded_by_bisection(const physics::GreenAmptSoil& soil, double tau) {
  const double P = soil.psi * soil.dtheta;
  double low = 0.0;
  double high = 10.0;
  for (int i = 0; i < 200; ++i) {
    const double F = 0.5 * (low + high);
    (F - P * std::log1p(F / P) < soil.Ks * tau ? low : high) = F;
  }
  return low;
}

TEST(GreenAmptPonded, SolvesTheImplicitRelation) {
  for (const double tau : {0.1, 10.0, 3600.0, 36000.0}) {
    EXPECT_NEAR(physics::green_ampt_ponded(loam, tau), ponded_by_bisection(loam, tau), 1e-8) << tau;
  }
}

TEST(GreenAmptPonded, WithoutSuctionEndsWithoutANumber) {
  for (const physics::GreenAmptSoil& soil :
       {physics::GreenAmptSoil{1e-5, 0.0, 0.2, 0.5, 0.0},     // no suction head
        physics::GreenAmptSoil{1e-5, 0.1, 0.0, 0.5, 0.0}}) {  // no moisture deficit
    EXPECT_TRUE(std::isnan(physics::green_ampt_ponded(soil, 10.0)));
    EXPECT_TRUE(std::isnan(physics::infiltration_green_ampt(soil, 1.0, 0.0, 0.0, 10.0).demand));
    // Once it holds water it takes Ks dt in a step.
    EXPECT_DOUBLE_EQ(physics::infiltration_green_ampt(soil, 1.0, 0.01, 0.0, 10.0).demand, 1e-4);
  }
}

TEST(InfiltrationGreenAmpt, DemandGrowsWithTheSuctionOfTheFront) {
  // Ks (0.02 / 0.01 + 1) dt = 1e-5 * 3 * 10.
  const auto soil = physics::infiltration_green_ampt(loam, 1.0, 0.01, 0.0, 10.0);
  EXPECT_DOUBLE_EQ(soil.demand, 3e-4);
  EXPECT_EQ(soil.infiltrated, 0.01);
}

TEST(InfiltrationGreenAmpt, FreshSoilTakesTheDepthPondedInOneStep) {
  const double Fe = ponded_by_bisection(loam, 10.0);
  const auto soil = physics::infiltration_green_ampt(loam, 1.0, 0.0, 0.0, 10.0);
  EXPECT_NEAR(soil.demand, 1e-5 * (0.02 / Fe + 1.0) * 10.0, 1e-9);
}

TEST(InfiltrationGreenAmpt, DemandStopsAtTheRoomInTheSoil) {
  const auto soil = physics::infiltration_green_ampt(loam, 1.0, 0.4999, 0.0, 100.0);
  EXPECT_DOUBLE_EQ(soil.demand, 0.5 - 0.4999);
}

TEST(InfiltrationGreenAmpt, FullSoilUnderWaterDemandsNothingPositive) {
  EXPECT_EQ(physics::infiltration_green_ampt(loam, 1.0, 0.5, 7.0, 10.0).demand, 0.0);
  EXPECT_DOUBLE_EQ(physics::infiltration_green_ampt(loam, 1.0, 0.75, 7.0, 10.0).demand, -0.25);
}

TEST(InfiltrationGreenAmpt, FullSoilUnderADryCellKeepsTheDemandInForce) {
  EXPECT_EQ(physics::infiltration_green_ampt(loam, 0.0, 0.5, 7.0, 10.0).demand, 7.0);
  EXPECT_EQ(physics::infiltration_green_ampt(loam, -1.0, 0.5, 7.0, 10.0).demand, 7.0);
}

TEST(InfiltrationGreenAmpt, RoomInTheSoilIsEnoughForADemandOfADryCell) {
  EXPECT_DOUBLE_EQ(physics::infiltration_green_ampt(loam, 0.0, 0.01, 0.0, 10.0).demand, 3e-4);
}

TEST(InfiltrationGreenAmpt, TheSoilRecoversFromItsMeanDepth) {
  physics::GreenAmptSoil soil = loam;
  soil.kr = 1e-3;
  const double lost = 1.0 - std::exp(-1e-3 * 10.0);
  // Demand 3e-4, less than the water.
  EXPECT_DOUBLE_EQ(physics::infiltration_green_ampt(soil, 1.0, 0.01, 0.0, 10.0).infiltrated,
                   0.01 - (0.01 + 1.5e-4) * lost);
  // Only 1e-4 m of water.
  EXPECT_DOUBLE_EQ(physics::infiltration_green_ampt(soil, 1e-4, 0.01, 0.0, 10.0).infiltrated,
                   0.01 - (0.01 + 5e-5) * lost);
}

TEST(InfiltrationHorton, CapacityDecaysWithTheInfiltratedDepth) {
  EXPECT_DOUBLE_EQ(physics::infiltration_horton(field, 1.0, 0.0, 0.0, 10.0).demand, 5e-4);
  const double half = std::log(2.0) / 100.0;
  EXPECT_DOUBLE_EQ(physics::infiltration_horton(field, 1.0, half, 0.0, 10.0).demand, 3e-4);
}

TEST(InfiltrationHorton, DemandStopsAtTheRoomInTheSoil) {
  EXPECT_DOUBLE_EQ(physics::infiltration_horton(field, 1.0, 0.0499, 0.0, 100.0).demand,
                   0.05 - 0.0499);
  EXPECT_DOUBLE_EQ(physics::infiltration_horton(field, 1.0, 0.06, 0.0, 100.0).demand, 0.05 - 0.06);
}

TEST(InfiltrationHorton, FullSoilUnderADryCellKeepsTheDemandInForce) {
  EXPECT_EQ(physics::infiltration_horton(field, 0.0, 0.05, 7.0, 10.0).demand, 7.0);
}

TEST(InfiltrationHorton, AnInactiveSoilRecoversWithoutADemand) {
  physics::HortonSoil soil = field;
  soil.kr = 1e-3;
  EXPECT_DOUBLE_EQ(physics::infiltration_horton(soil, 0.0, 0.05, 7.0, 10.0).infiltrated,
                   0.05 * std::exp(-1e-3 * 10.0));
}

TEST(RecoveredDepth, WithoutARateTheSoilForgetsNothing) {
  EXPECT_EQ(physics::recovery_share(0.0, 10.0), 0.0);
  EXPECT_EQ(physics::recovery_share(-1.0, 10.0), 0.0);
  // Not even a depth below zero, which a rate would set to zero.
  for (const double F : {0.25, -0.25}) {
    EXPECT_EQ(physics::recovered_depth(1.0, 1.0, F, 0.0, 0.0), F);
    EXPECT_EQ(physics::recovered_depth(1.0, 1.0, F, -1.0, 0.0), F);
  }
  EXPECT_EQ(physics::recovered_depth(1.0, 1.0, -0.25, 0.1, 0.5), 0.0);
}

TEST(RecoveredDepth, NeverFallsBelowZero) {
  // Mean 0.6 times a decay of almost 1, against 0.1.
  EXPECT_EQ(physics::recovered_depth(1.0, 1.0, 0.1, 100.0, physics::recovery_share(100.0, 10.0)),
            0.0);
}

TEST(RecoveredDepth, ADepthThatIsNotANumberGivesWayToTheDemand) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double share = physics::recovery_share(0.1, 1.0);
  EXPECT_EQ(physics::recovered_depth(nan, 0.5, 1.0, 0.1, share),
            physics::recovered_depth(2.0, 0.5, 1.0, 0.1, share));
}

TEST(SoilStep, HoldsThePondedDepthAndTheRecoveryOfTheStep) {
  physics::GreenAmptSoil soil = loam;
  soil.kr = 1e-3;
  const physics::SoilStep step = physics::soil_step(soil, 10.0);
  EXPECT_EQ(step.ponded, physics::green_ampt_ponded(soil, 10.0));
  EXPECT_DOUBLE_EQ(step.recovery, 1.0 - std::exp(-0.01));
}

}  // namespace infiltration_test
