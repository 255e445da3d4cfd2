#include "output/CMonitorSection.hpp"

#include "globals/Globals.hpp"
#include "globals/WriterHandoff.hpp"
#include "utils/TextScanner.hpp"

CMonitorSection::CMonitorSection(const std::string& path,
                                 const std::vector<std::unique_ptr<GenericInterface>>& interfaces,
                                 double start_time)
    : next_time_(start_time) {
  utils::TextScanner file(path);
  const int count = file.read_count("number of sections", 1);
  interval_ = file.read_number("recording interval");
  const std::string name = file.read_word("result file name");
  sections_.resize(static_cast<std::size_t>(count));
  discharges_.resize(sections_.size(), 0.0);
  for (int s = 0; s < count; ++s) {
    file.begin_record("section", s, count);
    const int edges = file.read_count("number of edges", 1);
    for (int i = 0; i < edges; ++i) {
      const int edge = file.read_index("edge", static_cast<int>(interfaces.size()));
      const GenericInterface* const interface = interfaces[static_cast<std::size_t>(edge)].get();
      sections_[static_cast<std::size_t>(s)].push_back(interface);
      watched_cells_.push_back(interface->cell_left->id);
    }
  }
  output_.open(name);
}

void CMonitorSection::WriteMeasure() {
  next_time_ += interval_;
  Handoff::monitorSection.start([this] { WriteOutputThread(); });
}

void CMonitorSection::WriteOutputThread() {
  // Intended: the time of the step, whereas gauges write the scheduled time.
  const double time = Globals::t;
  for (std::size_t s = 0; s < sections_.size(); ++s) {
    double Q = 0.0;
    for (const GenericInterface* edge : sections_[s]) Q = edge->add_discharge(Q);
    discharges_[s] = Q;
  }
  Handoff::monitorSection.release();

  utils::TextBuffer line;
  line << time << '\t';
  for (const double Q : discharges_) line << Q << '\t';
  line << '\n';
  output_.write(line);
}
