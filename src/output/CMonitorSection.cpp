#include "output/CMonitorSection.hpp"

#include "physics/section_discharge.hpp"

CMonitorSection::CMonitorSection(const cases::SectionRequest& request, const fields::Ground& ground,
                                 double start_time)
    : name_(request.result), interval_(request.interval), next_time_(start_time) {
  utils::Checksum columns;
  for (const std::vector<cases::Number>& section : request.sections) {
    columns.add_values(section);
    for (const fields::GroundEdge& edge : ground.edges(section)) {
      edges_.push_back(edge.geometry());
      cells_.push_back(edge.left);
    }
    section_ends_.push_back(edges_.size());
  }
  qx_.resize(edges_.size());
  qy_.resize(edges_.size());
  columns_ = columns.value();
}

void CMonitorSection::begin_behind(double done) {
  next_time_ = next_time_behind(done, next_time_, interval_);
  begin();
}

void CMonitorSection::go_on(const RecordingPosition& position, double done) {
  next_time_ = next_time_after_change(done, position.next_time, position.interval, interval_);
  output_.open_behind(position.lines);
}

RecordingPosition CMonitorSection::position() const {
  utils::WrittenLines lines = output_.lines();
  lines.name = name_;
  return {lines, interval_, next_time_, columns_};
}

void CMonitorSection::WriteMeasure(const fields::Flow& flow, double t) {
  next_time_ += interval_;
  writer_.wait();
  // Intended: the time of the step, whereas gauges write the scheduled time.
  time_ = t;
  flow.read(fields::Field::discharge_x, cells_, qx_);
  flow.read(fields::Field::discharge_y, cells_, qy_);
  writer_.hand_over([this] { return WriteOutputThread(); });
}

bool CMonitorSection::WriteOutputThread() {
  utils::TextBuffer line;
  line << time_ << '\t';
  std::size_t i = 0;
  for (const std::size_t end : section_ends_) {
    double Q = 0.0;
    for (; i < end; ++i) Q = physics::add_edge_discharge(Q, qx_[i], qy_[i], edges_[i]);
    line << Q << '\t';
  }
  line << '\n';
  return output_.write(line);
}

void CMonitorSection::close() {
  if (!output_.close()) writer_.note_failure();
}
