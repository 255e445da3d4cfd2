// Snapshots of the whole flow field at listed times.
#pragma once

#include <cmath>
#include <string>
#include <vector>

#include "output/OutputPositions.hpp"
#include "output/Snapshot.hpp"
#include "utils/WriterThread.hpp"

class CPicture {
 public:
  /// The names of the files begin with the prefix. The mesh must outlive the snapshots.
  CPicture(const cases::SnapshotRequest& request, const std::string& prefix,
           const cases::Case& contents);

  /// Goes on where an earlier run had come to, whose outputs are done up to a time (s). Of another
  /// list of times than it had, what was due up to then is left out.
  void go_on(const SnapshotPosition& position, double done);
  SnapshotPosition position() const { return {times_, next_}; }
  const std::vector<double>& times() const { return times_; }

  /// Whether the next snapshot is due at time t, within a tolerance (s).
  bool CheckTime(double t, double tolerance) const { return t >= next_time() - tolerance; }
  /// Of the next snapshot; infinite behind the last one, s.
  double next_time() const { return next_ < times_.size() ? times_[next_] : HUGE_VAL; }
  /// Takes the present flow as the next snapshot and hands it to the writer.
  void WriteMeasure(const fields::Flow& flow);
  /// Waits until the last snapshot is written.
  void wait() { writer_.wait(); }
  /// Whether the run must end, which has been said.
  bool has_failed() const { return writer_.has_failed(); }

 private:
  std::vector<std::string> names_;
  std::size_t next_ = 0;
  std::vector<double> times_;  ///< s
  Snapshot snapshot_;
  utils::WriterThread writer_;  ///< uses all that stands above
};
