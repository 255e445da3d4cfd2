// Time series of the flow at chosen points.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "case/Case.hpp"
#include "fields/Flow.hpp"
#include "output/COutput.hpp"
#include "output/OutputPositions.hpp"
#include "utils/WriterThread.hpp"

class Gauge {
 public:
  /// The name of the result file begins with the prefix. Its file comes by begin() or go_on().
  Gauge(const cases::GaugeRequest& request, const std::string& prefix, const fields::Ground& ground,
        double start_time);

  /// Creates the result file, writes its header, and says so in the log.
  void begin(std::ostream& log);
  /// The same in the middle of a run, whose outputs are done up to a time (s).
  void begin_behind(double done, std::ostream& log);
  /// Goes on in the result file of an earlier run, whose outputs are done up to a time (s).
  void go_on(const RecordingPosition& position, double done);
  /// While nothing is being written.
  RecordingPosition position() const;

  /// Whether a recording is due at time t (s).
  bool CheckTime(double t) const { return t >= next_time_; }
  double next_time() const { return next_time_; }
  /// Records the present flow: schedules the next recording and hands this one to the writer.
  void WriteMeasure(const fields::Flow& flow);
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
  bool write_header();
  void gather(const fields::Flow& flow, fields::Field field, double GaugeState::*value);

  std::string name_;                  ///< of the result file, with the prefix
  std::string result_;                ///< without it
  double interval_;                   ///< s
  double next_time_;                  ///< s
  std::uint64_t columns_;             ///< checksum of the points
  std::vector<cases::Number> cells_;  ///< of the points that lie in one
  std::vector<std::size_t> points_;   ///< the points of these cells
  std::vector<double> values_;        ///< of these cells
  double time_ = 0.0;                 ///< of the recording, s
  std::vector<GaugeState> states_;    ///< of all points
  COutput lines_;
  utils::LineFile output_;
  utils::WriterThread writer_;  ///< uses all that stands above
};
