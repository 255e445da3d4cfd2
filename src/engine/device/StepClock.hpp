// The clock of steps that a device computes by itself, in its memory: kernels read when and how
// long a step is, and do nothing once it has halted.
#pragma once

#include "engine/device/EdgeFound.hpp"
#include "engine/step_values.hpp"

namespace engine::device {

struct StepClock {
  RunClock run;     ///< the next step
  StepLimits till;  ///< where it halts
  bool halted = false;
  bool it_rains = false;       ///< in the present step
  double smallest_step = 0.0;  ///< stable step after the last step, before the Courant factor, s
  EdgeFound not_hyperbolic;    ///< in the last step
};

/// The values of the present step, whose constants are those.
QM_HD inline kernels::StepValues present_values(const StepClock& clock,
                                                kernels::StepValues values) {
  values.dt = clock.run.dt;
  if (!clock.it_rains) values.rain_depths = nullptr;
  return values;
}

/// The values that maxima are noted with, at a time (s).
QM_HD inline kernels::MaximaValues at_time(kernels::MaximaValues values, double t) {
  values.t = t;
  return values;
}

}  // namespace engine::device
