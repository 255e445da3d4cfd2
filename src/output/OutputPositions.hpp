// How far the outputs of a run have come, for one that goes on from there.
#pragma once

#include <cmath>
#include <cstdint>
#include <optional>
#include <vector>

#include "utils/OutputFile.hpp"

/// Of an output that records at an interval, line by line.
struct RecordingPosition {
  utils::WrittenLines lines;  ///< none yet, or in a file that could not be created: of size 0
  double interval = 0.0;      ///< s
  double next_time = 0.0;     ///< of the next recording, s
  std::uint64_t columns = 0;  ///< checksum of what its columns show

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.lines, self.interval, self.next_time, self.columns);
  }
};

/// Of the snapshots.
struct SnapshotPosition {
  std::vector<double> times;  ///< s
  std::uint64_t next = 0;     ///< number of the next one

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.times, self.next);
  }
};

/// Of all outputs, between two steps. What a run does not write is not there.
struct OutputPositions {
  /// What was due up to this time is written, s; -infinity before the first.
  double done = -HUGE_VAL;
  std::optional<RecordingPosition> gauges, sections;
  std::optional<SnapshotPosition> snapshots;
  double envelope_interval = 0.0, next_envelope = 0.0;  ///< s
  std::optional<double> arrival_depth;                  ///< m; where maxima of the flow are kept

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.done, self.gauges, self.sections, self.snapshots, self.envelope_interval,
          self.next_envelope, self.arrival_depth);
  }
};

/// The first time behind `done` of those that follow `last` at an interval, s.
inline double next_time_behind(double done, double last, double interval) {
  if (!(interval > 0.0) || last > done) return last;
  return last + interval * (std::floor((done - last) / interval) + 1.0);
}

/// When an output is due next (s) that was due at `next` at an earlier interval: nothing is left
/// out or made up for where the interval is another one now.
inline double next_time_after_change(double done, double next, double earlier, double interval) {
  const bool is_before_the_first = !std::isfinite(done);
  if (interval == earlier || is_before_the_first) return next;
  return next_time_behind(done, next - earlier, interval);
}
