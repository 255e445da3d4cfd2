// Time series of the flow at chosen points.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "model/ComputationalCell.hpp"
#include "utils/OutputFile.hpp"

/// Finds the cell that contains a point of the plane; null if there is none.
using CellLocator = std::function<const ComputationalCell*(double x, double y)>;

class Gauge {
 public:
  /// Reads the gauges file: count, result file name, interval (s), points x y z. Creates the result
  /// file in the output folder and writes its header.
  Gauge(const std::string& path, const CellLocator& cell_with_point, double start_time);

  /// Whether a recording is due at time t (s).
  bool CheckTime(double t) const { return t >= next_time_; }
  /// Schedules the next recording and starts the writer.
  void WriteMeasure();
  /// Time between recordings, s.
  double interval() const { return interval_; }
  /// Numbers of the cells that it records.
  const std::vector<int>& watched_cells() const { return watched_cells_; }
  /// Body of the writer.
  void WriteOutputThread();
  /// Closes the result file, after the last recording.
  void close() { output_.close(); }

 private:
  double interval_ = 0.0;  ///< s
  double next_time_;       ///< s
  std::vector<const ComputationalCell*> cells_;
  std::vector<int> watched_cells_;
  utils::LineFile output_;
  std::vector<HydraulicVariableSWE> buffer_;
};
