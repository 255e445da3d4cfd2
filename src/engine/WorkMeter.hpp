// What the steps of one of several ranks cost it, and which of its patches make the work.
#pragma once

#include <cstddef>
#include <vector>

namespace engine {

/// Time that the calling thread has had a core for, s: without that in which it waited for others.
double seconds_of_thread();

/// Steps are measured in windows, one in a few: to ask for the time takes some.
class WorkMeter {
 public:
  static constexpr int measured_step = 4;  ///< one of so many

  explicit WorkMeter(std::size_t patches);

  /// Around every part of a step that computes cells: what is spent on messages, and what a rank
  /// without water has to do, tells nothing of them.
  void begin_work();
  void end_work();
  /// The step computed these patches.
  void end_step(const std::vector<int>& patches);

  /// The steps since the last call, or since the start, become the last window; the time of the
  /// thread that called the others, in it, as the measured steps tell, s.
  double end_window();
  /// What a cell of a patch cost in the last window, s; `cells`: of every patch. A patch that took
  /// no part in a step costs little, but it is not for nothing.
  std::vector<double> seconds_per_cell(const std::vector<int>& cells) const;

 private:
  struct Window {
    double seconds = 0.0;  ///< of the measured steps
    long steps = 0;
    std::vector<long> steps_of_patches;  ///< in which they took part
  };

  bool is_measured() const { return present_.steps % measured_step == 0; }

  double begun_ = 0.0;  ///< the present part of a step, s
  Window present_, last_;
};

}  // namespace engine
