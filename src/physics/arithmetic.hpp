// The arithmetic that flow formulas share: the fused multiply-add, and powers, exponential and
// logarithm, which are called here alone. One text serves every path (host, device, vector), so
// that all of them round alike. The functions have internal linkage: a source file that is built
// for another instruction set keeps its own.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

#ifdef __CUDACC__
#define QM_HD __host__ __device__ static
#else
#define QM_HD static
#endif

namespace physics {

/// a * b + c with one rounding.
QM_HD inline double fused(double a, double b, double c) { return std::fma(a, b, c); }

/// The bits of a double, and the double of these bits.
#ifdef __CUDA_ARCH__
QM_HD inline std::uint64_t bits_of(double x) {
  return static_cast<std::uint64_t>(__double_as_longlong(x));
}
QM_HD inline double number_of(std::uint64_t bits) {
  return __longlong_as_double(static_cast<long long>(bits));
}
#else
QM_HD inline std::uint64_t bits_of(double x) { return std::bit_cast<std::uint64_t>(x); }
QM_HD inline double number_of(std::uint64_t bits) { return std::bit_cast<double>(bits); }
#endif

/// Cube root of a positive normal number (or 0), x^(1/3) = c + dc, and the natural logarithm of the
/// number to about 0.06.
struct CubeRoot {
  double c;
  double dc;
  double ln;
};

/// What a reciprocal cube root y of x lacks, as a share of it: the series of fourth order in the
/// residual e, (1 - e)^(-1/3) - 1.
QM_HD inline double lack_of_reciprocal_root(double x, double y) {
  const double e = fused(-x * y * y, y, 1.0);
  return e * fused(e, fused(e, 14.0 / 81.0, 2.0 / 9.0), 1.0 / 3.0);
}

/// x^(-1/3) of a positive normal number to 5 digits: a first guess from the exponent, and one step.
/// No branch and no table, so that it vectorises.
QM_HD inline double rough_reciprocal_root(double x) {
  const std::uint64_t third = ((bits_of(x) >> 32) * 0x55555556U) >> 32;
  const double guess = number_of((0x553ef0ffU - third) << 32);
  return fused(guess, lack_of_reciprocal_root(x, guess), guess);
}

/// Natural logarithm of a positive normal number to about 0.06: the high half of a double is its
/// exponent and, nearly linearly, the logarithm of its mantissa.
QM_HD inline double rough_logarithm(double x) {
  const auto high = static_cast<std::int32_t>(bits_of(x) >> 32);
  return (static_cast<double>(high) * 0x1p-20 - 1022.95) * 0.6931471805599453;
}

/// The root from its reciprocal, and its rounding error from the residual.
QM_HD inline CubeRoot cube_root(double x) {
  const double rough = rough_reciprocal_root(x);
  const double y = fused(rough, lack_of_reciprocal_root(x, rough), rough);
  const double c = x * y * y;
  const double c2 = c * c;
  const double c2_error = fused(c, c, -c2);
  const double c3 = c2 * c;
  const double c3_error = fused(c2, c, -c3) + c2_error * c;
  const double dc = ((x - c3) - c3_error) * (y * y) * (1.0 / 3.0);
  return {c, dc, rough_logarithm(x)};
}

/// (p + dp) x^(1/3), corrected for the distance between the exponent's double and the fraction it
/// stands for.
QM_HD inline double times_cube_root(double p, double dp, const CubeRoot& root,
                                    double exponent_error) {
  const double value = p * root.c;
  const double rounding = fused(p, root.c, -value);
  return value + (rounding + (p * root.dc + dp * root.c) + value * (root.ln * exponent_error));
}

// Powers of a number that is not negative; the exponents are the doubles nearest to the fractions.

/// x^(2/3) within one unit in the last place, up to 1e308; 0 where x is 0.
QM_HD inline double power_2_3(double x) {
  // Where the rounding error of a small cube could underflow, the root is taken of 2^162 x.
  const bool tiny = x < 0x1p-900;
  CubeRoot root = cube_root(tiny ? x * 0x1p162 : x);
  root.ln -= tiny ? 162.0 * 0.6931471805599453 : 0.0;
  const double value = times_cube_root(root.c, root.dc, root, -3.7025504190379976e-17);
  return tiny ? value * 0x1p-108 : value;
}
/// x^(-4/3) from x and its rounded reciprocal; within one and two thirds units in the last place
/// from e^-20 to e^20.
QM_HD inline double power_minus_4_3(double x, double reciprocal) {
  const double y = rough_reciprocal_root(x);
  const double rough = reciprocal * y;
  const double lack_of_reciprocal = fused(-x, reciprocal, 1.0);
  const double lack_of_exponent = rough_logarithm(x) * 7.405100838075995e-17;
  const double lack = lack_of_reciprocal_root(x, y) + (lack_of_reciprocal + lack_of_exponent);
  return fused(rough, lack, rough);
}

// Exponential and logarithm reduce their argument by a multiple of ln 2, which two doubles hold
// (the first with trailing zeros, so that its multiples are exact), and sum a Taylor series.
// Source: Cody and Waite (1980), Software Manual for the Elementary Functions, chapters 5 and 6.
inline constexpr double ln2_high = 0x1.62e42fefa0000p-1;
inline constexpr double ln2_low = 0x1.cf79abc9e3b3ap-40;

/// e^x within one unit in the last place, also where the result is subnormal; 0, infinity and NaN
/// as the standard library has them.
QM_HD inline double exponential(double x) {
  // Outside these bounds the result is 0 or infinity as well, and the powers of 2 below hold.
  double bounded = x < -750.0 ? -750.0 : x;
  bounded = bounded > 750.0 ? 750.0 : bounded;

  // x = k ln 2 + r. Next to 1.5 * 2^52 a double has no room for a fraction: the addition rounds to
  // the whole number k and leaves it in the low bits.
  const double shift = 0x1.8p52;
  const double shifted = fused(bounded, 1.4426950408889634, shift);
  const double k = shifted - shift;
  const double r = fused(-k, ln2_low, fused(-k, ln2_high, bounded));

  // The series of e^r for |r| <= ln 2 / 2; the first term left out is below 2^-57.
  double q = 1.0 / 6227020800.0;
  q = fused(q, r, 1.0 / 479001600.0);
  q = fused(q, r, 1.0 / 39916800.0);
  q = fused(q, r, 1.0 / 3628800.0);
  q = fused(q, r, 1.0 / 362880.0);
  q = fused(q, r, 1.0 / 40320.0);
  q = fused(q, r, 1.0 / 5040.0);
  q = fused(q, r, 1.0 / 720.0);
  q = fused(q, r, 1.0 / 120.0);
  q = fused(q, r, 1.0 / 24.0);
  q = fused(q, r, 1.0 / 6.0);
  q = fused(q, r, 1.0 / 2.0);
  const double linear = 1.0 + r;
  const double rounding = r - (linear - 1.0);
  const double series = linear + fused(q, r * r, rounding);

  // Times 2^k in two halves, so that a result near either end of the range is rounded once.
  const std::uint64_t whole = bits_of(shifted);
  const std::uint64_t half = whole >> 1;
  const double power_1 = number_of((half + 1023U) << 52);
  const double power_2 = number_of((whole - half + 1023U) << 52);
  return series * power_1 * power_2;
}

/// ln x within one unit in the last place; 0, negative numbers, infinity and NaN as the standard
/// library has them.
QM_HD inline double natural_logarithm(double x) {
  // x = 2^k m with m from sqrt(1/2) to sqrt(2); a subnormal number is scaled up first.
  const bool subnormal = x < 0x1p-1022;
  const double scaled = subnormal ? x * 0x1p54 : x;
  const std::uint64_t root_half = 0x3fe6a09e667f3bcdU;  // the bits of sqrt(1/2)
  const std::uint64_t offset = bits_of(scaled) - root_half + 0x3ff0000000000000U;
  const double m = number_of((offset & 0x000fffffffffffffU) + root_half);
  // Next to 2^52 the low bits of a double are a whole number: a conversion that vectorises.
  const double k_biased = number_of((offset >> 52) | 0x4330000000000000U) - 0x1p52;
  const double k = k_biased - (subnormal ? 1077.0 : 1023.0);

  // ln(1 + f) = f - f^2/2 + s (f^2/2 + R), with s = f / (2 + f) and s R the series of 2 artanh(s)
  // from its cubic term on; the first term left out is below 2^-60 of the sum.
  const double f = m - 1.0;
  const double s = f / (2.0 + f);
  const double s2 = s * s;
  double R = 2.0 / 21.0;
  R = fused(R, s2, 2.0 / 19.0);
  R = fused(R, s2, 2.0 / 17.0);
  R = fused(R, s2, 2.0 / 15.0);
  R = fused(R, s2, 2.0 / 13.0);
  R = fused(R, s2, 2.0 / 11.0);
  R = fused(R, s2, 2.0 / 9.0);
  R = fused(R, s2, 2.0 / 7.0);
  R = fused(R, s2, 2.0 / 5.0);
  R = fused(R, s2, 2.0 / 3.0);
  R = R * s2;
  const double half_f2 = 0.5 * f * f;
  const double small = fused(s, half_f2 + R, k * ln2_low);
  const double logarithm = fused(k, ln2_high, f - (half_f2 - small));

  const double at_end = x == 0.0 ? -INFINITY : (x > 0.0 ? x : NAN);
  return x > 0.0 && x < INFINITY ? logarithm : at_end;
}

/// The smaller of two numbers; a NaN operand gives way to the other (IEEE 754 minNum).
QM_HD inline double minimum_ignoring_nan(double a, double b) { return a < b || b != b ? a : b; }

// Order-dependent on purpose: with a NaN in `a` the result is NaN, which closes an edge (see
// hll_water).
QM_HD inline double smaller(double a, double b) { return b < a ? b : a; }
QM_HD inline double larger(double a, double b) { return a < b ? b : a; }

}  // namespace physics
