// Value of a sampled boundary series at a time.
#pragma once

#include "physics/arithmetic.hpp"

namespace physics {

/// Linear interpolation on the sample interval [t0, t1] with values v0, v1; before t0 it
/// extrapolates the interval.
QM_HD inline double interpolate_linear(double t, double t0, double t1, double v0, double v1) {
  return fused((t - t0) / (t1 - t0), v1 - v0, v0);
}

/// A series: times (s, increasing) and values of its samples, two at least.
struct SampledSeries {
  const double *times, *values;
  int count;
};

/// The interval in force at time t, from the one that was in force before: at the time of a sample,
/// the interval that starts there.
QM_HD inline int interval_that_starts(const SampledSeries& series, int interval, double t) {
  while (interval < series.count - 2 && t >= series.times[interval + 1]) ++interval;
  return interval;
}
/// The same; at the time of a sample, the interval that ends there.
QM_HD inline int interval_that_ends(const SampledSeries& series, int interval, double t) {
  while (interval < series.count - 2 && t > series.times[interval + 1]) ++interval;
  return interval;
}

/// Value at time t, interpolated on an interval; the last value past the last sample.
QM_HD inline double value_of_series(const SampledSeries& series, int interval, double t) {
  const int last = series.count - 1;
  if (t >= series.times[last]) return series.values[last];
  return interpolate_linear(t, series.times[interval], series.times[interval + 1],
                            series.values[interval], series.values[interval + 1]);
}

}  // namespace physics
