#include "model/HydraulicVariableSWE.hpp"

#include <gtest/gtest.h>

#include <sstream>

namespace {

HydraulicVariableSWE counted() {
  HydraulicVariableSWE v;
  v.set_values(1.0, 2.0, 3.0, 4.0, 5.0, 6.0);
  return v;
}

void expect_values(const HydraulicVariableSWE& v, double h, double qx, double qy, double hs,
                   double qsx, double qsy) {
  EXPECT_EQ(v.h, h);
  EXPECT_EQ(v.qx, qx);
  EXPECT_EQ(v.qy, qy);
  EXPECT_EQ(v.hs, hs);
  EXPECT_EQ(v.qsx, qsx);
  EXPECT_EQ(v.qsy, qsy);
}

TEST(HydraulicVariableSWE, StartsAtZero) {
  expect_values(HydraulicVariableSWE(), 0.0, 0.0, 0.0, 0.0, 0.0, 0.0);
}

TEST(HydraulicVariableSWE, ThreeValuesSetTheWaterAlone) {
  HydraulicVariableSWE v = counted();
  v.set_values(7.0, 8.0, 9.0);
  expect_values(v, 7.0, 8.0, 9.0, 4.0, 5.0, 6.0);
}

TEST(HydraulicVariableSWE, TwoValuesSetTheDischargesAsGiven) {
  HydraulicVariableSWE v = counted();
  v.set_values_speed(8.0, 9.0);
  expect_values(v, 1.0, 8.0, 9.0, 4.0, 5.0, 6.0);
}

TEST(HydraulicVariableSWE, ArithmeticLeavesTheBedLoadAlone) {
  HydraulicVariableSWE v = counted();
  v += counted();
  expect_values(v, 2.0, 4.0, 6.0, 8.0, 5.0, 6.0);
  v *= 3.0;
  expect_values(v, 6.0, 12.0, 18.0, 24.0, 5.0, 6.0);
  v -= counted();
  expect_values(v, 5.0, 10.0, 15.0, 20.0, 5.0, 6.0);
}

TEST(HydraulicVariableSWE, StreamsTheWaterEachValueWithATab) {
  std::ostringstream out;
  out << counted();
  EXPECT_EQ(out.str(), "1\t2\t3\t");
}

TEST(HydraulicVariableSWE, ReadsTheWater) {
  std::istringstream in("7 8\n9 10");
  HydraulicVariableSWE v = counted();
  in >> v;
  expect_values(v, 7.0, 8.0, 9.0, 4.0, 5.0, 6.0);
}

}  // namespace
