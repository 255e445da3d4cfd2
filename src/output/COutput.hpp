// Writes one line of gauge results.
#pragma once

#include <limits>
#include <vector>

#include "utils/OutputFile.hpp"

/// What a gauge shows; a gauge in no cell shows no number.
struct GaugeState {
  double h = std::numeric_limits<double>::quiet_NaN();   ///< m
  double qx = std::numeric_limits<double>::quiet_NaN();  ///< m2/s
  double qy = std::numeric_limits<double>::quiet_NaN();  ///< m2/s
};

class COutput {
 public:
  /// Appends the line of the given time (s). False if the run must end, which has been said: a file
  /// that is not open ends it.
  bool Write(utils::LineFile& out, double time, const std::vector<GaugeState>& states) const;
};
