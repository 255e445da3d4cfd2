#include "domain/Progress.hpp"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <string>

#include "utils/number_text.hpp"

namespace {

constexpr double interval_on_terminal = 0.1;  // s
constexpr double interval_elsewhere = 30.0;   // s
constexpr double recent = 10.0;               // the pace is that of the last seconds, s
constexpr double rest_per_look = 100.0;       // a look at the flow may take 1 % of the time

std::string hours_minutes_seconds(double seconds) {
  constexpr double longest = 999.0 * 3600.0;
  if (!(seconds <= longest)) return "?";
  const long whole = std::lround(seconds);
  char text[32];
  std::snprintf(text, sizeof text, "%ld:%02ld:%02ld", whole / 3600, whole / 60 % 60, whole % 60);
  return text;
}

std::string right_aligned(const std::string& text, std::size_t width) {
  return std::string(width - std::min(width, text.size()), ' ') + text;
}

}  // namespace

Progress::Progress(std::ostream& out, bool is_terminal, WallClock wall_clock)
    : out_(out),
      is_terminal_(is_terminal),
      wall_clock_(std::move(wall_clock)),
      start_(wall_clock_()) {}

Progress Progress::on_standard_error() {
  return {std::cerr, isatty(STDERR_FILENO) != 0, [] {
            const auto since_origin = std::chrono::steady_clock::now().time_since_epoch();
            return std::chrono::duration<double>(since_origin).count();
          }};
}

double Progress::interval() const {
  return is_terminal_ ? interval_on_terminal : interval_elsewhere;
}

void Progress::begin(double t_start, double t_end) {
  t_start_ = t_start;
  t_end_ = t_end;
  const double now = wall_clock_();
  recent_ = {{now, t_start}};
  next_ = now + interval();
}

bool Progress::is_due() {
  asked_ = wall_clock_();
  return asked_ >= next_;
}

void Progress::show(double t, double dt, const fields::FlowSurvey& flow) {
  const double now = wall_clock_();
  recent_.push_back({now, t});
  while (recent_.size() > 2 && recent_[1].wall <= now - recent) recent_.pop_front();

  const double percent = std::clamp(100.0 * (t - t_start_) / (t_end_ - t_start_), 0.0, 100.0);
  const double left = std::max(0.0, t_end_ - t) / pace();
  out_ << (is_terminal_ ? "\r" : "") + right_aligned(utils::fixed_text(percent, 1), 5) +
              " %  step " + utils::number_text(dt, 3) + " s  " + std::to_string(flow.wet_cells) +
              " wet cells  fastest " + utils::number_text(flow.largest_speed, 3) + " m/s  " +
              hours_minutes_seconds(now - start_) + " gone  " + hours_minutes_seconds(left) +
              " left" + (is_terminal_ ? "\033[K" : "\n")
       << std::flush;
  has_line_ = is_terminal_;

  const double after = wall_clock_();
  next_ = after + std::max(interval(), rest_per_look * (after - asked_));
}

/// Simulated seconds per second; 0 as long as nobody can tell.
double Progress::pace() const {
  const double seconds = recent_.back().wall - recent_.front().wall;
  return seconds > 0.0 ? (recent_.back().t - recent_.front().t) / seconds : 0.0;
}

void Progress::end() {
  if (has_line_) out_ << '\n' << std::flush;
  has_line_ = false;
}
