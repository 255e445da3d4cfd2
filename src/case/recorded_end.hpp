// What becomes of the end of a run in results that are recorded at t0, t0 + interval, ...: every
// recording comes with the first step that begins at its time or later, and no step begins at the
// end, so that a time just before the end is the best that a recording can have.
#pragma once

#include <optional>
#include <string>

namespace cases {

struct RunTime {
  double start, end;  ///< s
  double step = 0.0;  ///< length of a step as far as it is known: a recording comes that late, s

  double duration() const { return end - start; }
};

/// The last time that is recorded for sure, s.
double last_recording(const RunTime& run, double interval);

/// `longest` (s) if the last recording comes shortly before the end with it, or else the longest
/// interval below with which it does, to four digits.
double interval_up_to_the_end(const RunTime& run, double longest);

/// What is lost if that is more than a hundredth of the run, without a full stop; `interval` names
/// the interval, as in "gauges.txt: the recording interval".
std::optional<std::string> on_recorded_end(const std::string& interval, double seconds,
                                           const RunTime& run);

}  // namespace cases
