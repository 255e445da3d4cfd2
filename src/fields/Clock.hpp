// The clock of a run, and a step of it.
#pragma once

#include "case/Case.hpp"
#include "fields/Flow.hpp"

namespace fields {

struct Clock {
  static constexpr double smallest_step = 1e-08;  ///< that is acceptable, s

  double t = 0.0;   ///< simulated time, s
  double dt = 0.0;  ///< the next step, s
  long steps = 0;   ///< computed so far

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.t, self.dt, self.steps);
  }

  /// The step is computed; `stable_step` (s) is that of the new states.
  void move(double stable_step, const cases::Case& contents) {
    const double applied = dt;
    dt = contents.cfl * stable_step;
    ++steps;
    // Intended: with LHLLC the clock advances by the new step, not by the one just
    // applied; and no step is shortened to meet an output time or the end.
    t += cases::is_hll(contents.scheme) ? applied : dt;
  }

  /// Whether the next step would not bring the run on.
  bool has_collapsed() const { return dt <= smallest_step || t + dt == t; }
};

/// The clock of a case at its start.
inline Clock clock_at_start(const cases::Case& contents, Flow& flow) {
  return {contents.t_start, contents.cfl * flow.stable_step(contents.t_start), 0};
}

/// Computes the next step.
inline void advance(Flow& flow, const cases::Case& contents, Clock& clock) {
  clock.move(flow.advance({clock.t, contents.t_start, contents.t_end, clock.dt}), contents);
}

/// The same up to the first state from a time on (s), or that after the step of a number, where the
/// flow computes steps that nobody sees.
inline void advance(Flow& flow, const cases::Case& contents, Clock& clock, double t_stop,
                    long last_step) {
  engine::RunClock run = {clock.t, clock.dt, clock.steps};
  const bool went_alone = flow.advance_alone(
      run, {contents.t_start, contents.t_end, t_stop, last_step, Clock::smallest_step, contents.cfl,
            !cases::is_hll(contents.scheme)});
  if (!went_alone) return advance(flow, contents, clock);
  clock = {run.t, run.dt, run.steps};
}

}  // namespace fields
