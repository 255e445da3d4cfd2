#include "physics/arithmetic.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "support/trials.hpp"

namespace arithmetic_test {

namespace {

/// Numbers for each function.
constexpr int many = support::trials(1000000);

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();
constexpr double largest = std::numeric_limits<double>::max();

/// Distance from the true value in units of the last place of the double nearest to it.
double ulps(double value, long double exact) {
  const double near = std::fabs(static_cast<double>(exact));
  if (std::isinf(near)) return std::fabs(value) == near ? 0.0 : infinity;
  const double unit =
      near == largest ? near - std::nextafter(near, 0.0) : std::nextafter(near, infinity) - near;
  const auto distance = static_cast<double>(std::fabs((value - exact) / unit));
  return std::isnan(distance) ? infinity : distance;
}

struct Interval {
  double low, high;

  /// The i-th point of the sequence of multiples of the golden ratio, modulo 1 (low discrepancy).
  double point(int i) const {
    const std::uint64_t fraction = static_cast<std::uint64_t>(i) * 0x9e3779b97f4a7c15U;
    return low + (high - low) * (static_cast<double>(fraction >> 11) * 0x1p-53);
  }
};

/// Worst error at `count` numbers whose logarithms, or which themselves, fill the interval.
template <class Function, class Exact>
double worst_over_logarithms(Function function, Exact exact, Interval interval, int count) {
  double worst = 0.0;
  for (int i = 0; i < count; ++i) {
    const double x = std::exp(interval.point(i));
    worst = std::max(worst, ulps(function(x), exact(static_cast<long double>(x))));
  }
  return worst;
}

template <class Function, class Exact>
double worst_over(Function function, Exact exact, Interval interval, int count) {
  double worst = 0.0;
  for (int i = 0; i < count; ++i) {
    const double x = interval.point(i);
    worst = std::max(worst, ulps(function(x), exact(static_cast<long double>(x))));
  }
  return worst;
}

/// Where a flow's depths, discharges and Shields numbers lie, with ample room.
constexpr Interval usual = {-20.0, 20.0};

auto exact_power(double exponent) {
  return [exponent](long double x) { return powl(x, static_cast<long double>(exponent)); };
}

auto exact_exponential() {
  return [](long double x) { return expl(x); };
}

auto exact_logarithm() {
  return [](long double x) { return logl(x); };
}

}  // namespace

// The bounds are the errors measured, rounded up by some hundredths.

TEST(Arithmetic, ThePower2_3IsExactToARoundingAndFarOutToTwoThirdsOfAUnit) {
  const auto exact = exact_power(0.6666666666666666);
  EXPECT_LT(worst_over_logarithms(physics::power_2_3, exact, usual, many), 0.55);
  EXPECT_LT(worst_over_logarithms(physics::power_2_3, exact, {-744.0, 709.7}, many / 10), 0.66);
  EXPECT_LT(ulps(physics::power_2_3(1e308), exact(1e308)), 0.66);
}

TEST(Arithmetic, TheReciprocalPower4_3IsWithinOneAndTwoThirdsUnits) {
  const auto power = [](double x) { return physics::power_minus_4_3(x, 1.0 / x); };
  EXPECT_LT(worst_over_logarithms(power, exact_power(-4.0 / 3.0), usual, many), 1.62);
}

TEST(Arithmetic, PowersOfNothingAndOfOneAreThemselves) {
  for (const double x : {0.0, 1.0}) {
    EXPECT_EQ(physics::power_2_3(x), x);
  }
}

TEST(Arithmetic, TheExponentialIsWithinNineTenthsOfAUnit) {
  const auto exact = exact_exponential();
  EXPECT_LT(worst_over(physics::exponential, exact, {-20.0, 20.0}, many), 0.83);
  // From the first number that does not become 0 to the last one that is not infinite.
  EXPECT_LT(worst_over(physics::exponential, exact, {-745.13, 709.78}, many / 10), 0.83);
  EXPECT_LT(worst_over(physics::exponential, exact, {-745.13, -708.0}, many / 10), 0.90);
  EXPECT_LT(worst_over(physics::exponential, exact, {-1e-3, 1e-3}, many / 10), 0.51);
}

TEST(Arithmetic, TheExponentialEndsAsTheStandardLibraryHasIt) {
  for (const double x :
       {0.0, -0.0, infinity, -infinity, largest, -largest, 5e-324, -5e-324, 1e-17, 709.78,
        709.782712893384, 709.7827128933841, 710.0, 1e9, -745.13, -745.14, -746.0, -1e9}) {
    EXPECT_EQ(physics::exponential(x), std::exp(x)) << x;
  }
  EXPECT_TRUE(std::isnan(physics::exponential(not_a_number)));
}

TEST(Arithmetic, TheLogarithmIsWithinNineTenthsOfAUnit) {
  const auto exact = exact_logarithm();
  EXPECT_LT(worst_over_logarithms(physics::natural_logarithm, exact, usual, many), 0.86);
  EXPECT_LT(worst_over_logarithms(physics::natural_logarithm, exact, {-744.0, 709.7}, many / 10),
            0.86);
  EXPECT_LT(worst_over(physics::natural_logarithm, exact, {0.5, 2.0}, many / 10), 0.86);
  EXPECT_LT(worst_over(physics::natural_logarithm, exact, {0.999, 1.001}, many / 10), 0.51);
}

TEST(Arithmetic, TheLogarithmEndsAsTheStandardLibraryHasIt) {
  for (const double x : {0.0, -0.0, 1.0, infinity, largest, 5e-324, 1e-310, 0x1p-1022}) {
    EXPECT_EQ(physics::natural_logarithm(x), std::log(x)) << x;
  }
  for (const double x : {-5e-324, -1.0, -largest, -infinity, not_a_number}) {
    EXPECT_TRUE(std::isnan(physics::natural_logarithm(x))) << x;
  }
}

TEST(Arithmetic, TheSmallerNumberPassesOverOneThatIsNot) {
  EXPECT_EQ(physics::minimum_ignoring_nan(1.0, 2.0), 1.0);
  EXPECT_EQ(physics::minimum_ignoring_nan(2.0, 1.0), 1.0);
  EXPECT_EQ(physics::minimum_ignoring_nan(not_a_number, 1.0), 1.0);
  EXPECT_EQ(physics::minimum_ignoring_nan(1.0, not_a_number), 1.0);
  EXPECT_TRUE(std::isnan(physics::minimum_ignoring_nan(not_a_number, not_a_number)));
}

}  // namespace arithmetic_test
