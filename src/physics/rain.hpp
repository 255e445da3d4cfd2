// Rain from a hyetogram (a step function of intensity), added to a cell in bursts.
#pragma once

#include "physics/arithmetic.hpp"

namespace physics {

/// A hyetogram: start times (s) and intensities (m/s) of its intervals, and the burst length (s).
struct Hyetogram {
  const double* times;
  const double* intensities;
  int count;
  double step;
};

/// A cell's place in its hyetogram: last addition (s), interval in force (-1: none yet), and the
/// length of the next burst (s).
struct RainClock {
  double last_update_time;
  int hyetogram_index;
  double rain_dt;

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.last_update_time, self.hyetogram_index, self.rain_dt);
  }
};

/// The clock of a run that starts at t_start (s).
QM_HD inline RainClock clock_before_rain(double t_start) { return {t_start, -1, 1e20}; }

/// Depth (m) to add now, and the clock after it.
struct RainAddition {
  double depth;
  RainClock clock;
};

/// Last interval that has started at t; the first one before every start.
QM_HD inline int hyetogram_index_at(const Hyetogram& rain, double t) {
  for (int i = rain.count - 1; i > 0; --i) {
    if (t >= rain.times[i]) return i;
  }
  return 0;
}

/// Rain due at time t in a run from t_start to t_end.
QM_HD inline RainAddition rain_addition(const Hyetogram& rain, RainClock clock, double t,
                                        double t_start, double t_end) {
  const double burst = clock.rain_dt < rain.step ? clock.rain_dt : rain.step;
  const bool due = t - clock.last_update_time > burst || t >= t_end - burst;
  if (!due || rain.count == 0) return {0.0, clock};

  if (clock.hyetogram_index == -1) clock.hyetogram_index = hyetogram_index_at(rain, t_start);
  clock.rain_dt = rain.step;

  const int k = hyetogram_index_at(rain, t);
  const double elapsed = t - clock.last_update_time;
  double depth = rain.intensities[k] * elapsed;
  if (k != clock.hyetogram_index) {
    // Intended: an addition over several breakpoints knows only the old and the new interval; those
    // between are charged at the old intensity.
    const double a = rain.times[k] - clock.last_update_time;
    depth = rain.intensities[clock.hyetogram_index] * a + rain.intensities[k] * (elapsed - a);
    clock.hyetogram_index = k;
  }
  clock.last_update_time = t;

  // Shorten the burst before a breakpoint, so that the next one ends just after it.
  if (k + 1 < rain.count && t + rain.step > rain.times[k + 1]) {
    clock.rain_dt = rain.times[k + 1] - t;
  }
  return {depth, clock};
}

/// Depth (m) that a steady rain (m/s) brings in a step (s).
QM_HD inline double steady_rain(double intensity, double dt) { return intensity * dt; }

}  // namespace physics
