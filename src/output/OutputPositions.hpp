// How far the outputs of a run have come, for one that goes on from there.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
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

/// Snapshots that stand in a file one behind the other.
struct WrittenRecords {
  std::uint64_t count = 0;
  std::uint64_t checksum = 0;  ///< of the last one

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.count, self.checksum);
  }
};

/// Of the file of results.
struct ResultsPosition {
  std::string name;
  SnapshotPosition snapshots;
  std::uint64_t records = 0;  ///< snapshots in the file, once the writer has written what it has
  WrittenRecords written;     ///< up to then

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.name, self.snapshots, self.records, self.written);
  }
};

/// Of all outputs, between two steps. What a run does not write is not there.
struct OutputPositions {
  /// What was due up to this time is written, s; -infinity before the first.
  double done = -HUGE_VAL;
  std::optional<RecordingPosition> gauges, sections;
  std::optional<SnapshotPosition> snapshots;
  std::optional<ResultsPosition> results;
  double envelope_interval = 0.0, next_envelope = 0.0;  ///< s
  std::optional<double> arrival_depth;                  ///< m; where maxima of the flow are kept

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.done, self.gauges, self.sections, self.snapshots, self.results,
          self.envelope_interval, self.next_envelope, self.arrival_depth);
  }
};

/// The number of the next snapshot of those at `times` (s), where an earlier run had come to a
/// position, and its outputs are done up to a time (s). Of another list of times than it had, what
/// was due up to then is left out.
inline std::size_t next_snapshot(const std::vector<double>& times, const SnapshotPosition& before,
                                 double done) {
  const auto written = std::min<std::size_t>(before.next, before.times.size());
  const bool begins_alike =
      before.next <= times.size() &&
      std::equal(before.times.begin(), before.times.begin() + static_cast<std::ptrdiff_t>(written),
                 times.begin());
  std::size_t next = begins_alike ? written : 0;
  if (times == before.times) return next;
  while (next < times.size() && times[next] <= done) ++next;
  return next;
}

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
