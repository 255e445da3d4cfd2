// What goes into a step, and what comes of it beside the states.
#pragma once

namespace engine {

/// Clock of a step: time and span of the run, and the step, s.
struct StepTimes {
  double t, t_start, t_end, dt;
};

/// What entered through a boundary edge in a step, m3/s of water and of bed.
struct BoundaryInflow {
  double water = 0.0, bed = 0.0;
};

/// The clock of a run: time and next step, s, and the steps computed so far.
struct RunClock {
  double t = 0.0, dt = 0.0;
  long steps = 0;
  double begun = 0.0;  ///< time of the state before the last step, s
};

/// How far steps may go that nobody sees, and how their clock goes on.
struct StepLimits {
  double t_start, t_end;      ///< of the run, s
  double t_stop;              ///< the first state from this time on is seen, s
  long last_step;             ///< so is that after this step
  double smallest_step;       ///< no step up to it is computed, s
  double cfl;                 ///< of the stable step
  bool advances_by_new_step;  ///< the time, not by the step just computed
};

}  // namespace engine
