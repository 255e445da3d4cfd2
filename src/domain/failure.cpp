// What a run leaves when it collapses or loses a state: a short text on standard error, and where
// there is a report its full description with a snapshot of that instant.
#include <cmath>
#include <iostream>
#include <string>

#include "domain/Domain.hpp"
#include "globals/Globals.hpp"
#include "globals/WriterHandoff.hpp"
#include "report/RunReport.hpp"
#include "utils/cell_place.hpp"
#include "utils/files.hpp"
#include "utils/number_text.hpp"
#include "utils/stop.hpp"

namespace {

bool is_finite(const HydraulicVariableSWE& U) { return std::isfinite(U.h + U.qx + U.qy); }

void show(const ComputationalCell& cell) {
  const HydraulicVariableSWE& U = cell.UVal();
  const double velocity = U.h != 0.0 ? std::hypot(U.qx, U.qy) / U.h : 0.0;
  std::cerr << (is_finite(U) ? "Limiting cell: " : "Cell whose state is not a number: ")
            << utils::cell_place(cell.id, cell.center.x, cell.center.y) << ", depth " << U.h
            << " m, velocity " << velocity << " m/s, characteristic length " << cell.char_length
            << " m\n";
}

}  // namespace

void Domain::stop_on_collapsed_step() {
  const bool clock_stands_still = Globals::t + Globals::dt == Globals::t;
  if (!(Globals::dt <= dt_threshold || clock_stands_still)) return;
  end_progress();
  std::cerr << "dt too small!\n";
  Globals::spyFile << "Simulation stopped at t = " << Globals::t << " s\n"
                   << "Too small dt! dt = " << Globals::dt << " s\n";
  stop_at_limiting_cell("the time step is too small");
}

void Domain::stop_on_lost_clock() {
  if (!std::isnan(Globals::t)) return;
  std::cerr << "Error. The simulated time is not a number any more.\n";
  stop_at_limiting_cell("the simulated time is not a number");
}

void Domain::stop_at_limiting_cell(const std::string& what) {
  model->publish();
  const ComputationalCell* const cell = model->limiting_cell();
  if (cell != nullptr) {
    show(*cell);
    report_failure(what, cell->id);
  }
  warn_of_lost_results();
  utils::stop(-1);
}

void Domain::warn_of_lost_states() const {
  const FlowSurvey flow = survey_flow(*model);
  if (flow.not_finite == 0) return;
  utils::warn("the state of " + std::to_string(flow.not_finite) +
              " cells is not a number at t = " + utils::fixed_text(Globals::t, 6) + " s.");
  const std::vector<int> lost = {flow.a_cell_not_finite};
  model->publish(lost);
  show(*model->cells[static_cast<std::size_t>(lost.front())]);
}

void Domain::report_lost_states() {
  if (!watchers_.report->has_just_lost_a_state()) return;
  model->publish();
  report_failure("a state is not a number", survey_flow(*model).a_cell_not_finite);
}

void Domain::report_failure(const std::string& what, int cell) {
  if (watchers_.report == nullptr) return;
  const bool is_first = !watchers_.report->has_failure();
  watchers_.report->add_failure(what, cell, is_first ? write_failure_snapshot() : "");
}

std::string Domain::write_failure_snapshot() {
  const std::string name = Globals::g_outputPath + "failure.txt";
  if (utils::is_input_file(name)) return "";
  Handoff::picture.join();  // a writer under way formats from the rows that are allocated anew
  allocate_snapshot();
  Handoff::picture.start([this, name] { model->printPicture(name); });
  Handoff::picture.join();
  return name;
}
