// What a run leaves when it collapses or loses a state: a short text on standard error, and where
// there is a report its full description with a snapshot of that instant.
#include <cmath>
#include <iostream>
#include <string>

#include "domain/Domain.hpp"
#include "domain/limiting_cell.hpp"
#include "output/Snapshot.hpp"
#include "report/RunReport.hpp"
#include "utils/cell_place.hpp"
#include "utils/files.hpp"
#include "utils/number_text.hpp"
#include "utils/stop.hpp"

namespace {

void show(const fields::Ground& ground, cases::Number cell, const fields::CellState& state) {
  const bool is_finite = std::isfinite(state.h + state.qx + state.qy);
  const double velocity = state.h != 0.0 ? std::hypot(state.qx, state.qy) / state.h : 0.0;
  const cases::CellGeometry geometry = ground.geometry_of(cell);
  std::cerr << (is_finite ? "Limiting cell: " : "Cell whose state is not a number: ")
            << utils::cell_place(cell, geometry.center.x, geometry.center.y) << ", depth "
            << state.h << " m, velocity " << velocity << " m/s, characteristic length "
            << geometry.char_length() << " m\n";
}

}  // namespace

void Domain::stop_on_collapsed_step() {
  if (!clock_.has_collapsed()) return;
  end_progress();
  std::cerr << "dt too small!\n";
  settings_.log << "Simulation stopped at t = " << clock_.t << " s\n"
                << "Too small dt! dt = " << clock_.dt << " s\n";
  stop_at_limiting_cell("the time step is too small");
}

void Domain::stop_on_lost_clock() {
  if (!std::isnan(clock_.t)) return;
  std::cerr << "Error. The simulated time is not a number any more.\n";
  stop_at_limiting_cell("the simulated time is not a number");
}

void Domain::stop_at_limiting_cell(const std::string& what) {
  const cases::Number cell = limiting_cell(*flow_, case_);
  if (cell >= 0) {
    show(*ground_, cell, flow_->state(cell));
    report_failure(what, cell);
  }
  warn_of_lost_results();
  utils::stop(-1);
}

void Domain::warn_of_lost_states() const {
  const fields::FlowSurvey survey = looks_->at_cells().survey();
  if (survey.not_finite == 0) return;
  utils::warn("the state of " + std::to_string(survey.not_finite) +
              " cells is not a number at t = " + utils::fixed_text(clock_.t, 6) + " s.");
  const cases::Number cell = survey.a_cell_not_finite;
  show(*ground_, cell, flow_->state(cell));
}

void Domain::report_lost_states() {
  if (!settings_.report->has_just_lost_a_state()) return;
  report_failure("a state is not a number", looks_->at_cells().survey().a_cell_not_finite);
}

void Domain::report_failure(const std::string& what, cases::Number cell) {
  if (settings_.report == nullptr) return;
  const bool is_first = !settings_.report->has_failure();
  settings_.report->add_failure(what, cell, is_first ? write_failure_snapshot() : "");
}

std::string Domain::write_failure_snapshot() {
  const std::string name = data_.output_folder + "failure.txt";
  if (utils::is_input_file(name)) return "";
  wait_for_writers();  // what they say comes first
  Snapshot snapshot(case_);
  snapshot.gather(*flow_);
  if (!snapshot.write(name)) has_lost_snapshot_ = true;
  return name;
}
