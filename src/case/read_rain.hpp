// Reads the hyetograms of a case. `Source` gives the values of a file, as utils::TextScanner does.
#pragma once

#include <string>
#include <vector>

#include "case/Case.hpp"
#include "case/Diagnostics.hpp"

namespace cases {

template <class Source>
void read_intervals(Source& file, int count, std::vector<double>& times,
                    std::vector<double>& intensities) {
  times.resize(at(count));
  intensities.resize(at(count));
  for (int i = 0; i < count && file.goes_on(); ++i) {
    times[at(i)] = file.read_number("start time of an interval");
    intensities[at(i)] = file.read_number("intensity");
  }
}

/// `look_at(hyetogram)` sees each as soon as it is read.
template <class Source, class LookAt>
std::vector<Hyetogram> read_hyetograms(Source& file, LookAt look_at) {
  const int count = file.read_count("number of hyetograms", 3);
  std::vector<Hyetogram> rain;
  for (int i = 0; i < count && file.goes_on(); ++i) {
    file.begin_record("hyetogram", i, count);
    Hyetogram& hyetogram = rain.emplace_back();
    hyetogram.id = file.read_integer("ID");
    const int intervals = file.read_count("number of intervals", 2);
    hyetogram.step = file.read_integer("step");
    read_intervals(file, intervals, hyetogram.times, hyetogram.intensities);
    look_at(hyetogram);
  }
  return rain;
}

/// Ends the run at what is malformed, and warns of what hardly was meant.
std::vector<Hyetogram> read_rain(const std::string& name, Diagnostics& diagnostics);

}  // namespace cases
