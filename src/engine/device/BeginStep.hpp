// The kernel that begins a step: what boundaries impose, the rain, and what the step means to every
// soil. One block.
#pragma once

#include "engine/ForcingTables.hpp"
#include "engine/device/StepClock.hpp"
#include "engine/device/launch.hpp"
#include "physics/infiltration.hpp"
#include "physics/time_series.hpp"

namespace engine::device {

/// See engine::ForcingTables and engine::Forcing, whose steps these are.
struct ForcingView {
  const double *sample_times, *sample_values;
  const ForcingTables::Series* series;
  const ForcingTables::Imposing* imposing;
  int imposing_count;
  const double *rain_times, *intensities;
  const ForcingTables::Rain* rains;
  physics::RainClock* rain_clocks;
  const double* steady_rains;
  int rain_count, steady_count;
  bool hyetograms_have_cells;
  double* rain_depths;  ///< by number of rain, m
  physics::SoilStep* soil_steps;
  int soil_count;
};

/// The last interval that starts before a time, or the first one.
QM_HD inline int interval_before(const physics::SampledSeries& samples, double t) {
  int first = 0, end = samples.count - 1;  // the intervals in question
  while (end - first > 1) {
    const int middle = first + (end - first) / 2;
    (samples.times[middle] < t ? first : end) = middle;
  }
  return first;
}

/// The value of a series at a time.
QM_HD inline double value_of_series(const ForcingView& forcing, const ForcingTables::Series& series,
                                    bool at_sample_of_end, double t) {
  const physics::SampledSeries samples = {forcing.sample_times + series.samples.first,
                                          forcing.sample_values + series.samples.first,
                                          series.samples.count};
  const int near = interval_before(samples, t);
  const int interval = at_sample_of_end ? physics::interval_that_ends(samples, near, t)
                                        : physics::interval_that_starts(samples, near, t);
  return physics::value_of_series(samples, interval, t);
}

struct BeginStep {
  static constexpr int phases = 2, threads = 128, blocks_at_once = 1;

  TableView tables;
  ForcingView forcing;
  kernels::BoundaryEdge* boundaries;  ///< of the tables
  bool is_hll;
  StepClock* clock;

  static int scratch_words() { return threads; }
  QM_HD bool has_work(const BeginStep& kernel, int) { return !kernel.clock->halted; }

  /// 0: all but what the threads have to tell each other.
  template <class Scratch>
  QM_HD void run(Phase<0>, const BeginStep& kernel, const Thread& thread, Scratch scratch) {
    const ForcingView& forcing = kernel.forcing;
    for (int i = thread.number; i < forcing.imposing_count; i += thread.count) {
      impose(kernel, forcing.imposing[i]);
    }
    for (int s = thread.number; s < forcing.soil_count; s += thread.count) {
      const Soil& soil = kernel.tables.soils[s];
      const double dt = kernel.clock->run.dt;
      forcing.soil_steps[s] = soil.is_green_ampt ? physics::soil_step(soil.green_ampt, dt)
                                                 : physics::soil_step(soil.horton, dt);
    }
    scratch[thread.number] = rain_falls(kernel, thread) ? 1.0 : 0.0;
  }

  /// 1: whether it rains.
  template <class Scratch>
  QM_HD void run(Phase<1>, const BeginStep& kernel, const Thread& thread, Scratch scratch) {
    if (thread.number > 0) return;
    bool it_rains = false;
    for (int t = 0; t < thread.count; ++t) it_rains = it_rains || scratch[t] != 0.0;
    kernel.clock->it_rains = it_rains;
  }

 private:
  QM_HD void impose(const BeginStep& kernel, const ForcingTables::Imposing& of) {
    kernels::BoundaryEdge& boundary = kernel.boundaries[of.boundary];
    if (of.by_caller) {
      boundary.imposed = of.imposed;
    } else if (of.series >= 0) {
      const RunClock& run = kernel.clock->run;
      const ForcingTables::Series& series = kernel.forcing.series[of.series];
      const bool is_depth = series.is_level && !kernel.is_hll;
      const double value = value_of_series(kernel.forcing, series, is_depth,
                                           kernel.is_hll ? run.t + 0.5 * run.dt : run.t);
      boundary.imposed = is_depth ? value - kernel.tables.cells.bed[boundary.cell] : value;
    }
  }

  /// The share of a thread of the rains; whether one of them falls.
  QM_HD bool rain_falls(const BeginStep& kernel, const Thread& thread) {
    const ForcingView& forcing = kernel.forcing;
    const StepClock& clock = *kernel.clock;
    bool falls = false;
    for (int r = thread.number; r < forcing.rain_count; r += thread.count) {
      const ForcingTables::Rain& of = forcing.rains[r];
      const physics::Hyetogram rain = {forcing.rain_times + of.intervals.first,
                                       forcing.intensities + of.intervals.first, of.intervals.count,
                                       of.step};
      const physics::RainAddition addition = physics::rain_addition(
          rain, forcing.rain_clocks[r], clock.run.t, clock.till.t_start, clock.till.t_end);
      forcing.rain_clocks[r] = addition.clock;
      forcing.rain_depths[r + 1] = addition.depth;
      falls = falls || (addition.depth != 0.0 && forcing.hyetograms_have_cells);
    }
    for (int s = thread.number; s < forcing.steady_count; s += thread.count) {
      const double depth = physics::steady_rain(forcing.steady_rains[s], clock.run.dt);
      forcing.rain_depths[1 + forcing.rain_count + s] = depth;
      falls = falls || depth != 0.0;
    }
    return falls;
  }
};

}  // namespace engine::device
