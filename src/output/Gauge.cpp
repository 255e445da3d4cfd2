#include "output/Gauge.hpp"

#include <string>

#include "utils/number_text.hpp"
#include "utils/stop.hpp"

namespace {

std::string without_cell(int number, physics::PlanPoint point) {
  return "gauge " + std::to_string(number) + " (counted from 0) at (" +
         utils::number_text(point.x, 15) + ", " + utils::number_text(point.y, 15) +
         ") lies in no cell; its values are written as nan. A point on an edge, or at the centre "
         "of a cell whose nodes run counter-clockwise, belongs to no cell.";
}

std::uint64_t checksum_of(const std::vector<physics::PlanPoint>& points) {
  utils::Checksum sum;
  for (const physics::PlanPoint& point : points) {
    sum.add(&point.x, sizeof point.x);
    sum.add(&point.y, sizeof point.y);
  }
  return sum.value();
}

}  // namespace

Gauge::Gauge(const cases::GaugeRequest& request, const std::string& prefix,
             const fields::Ground& ground, double start_time)
    : name_(prefix + request.result),
      result_(request.result),
      interval_(request.interval),
      next_time_(start_time),
      columns_(checksum_of(request.points)),
      states_(request.points.size()) {
  utils::RepeatedWarning warnings("gauges in no cell.");
  const std::vector<cases::Number> cells = ground.cells_at(request.points);
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (cells[i] < 0) {
      warnings.add(without_cell(static_cast<int>(i), request.points[i]));
      continue;
    }
    cells_.push_back(cells[i]);
    points_.push_back(i);
  }
  values_.resize(cells_.size());
}

void Gauge::begin(std::ostream& log) {
  output_.open(name_);
  log << " Gauge results written in " << result_ << " \n";
  if (!write_header()) writer_.note_failure();
}

void Gauge::begin_behind(double done, std::ostream& log) {
  next_time_ = next_time_behind(done, next_time_, interval_);
  begin(log);
}

void Gauge::go_on(const RecordingPosition& position, double done) {
  next_time_ = next_time_after_change(done, position.next_time, position.interval, interval_);
  output_.open_behind(position.lines);
}

RecordingPosition Gauge::position() const {
  utils::WrittenLines lines = output_.lines();
  lines.name = name_;
  return {lines, interval_, next_time_, columns_};
}

bool Gauge::write_header() {
  utils::TextBuffer header;
  header << "time [s]\t";
  // Intended: four titles, although a point writes h, qx, qy and an empty field under them.
  for (std::size_t i = 0; i < states_.size(); ++i) {
    header << "hs [m]\thw [m]\tqx [m^3/s/m]\tqy [m^3/s/m]\t";
  }
  header << '\n';
  return output_.write(header);
}

void Gauge::WriteMeasure(const fields::Flow& flow) {
  next_time_ += interval_;
  writer_.wait();
  // Intended: the scheduled time, not the time of the step that records it.
  time_ = next_time_ - interval_;
  gather(flow, fields::Field::depth, &GaugeState::h);
  gather(flow, fields::Field::discharge_x, &GaugeState::qx);
  gather(flow, fields::Field::discharge_y, &GaugeState::qy);
  writer_.hand_over([this] { return WriteOutputThread(); });
  if (!output_.is_open()) writer_.wait();  // no step more is computed than this one
}

void Gauge::gather(const fields::Flow& flow, fields::Field field, double GaugeState::*value) {
  flow.read(field, cells_, values_);
  for (std::size_t k = 0; k < points_.size(); ++k) states_[points_[k]].*value = values_[k];
}

bool Gauge::WriteOutputThread() { return lines_.Write(output_, time_, states_); }

void Gauge::close() {
  if (!output_.close()) writer_.note_failure();
}
