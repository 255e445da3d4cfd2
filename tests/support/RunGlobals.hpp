// Sets the process-wide quantities that cells, interfaces and source terms read, and puts them back
// at the end of a test.
#pragma once

#include "globals/Globals.hpp"

namespace support {

class RunGlobals {
 public:
  /// Clock at 0 s; depths in m, times in s.
  explicit RunGlobals(double zero_depth, double dt = 1.0, double t_end = 1e9) {
    Constants::ZERO_DEPTH = zero_depth;
    Globals::t = 0.0;
    Globals::dt = dt;
    Globals_Params::tStart = 0.0;
    Globals_Params::tEnd = t_end;
  }
  ~RunGlobals() {
    Constants::ZERO_DEPTH = zero_depth_;
    Globals::t = t_;
    Globals::dt = dt_;
    Globals_Params::tStart = t_start_;
    Globals_Params::tEnd = t_end_;
  }
  RunGlobals(const RunGlobals&) = delete;
  RunGlobals& operator=(const RunGlobals&) = delete;

 private:
  double zero_depth_ = Constants::ZERO_DEPTH;
  double t_ = Globals::t;
  double dt_ = Globals::dt;
  double t_start_ = Globals_Params::tStart;
  double t_end_ = Globals_Params::tEnd;
};

}  // namespace support
