// The powers, exponential, logarithm and fused multiply-add of the flow formulas, which call them
// here alone. One text serves every path (host, device, vector), so that all of them round alike.
#pragma once

#include <cmath>

#ifdef __CUDACC__
#define QM_HD __host__ __device__
#else
#define QM_HD
#endif

namespace physics {

/// a * b + c with one rounding.
QM_HD inline double fused(double a, double b, double c) { return std::fma(a, b, c); }

/// x^(2/3).
QM_HD inline double power_2_3(double x) { return std::pow(x, 0.6666666666666666); }
/// x^(4/3).
QM_HD inline double power_4_3(double x) { return std::pow(x, 4.0 / 3.0); }
/// x^(7/3).
QM_HD inline double power_7_3(double x) { return std::pow(x, 7.0 / 3.0); }
/// x^(10/3).
QM_HD inline double power_10_3(double x) { return std::pow(x, 10.0 / 3.0); }
/// x^1.5.
QM_HD inline double power_3_2(double x) { return std::pow(x, 1.5); }

QM_HD inline double exponential(double x) { return std::exp(x); }
QM_HD inline double natural_logarithm(double x) { return std::log(x); }

/// The smaller of two numbers; a NaN operand gives way to the other (IEEE 754 minNum).
QM_HD inline double minimum_ignoring_nan(double a, double b) { return std::fmin(a, b); }

// Order-dependent on purpose: with a NaN in `a` the result is NaN, which stops a flux (see hll).
QM_HD inline double smaller(double a, double b) { return b < a ? b : a; }
QM_HD inline double larger(double a, double b) { return a < b ? b : a; }

}  // namespace physics
