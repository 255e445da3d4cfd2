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

}  // namespace engine
