#include "report/WaterLooks.hpp"

#include <algorithm>

using fields::ColumnSurvey;
using fields::WaterSeen;

WaterLooks::WaterLooks(const fields::Flow& flow, const cases::Case& contents,
                       const fields::Clock& clock)
    : flow_(flow), clock_(clock), seen_(flow.looks(contents)) {
  look();
}

void WaterLooks::look() {
  if (clock_.steps == looked_at_) return;
  looked_at_ = clock_.steps;
  ++looks_;
  const WaterSeen seen = seen_->water();
  note_depths_below_zero(seen);
  note_films(seen);
  note_given_out(seen);
}

void WaterLooks::note_depths_below_zero(const WaterSeen& seen) {
  depths_ = {};
  if (!(seen.lowest_depth < -ColumnSurvey::rounding)) return;
  depths_ = seen_->column(fields::Field::depth);
  if (!first_below_zero_.is_any()) first_below_zero_ = {clock_.t, depths_.lowest_cell};
}

void WaterLooks::note_films(const WaterSeen& seen) {
  if (seen.films == 0) return;
  most_films_ = std::max(most_films_, seen.films);
  if (first_film_.is_any()) return;
  const physics::FlowRecord fastest = seen_->most_rapid().speed_squared_per_depth;
  if (fastest.cell < 0) return;  // its discharge is infinite, which is told elsewhere
  first_film_ = {clock_.t, fastest.cell};
  state_of_first_film_ = flow_.state(fastest.cell);
}

void WaterLooks::note_given_out(const WaterSeen& seen) {
  given_out_.add(seen.given_out);
  if (!first_given_out_.is_any()) first_given_out_ = {clock_.t, seen.cell_of_most};
}
