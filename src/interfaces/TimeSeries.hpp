// A sampled boundary value: hydrograph or limnigraph.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "case/Case.hpp"

class TimeSeries {
 public:
  /// Reads the number of samples and the samples (time in s, value). At least two samples with
  /// strictly increasing times, or the run ends with a message.
  explicit TimeSeries(const std::string& file);
  explicit TimeSeries(const cases::Series& series);

  /// A series that has been read: from_file() answers it for its file as long as it lives.
  static std::shared_ptr<const TimeSeries> share(const cases::Series& series);
  /// The series of a file; edges that name the same file share it.
  static std::shared_ptr<const TimeSeries> from_file(const std::string& file);

  /// The last interval of the series.
  int last_interval() const { return static_cast<int>(times.size()) - 2; }
  double interval_end(int i) const { return times[static_cast<std::size_t>(i) + 1]; }
  /// Value at time t, interpolated on interval i; the last value past the last sample.
  double value_at(double t, int i) const;

  std::vector<double> times;  ///< s
  std::vector<double> values;
};
