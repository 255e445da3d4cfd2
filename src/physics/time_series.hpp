// Value of a sampled boundary series at a time between two samples.
#pragma once

#include "physics/arithmetic.hpp"

namespace physics {

/// Linear interpolation on the sample interval [t0, t1] with values v0, v1; before t0 it
/// extrapolates the interval.
QM_HD inline double interpolate_linear(double t, double t0, double t1, double v0, double v1) {
  return fused((t - t0) / (t1 - t0), v1 - v0, v0);
}

}  // namespace physics
