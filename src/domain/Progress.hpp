// How far a run has come, for someone who watches: one line, rewritten in place on a terminal, and
// a new line now and then in a file.
#pragma once

#include <deque>
#include <functional>
#include <ostream>

#include "fields/Flow.hpp"

class Progress {
 public:
  using WallClock = std::function<double()>;  ///< s, from any origin

  Progress(std::ostream& out, bool is_terminal, WallClock wall_clock);
  /// On standard error, with the clock of the machine.
  static Progress on_standard_error();

  /// The steps of a run from t_start to t_end (s) begin.
  void begin(double t_start, double t_end);
  /// Whether a line is due: every 0.1 s on a terminal, every 30 s elsewhere; less often where a
  /// look at the flow takes so long that this would slow the run down by more than about 1 %.
  bool is_due();
  /// Shows a line for the time t (s), the step dt and the flow.
  void show(double t, double dt, const fields::FlowSurvey& flow);
  /// Leaves the line, so that what follows begins a new one.
  void end();

 private:
  struct Moment {
    double wall, t;  ///< s
  };

  double interval() const;
  double pace() const;

  std::ostream& out_;
  bool is_terminal_;
  WallClock wall_clock_;
  double start_;                        ///< of the program, s
  double next_ = 0.0;                   ///< when the next line is due, s
  double asked_ = 0.0;                  ///< when the last line was found to be due, s
  double t_start_ = 0.0, t_end_ = 0.0;  ///< s
  std::deque<Moment> recent_;
  bool has_line_ = false;
};
