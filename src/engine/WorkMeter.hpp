// What the steps of one of several ranks cost it.
#pragma once

namespace engine {

/// Time that the calling thread has had a core for, s: without that in which it waited for others.
double seconds_of_thread();

/// What a rank has done for some steps.
struct Work {
  double seconds = 0.0;
  double cells = 0.0;  ///< that it computed, once for every step
};

/// Steps are measured in windows, one in a few: to ask for the time takes some.
class WorkMeter {
 public:
  static constexpr int measured_step = 4;  ///< one of so many

  /// Around every part of a step that computes cells: what is spent on messages, and what a rank
  /// without water has to do, tells nothing of them.
  void begin_work();
  void end_work();
  /// The step computed so many cells.
  void end_step(int cells) {
    ++steps_;
    present_.cells += cells;
  }

  /// What was done since the last call, or since the start: the time is that of the thread that
  /// called the others, as the measured steps tell.
  Work end_window();

 private:
  bool is_measured() const { return steps_ % measured_step == 0; }

  double begun_ = 0.0;  ///< the present part of a step, s
  Work present_;        ///< the time is that of the measured steps
  long steps_ = 0;
};

}  // namespace engine
