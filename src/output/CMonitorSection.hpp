// Time series of the discharge through lines of edges.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "interfaces/GenericInterface.hpp"
#include "utils/OutputFile.hpp"

class CMonitorSection {
 public:
  /// Reads the sections file: count, interval (s), result file name, then per section its number of
  /// edges and their indices. The result file stands in the working directory.
  CMonitorSection(const std::string& path,
                  const std::vector<std::unique_ptr<GenericInterface>>& interfaces,
                  double start_time);

  /// Whether a recording is due at time t (s).
  bool CheckTime(double t) const { return t >= next_time_; }
  /// Schedules the next recording and starts the writer.
  void WriteMeasure();
  /// Time between recordings, s.
  double interval() const { return interval_; }
  /// Numbers of the cells that it looks at.
  const std::vector<int>& watched_cells() const { return watched_cells_; }
  /// Body of the writer.
  void WriteOutputThread();
  /// Closes the result file, after the last recording.
  void close() { output_.close(); }

 private:
  std::vector<std::vector<const GenericInterface*>> sections_;
  double interval_ = 0.0;  ///< s
  double next_time_;       ///< s
  std::vector<int> watched_cells_;
  utils::LineFile output_;
  std::vector<double> discharges_;  ///< m3/s
};
