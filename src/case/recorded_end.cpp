#include "case/recorded_end.hpp"

#include <algorithm>
#include <cmath>

#include "utils/number_text.hpp"

namespace cases {

namespace {

constexpr double rounding = 1e-9;   // of a number of intervals, and of parts of a run
constexpr double tolerated = 0.01;  // of the run: no loss to speak of

/// What an interval loses of the run beyond the step that no interval records, as a part of it.
double part_lost(const RunTime& run, double interval) {
  return (run.end - last_recording(run, interval) - run.step) / run.duration();
}

}  // namespace

double last_recording(const RunTime& run, double interval) {
  double intervals = std::floor((run.duration() - run.step) / interval + rounding);
  if (intervals * interval > run.duration() * (1.0 - rounding)) intervals -= 1.0;
  return run.start + interval * std::max(0.0, intervals);
}

double interval_up_to_the_end(const RunTime& run, double longest) {
  if (part_lost(run, longest) < tolerated - rounding) return longest;
  // Near enough to the end that nothing new happens after it, and far enough that a step of a run
  // of some hundred steps begins between the two: one that is jumped over is not recorded at all.
  constexpr double part_left = 1.0 / 200.0;
  const double recorded = run.duration() - std::max(part_left * run.duration(), run.step);
  if (!(recorded > 0.0)) return longest;
  const double intervals = std::max(1.0, std::ceil(recorded / longest - rounding));
  double interval = longest;
  utils::parse_number(utils::number_text(recorded / intervals, 4), interval);
  return interval;
}

std::optional<std::string> on_recorded_end(const std::string& interval, double seconds,
                                           const RunTime& run) {
  const bool is_at_every_step = !(seconds > run.step);
  if (is_at_every_step || !(run.duration() > 0.0)) return {};
  if (!(part_lost(run, seconds) > tolerated + rounding)) return {};
  const double last = last_recording(run, seconds);
  return interval + " is " + utils::number_text(seconds) + " s: what happens after " +
         utils::number_text(last) + " s, in the last " + utils::number_text(run.end - last) +
         " s of the run, is not recorded; with " +
         utils::number_text(interval_up_to_the_end(run, seconds)) + " s it is";
}

}  // namespace cases
