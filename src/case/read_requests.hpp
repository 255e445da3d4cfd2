// Reads what a run is to write: gauges, sections, times of snapshots. `Source` gives the values of
// a file, as utils::TextScanner does.
#pragma once

#include "case/Case.hpp"

namespace cases {

template <class Source>
GaugeRequest read_gauges(Source& file) {
  const int count = file.read_count("number of gauges", 3);
  GaugeRequest gauges{file.read_word("result file name"), 0.0, {}};
  gauges.interval = file.read_number("recording interval");
  gauges.points.reserve(at(count));
  for (int i = 0; i < count && file.goes_on(); ++i) {
    file.begin_record("gauge", i, count);
    const double x = file.read_number("x");
    const double y = file.read_number("y");
    file.read_number("z");
    gauges.points.push_back({x, y});
  }
  return gauges;
}

template <class Source>
SectionRequest read_sections(Source& file, Number n_edges) {
  const int count = file.read_count("number of sections", 1);
  SectionRequest request{"", file.read_number("recording interval"), {}};
  request.result = file.read_word("result file name");
  request.sections.resize(at(count));
  for (int i = 0; i < count && file.goes_on(); ++i) {
    file.begin_record("section", i, count);
    std::vector<Number>& section = request.sections[at(i)];
    section.resize(at(file.read_count("number of edges", 1)));
    for (Number& edge : section) edge = file.read_index("edge", n_edges);
  }
  return request;
}

template <class Source>
SnapshotRequest read_snapshots(Source& file) {
  const int count = file.read_count("number of snapshots", 1);
  SnapshotRequest request;
  request.times.reserve(at(count));
  for (int i = 0; i < count && file.goes_on(); ++i) {
    file.begin_record("snapshot", i, count);
    request.times.push_back(file.read_number("time"));
  }
  return request;
}

}  // namespace cases
