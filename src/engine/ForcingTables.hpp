// What time brings to the steps of a run, as plain tables for who computes them without Forcing.
#pragma once

#include <vector>

#include "physics/rain.hpp"

namespace engine {

struct ForcingTables {
  /// Entries [first, first + count) of columns of samples.
  struct Samples {
    int first, count;
  };
  struct Series {
    Samples samples;
    bool is_level;
  };
  struct Imposing {
    int boundary;    ///< place in Tables::boundaries
    int series;      ///< -1: none
    bool by_caller;  ///< it imposes what a caller set, whatever the case says
    double imposed;  ///< by the caller, see kernels::BoundaryEdge
    double value;    ///< of the caller or else of the case, m2/s or m; not of a series
  };
  struct Rain {
    Samples intervals;
    double step;  ///< see physics::Hyetogram, s
  };

  std::vector<double> sample_times, sample_values;  ///< s; m2/s or m
  std::vector<Series> series;
  std::vector<Imposing> imposing;
  std::vector<double> rain_times, intensities;  ///< s, m/s
  std::vector<Rain> rains;                      ///< hyetograms, numbered from 1
  std::vector<physics::RainClock> rain_clocks;
  bool hyetograms_have_cells = false;
  std::vector<double> steady_rains;  ///< numbered behind the hyetograms, m/s
};

}  // namespace engine
