#include "physics/wave_speeds_coupled.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace wave_speeds_coupled_test {

namespace {

constexpr double zero_depth = 1e-3;
constexpr double porosity = 0.4;
const physics::Edge along_x = {1.0, 0.0, 1.0};

physics::EdgeSide side(double h, double qx) {
  return physics::to_edge_frame({h, qx, 0.0, 0.0, h}, along_x, zero_depth);
}

}  // namespace

TEST(CoupledSpeeds, WithoutTransportAForwardFlowHasItsWaterWaves) {
  const double c = std::sqrt(9.81 * 2.0);
  for (const double q : {0.0, 3.0, 20.0}) {  // at rest, subcritical, supercritical
    const physics::CoupledSpeeds s = coupled_speeds(side(2.0, q), 0.0, porosity, zero_depth);
    const double u = q / 2.0;
    EXPECT_DOUBLE_EQ(s.s1, std::min(u - c, 0.0)) << q;
    EXPECT_DOUBLE_EQ(s.s2, std::max(u - c, 0.0)) << q;
    EXPECT_DOUBLE_EQ(s.s3, u + c) << q;
    EXPECT_GE(s.radicand, 0.0);
  }
}

TEST(CoupledSpeeds, WithoutTransportABackwardFlowHasTheCelerityAsItsFastestWave) {
  const double c = std::sqrt(9.81 * 2.0);
  const physics::CoupledSpeeds s = coupled_speeds(side(2.0, -3.0), 0.0, porosity, zero_depth);
  EXPECT_DOUBLE_EQ(s.s1, -1.5 - c);
  EXPECT_NEAR(s.s2, -1.5, 1e-14);
  EXPECT_NEAR(s.s3, c, 1e-14);
}

TEST(CoupledSpeeds, TransportWidensTheFanByTheBedWave) {
  const double h = 1.0, u = 2.0, c = std::sqrt(9.81), dqs_dh = -0.01;
  const physics::CoupledSpeeds s = coupled_speeds(side(h, h * u), dqs_dh, porosity, zero_depth);
  const double lambda = std::sqrt((u - c) * (u - c) + 4.0 * 9.81 * h * 0.01 / (0.6 * (u + c)));
  EXPECT_NEAR(s.s1, 0.5 * (u - c - lambda), 1e-14);
  EXPECT_NEAR(s.s2, 0.5 * (u - c + lambda), 1e-14);
  EXPECT_GT(s.s2, 0.0);
}

TEST(CoupledSpeeds, AWaveSlowerThanTheThresholdLeavesTheBedOut) {
  const double h = 1.0;
  const double c = std::sqrt(9.81 * h);
  const physics::EdgeSide s = side(h, -h * (c - 0.5 * zero_depth));  // |un + c| below the threshold
  const physics::CoupledSpeeds speeds = coupled_speeds(s, -10.0, porosity, zero_depth);
  EXPECT_NEAR(speeds.s1, -2.0 * c, 1e-2);
  EXPECT_NEAR(speeds.s2, s.un, 1e-12);
}

TEST(CoupledSpeeds, ANegativeRadicandFallsBackAndSaysSo) {
  const physics::CoupledSpeeds with = coupled_speeds(side(1.0, 1.0), 100.0, porosity, zero_depth);
  const physics::CoupledSpeeds without = coupled_speeds(side(1.0, 1.0), 0.0, porosity, zero_depth);
  EXPECT_LT(with.radicand, 0.0);
  EXPECT_EQ(with.s1, without.s1);
  EXPECT_EQ(with.s2, without.s2);
  EXPECT_EQ(with.s3, without.s3);
}

TEST(CoupledSpeeds, ADrySideHasNoSpeed) {
  const physics::CoupledSpeeds s =
      coupled_speeds(side(zero_depth, 1.0), -1.0, porosity, zero_depth);
  EXPECT_EQ(s.s1, 0.0);
  EXPECT_EQ(s.s2, 0.0);
  EXPECT_EQ(s.s3, 0.0);
  EXPECT_GE(s.radicand, 0.0);
}

}  // namespace wave_speeds_coupled_test
