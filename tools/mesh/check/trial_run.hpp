// A measurement: the simulator itself, in a process of its own, for about a second.
#pragma once

#include <optional>
#include <string>

namespace tools::check {

struct TrialRun {
  double setup_seconds = 0.0;     ///< from the start to the first step
  long steps = 0;                 ///< that were taken
  double simulated = 0.0;         ///< s of the run
  long timed_steps = 0;           ///< all but the first one, which also wakes threads and caches
  double timed_seconds = 0.0;     ///< of wall time
  double memory_bytes = 0.0;      ///< largest resident memory
  bool is_complete = false;       ///< whether the run came to its end
  double share_below_zero = 0.0;  ///< of the water at its end, that cells lack to zero
  int deepest_cell = -1;          ///< of those below zero
  std::string refusal;            ///< what the simulator said when it gave up; empty if it ran

  bool is_timed() const { return timed_steps > 0 && simulated > 0.0; }
  double seconds_per_step() const { return timed_seconds / static_cast<double>(timed_steps); }
  /// Steps and wall time (s) of a whole run of `duration` seconds, if it goes on as it began.
  double expected_steps(double duration) const;
  double expected_seconds(double duration) const;
};

/// Sets the run up as the simulator does and lets it go for about a second, without snapshots,
/// gauges and sections, and with a temporary folder for its envelope: no file of the case changes.
/// Empty if the data file is no JSON object. Call it before the case is read, so that the memory is
/// the simulator's alone.
std::optional<TrialRun> trial_run(const std::string& data_file);

}  // namespace tools::check
