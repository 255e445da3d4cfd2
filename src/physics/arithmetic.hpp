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

/// Cube root of a positive normal number (or 0), x^(1/3) = c + dc, and its natural logarithm to
/// about 0.06.
struct CubeRoot {
  double c;
  double dc;
  double ln;
};

/// A better reciprocal cube root y of x: one step of fourth order.
QM_HD inline double refined_reciprocal_root(double x, double y) {
  const double e = fused(-x * y * y, y, 1.0);
  return fused(y, e * fused(e, fused(e, 14.0 / 81.0, 2.0 / 9.0), 1.0 / 3.0), y);
}

/// x^(-1/3) of a positive normal number within 1 unit in the last place: a first guess from the
/// exponent, and two steps of fourth order. No branch and no table, so that it vectorises.
QM_HD inline double reciprocal_cube_root(double x) {
  const std::uint64_t bits = std::bit_cast<std::uint64_t>(x);
  const std::uint64_t third = ((bits >> 32) * 0x55555556U) >> 32;
  const double guess = std::bit_cast<double>((0x553ef0ffU - third) << 32);
  return refined_reciprocal_root(x, refined_reciprocal_root(x, guess));
}

/// Natural logarithm of a positive normal number to about 0.06: the high half of a double is its
/// exponent and, nearly linearly, the logarithm of its mantissa.
QM_HD inline double rough_logarithm(double x) {
  const auto high = static_cast<std::int32_t>(std::bit_cast<std::uint64_t>(x) >> 32);
  return (static_cast<double>(high) * 0x1p-20 - 1022.95) * 0.6931471805599453;
}

/// The root from its reciprocal, and its rounding error from the residual.
QM_HD inline CubeRoot cube_root(double x) {
  const double y = reciprocal_cube_root(x);
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
// Within one unit in the last place of the true power from e^-20 to e^20.

/// x^(2/3).
QM_HD inline double power_2_3(double x) {
  const CubeRoot root = cube_root(x);
  return times_cube_root(root.c, root.dc, root, -3.7025504190379976e-17);
}
/// x^(4/3).
QM_HD inline double power_4_3(double x) {
  return times_cube_root(x, 0.0, cube_root(x), -7.405100838075995e-17);
}
/// x^(-4/3) from x and 1/x, within two units in the last place.
QM_HD inline double power_minus_4_3(double x, double reciprocal) {
  const double value = reciprocal * reciprocal_cube_root(x);
  return fused(value * rough_logarithm(x), 7.405100838075995e-17, value);
}
/// x^(7/3).
QM_HD inline double power_7_3(double x) {
  const double x2 = x * x;
  return times_cube_root(x2, fused(x, x, -x2), cube_root(x), 1.4810201676151990e-16);
}
/// x^(10/3).
QM_HD inline double power_10_3(double x) {
  const double x2 = x * x;
  const double x3 = x2 * x;
  const double dx3 = fused(x2, x, -x3) + fused(x, x, -x2) * x;
  return times_cube_root(x3, dx3, cube_root(x), 1.4810201676151990e-16);
}
/// x^1.5.
QM_HD inline double power_3_2(double x) { return x * std::sqrt(x); }

QM_HD inline double exponential(double x) { return std::exp(x); }
QM_HD inline double natural_logarithm(double x) { return std::log(x); }

/// The smaller of two numbers; a NaN operand gives way to the other (IEEE 754 minNum).
QM_HD inline double minimum_ignoring_nan(double a, double b) { return std::fmin(a, b); }

// Order-dependent on purpose: with a NaN in `a` the result is NaN, which closes an edge (see
// hll_water).
QM_HD inline double smaller(double a, double b) { return b < a ? b : a; }
QM_HD inline double larger(double a, double b) { return a < b ? b : a; }

}  // namespace physics
