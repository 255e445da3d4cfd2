// Time series of the discharge through lines of edges.
#pragma once

#include <string>
#include <vector>

#include "case/Case.hpp"
#include "fields/Flow.hpp"
#include "output/OutputPositions.hpp"
#include "utils/OutputFile.hpp"
#include "utils/WriterThread.hpp"

class CMonitorSection {
 public:
  /// Its result file comes by begin() or go_on().
  CMonitorSection(const cases::SectionRequest& request, const fields::Ground& ground,
                  double start_time);

  /// Creates the result file.
  void begin() { output_.open(name_); }
  /// The same in the middle of a run, whose outputs are done up to a time (s).
  void begin_behind(double done);
  /// Goes on in the result file of an earlier run, whose outputs are done up to a time (s).
  void go_on(const RecordingPosition& position, double done);
  /// While nothing is being written.
  RecordingPosition position() const;

  /// Whether a recording is due at time t (s).
  bool CheckTime(double t) const { return t >= next_time_; }
  double next_time() const { return next_time_; }
  /// Records the flow at time t (s): schedules the next recording and hands this one to the writer.
  void WriteMeasure(const fields::Flow& flow, double t);
  /// Time between recordings, s.
  double interval() const { return interval_; }
  /// Body of the writer.
  bool WriteOutputThread();
  /// Waits until the last recording is written.
  void wait() { writer_.wait(); }
  /// Closes the result file, after the last recording.
  void close();
  /// Whether the run must end, which has been said.
  bool has_failed() const { return writer_.has_failed(); }

 private:
  std::string name_;       ///< of the result file
  double interval_;        ///< s
  double next_time_;       ///< s
  std::uint64_t columns_;  ///< checksum of the sections
  // Of the edges of the first section, of the second, ...
  std::vector<std::size_t> section_ends_;  ///< where the edges of each section end
  std::vector<physics::Edge> edges_;
  std::vector<cases::Number> cells_;  ///< at their left
  std::vector<double> qx_, qy_;       ///< in these cells, m2/s
  double time_ = 0.0;                 ///< of the recording, s
  utils::LineFile output_;
  utils::WriterThread writer_;  ///< uses all that stands above
};
