// What the steps of one of several ranks cost it, and which of its patches make the work.
#pragma once

#include <cstddef>
#include <vector>

namespace engine {

/// Time that the calling thread has had a core for, s: without that in which it waited for others.
double seconds_of_thread();

/// Steps are measured in windows.
class WorkMeter {
 public:
  explicit WorkMeter(std::size_t patches);

  void begin_step() { begun_ = seconds_of_thread(); }
  /// The part of a step is done that waits for no other rank; it computed these patches.
  void end_step(const std::vector<int>& patches);

  /// The steps since the last call, or since the start, become the last window; the time of the
  /// thread that called begin_step() and end_step() in it, s.
  double end_window();
  /// What a cell of a patch cost in the last window, s; `cells`: of every patch. A patch that took
  /// no part in a step costs little, but it is not for nothing.
  std::vector<double> seconds_per_cell(const std::vector<int>& cells) const;

 private:
  struct Window {
    double seconds = 0.0;
    long steps = 0;
    std::vector<long> steps_of_patches;  ///< in which they took part
  };

  double begun_ = 0.0;  ///< the present step, s
  Window present_, last_;
};

}  // namespace engine
