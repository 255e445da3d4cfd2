// A sampled boundary value: hydrograph or limnigraph.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "case/Case.hpp"
#include "physics/time_series.hpp"

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

  /// Value at time t, interpolated on interval i; the last value past the last sample.
  double value_at(double t, int i) const;

  /// The series as the formulas take it; it points into this one.
  physics::SampledSeries samples() const {
    return {times.data(), values.data(), static_cast<int>(times.size())};
  }

  std::vector<double> times;  ///< s
  std::vector<double> values;
};
