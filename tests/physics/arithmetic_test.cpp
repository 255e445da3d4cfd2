#include "physics/arithmetic.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

/// Distance from the true value in units of the last place.
double ulps(double value, long double exact) {
  const double near = static_cast<double>(exact);
  const double unit = std::nextafter(near, INFINITY) - near;
  return static_cast<double>(std::fabs((static_cast<long double>(value) - exact) / unit));
}

template <class Power>
double worst_of_many(Power power, double exponent) {
  std::mt19937_64 generator(20);
  std::uniform_real_distribution<double> logarithm(-20.0, 20.0);
  double worst = 0.0;
  for (int i = 0; i < 2500000; ++i) {
    const double x = std::exp(logarithm(generator));
    const long double exact = powl(static_cast<long double>(x), static_cast<long double>(exponent));
    worst = std::max(worst, ulps(power(x), exact));
  }
  return worst;
}

}  // namespace

TEST(Arithmetic, PowersAreWithinOneUnitInTheLastPlace) {
  EXPECT_LT(worst_of_many(physics::power_2_3, 0.6666666666666666), 1.0);
  EXPECT_LT(worst_of_many(physics::power_4_3, 4.0 / 3.0), 1.0);
  EXPECT_LT(worst_of_many(physics::power_7_3, 7.0 / 3.0), 1.0);
  EXPECT_LT(worst_of_many(physics::power_10_3, 10.0 / 3.0), 1.0);
}

TEST(Arithmetic, TheRootOfACubeIsWithinTwoUnits) {
  EXPECT_LT(worst_of_many(physics::power_3_2, 1.5), 2.0);
}

TEST(Arithmetic, ThePowerOfNothingIsNothing) {
  EXPECT_EQ(physics::power_2_3(0.0), 0.0);
  EXPECT_EQ(physics::power_4_3(0.0), 0.0);
  EXPECT_EQ(physics::power_3_2(0.0), 0.0);
}

TEST(Arithmetic, PowersHoldFarOutside) {
  for (const double x : {1e-100, 1e-30, 1e30, 1e80}) {
    EXPECT_LT(ulps(physics::power_4_3(x), powl(x, 4.0 / 3.0)), 8.0) << x;
    EXPECT_LT(ulps(physics::power_2_3(x), powl(x, 0.6666666666666666)), 8.0) << x;
  }
}

TEST(Arithmetic, APowerOfOneIsOne) {
  EXPECT_EQ(physics::power_2_3(1.0), 1.0);
  EXPECT_EQ(physics::power_4_3(1.0), 1.0);
  EXPECT_EQ(physics::power_7_3(1.0), 1.0);
  EXPECT_EQ(physics::power_10_3(1.0), 1.0);
}
