// Reads the file of a boundary value sampled in time.
#pragma once

#include <string>

#include "case/Case.hpp"

namespace cases {

/// The number of samples and the samples (time in s, value): at least two with strictly increasing
/// times. `Source` gives the values of the file, as utils::TextScanner does.
template <class Source>
void read_samples(Source& file, Series& series) {
  const int count = file.read_count("number of samples", 2);
  if (count < 2) file.refuse("number of samples", "at least 2");
  series.times.reserve(at(count));
  series.values.reserve(at(count));
  for (int i = 0; i < count && file.goes_on(); ++i) {
    file.begin_record("sample", i, count);
    const double time = file.read_number("time");
    if (i > 0 && !(time > series.times.back())) {
      file.refuse("time", "a time later than that of the sample before");
    }
    series.times.push_back(time);
    series.values.push_back(file.read_number("value"));
  }
}

/// Ends the run at what is malformed.
Series read_series(const std::string& file);

}  // namespace cases
