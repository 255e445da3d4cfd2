// The time loop: outputs, progress, and the steps.
#include <iomanip>
#include <iostream>
#include <string>

#include "domain/Domain.hpp"
#include "globals/Globals.hpp"
#include "report/RunReport.hpp"
#include "utils/number_text.hpp"
#include "utils/signals.hpp"
#include "utils/standard_streams.hpp"
#include "utils/stop.hpp"

void Domain::Update() {
  Update([] { return true; });
}

void Domain::Update(const std::function<bool()>& goes_on) {
  constexpr int passes_between_displays = 10;
  Globals::t = Globals_Params::tStart;
  printTime(Globals::t, 8, 3);
  int passes = 0;

  Globals::dt = case_.cfl * flow_->stable_step();
  utils::listen_for_interruption();
  begin_watching();
  while (Globals::t < Globals_Params::tEnd && utils::interrupting_signal() == 0 && goes_on()) {
    enter(Phase::outputs);
    fire_outputs();
    enter(Phase::steps);
    if (++passes > passes_between_displays) {
      passes = 0;
      eraseTime();
      printTime(Globals::t, 8, 3);
    }
    stop_on_collapsed_step();
    compute_step();
    stop_if_writer_failed();
    show_progress();
  }
  enter(Phase::outputs);
  end_progress();
  wait_for_writers();
  if (gauge) gauge->close();
  if (monitor_section) monitor_section->close();
  stop_if_writer_failed();
  eraseTime();
  stop_on_lost_clock();
  warn_of_lost_results();
  if (!is_complete()) report_interruption();
}

void Domain::compute_step() {
  const double t = Globals::t, dt = Globals::dt;
  Globals::dt = case_.cfl * flow_->advance({t, Globals_Params::tStart, Globals_Params::tEnd, dt});
  ++steps;
  // Intended: the clock advances by the new step, not by the one just applied, and no step is
  // shortened to meet an output time or the end.
  Globals::t += Globals::dt;
  if (watchers_.report == nullptr) return;
  watchers_.report->add_step(t, dt);
  report_lost_states();
}

void Domain::begin_watching() {
  if (watchers_.report != nullptr) {
    watchers_.report->begin(*flow_, case_);
    report_lost_states();
  }
  if (watchers_.progress != nullptr) watchers_.progress->begin(Globals::t, Globals_Params::tEnd);
}

void Domain::enter(Phase phase) {
  if (watchers_.report != nullptr) watchers_.report->enter(phase);
}

void Domain::show_progress() {
  if (watchers_.progress == nullptr || !watchers_.progress->is_due()) return;
  watchers_.progress->show(Globals::t, Globals::dt, flow_->survey());
}

void Domain::end_progress() {
  if (watchers_.progress != nullptr) watchers_.progress->end();
}

bool Domain::is_complete() { return Globals::t >= Globals_Params::tEnd; }

void Domain::fire_outputs() {
  const bool gauge_due = is_gauges && gauge->CheckTime(Globals::t);
  const bool picture_due = is_pictures && picture->CheckTime(Globals::t, dt_threshold);
  const bool section_due = is_discharges && monitor_section->CheckTime(Globals::t);
  const bool enveloppe_due = Globals::t > next_enveloppe_time;

  if (gauge_due) gauge->WriteMeasure(*flow_);
  if (picture_due) picture->WriteMeasure(*flow_);
  if (section_due) monitor_section->WriteMeasure(*flow_, Globals::t);
  if (enveloppe_due) write_enveloppe();
}

void Domain::wait_for_writers() {
  if (gauge) gauge->wait();
  if (picture) picture->wait();
  if (monitor_section) monitor_section->wait();
  envelope_writer_.wait();
}

bool Domain::has_lost_a_result() const {
  return has_lost_failure_snapshot_ || envelope_writer_.has_failed() ||
         (gauge && gauge->has_failed()) || (picture && picture->has_failed()) ||
         (monitor_section && monitor_section->has_failed());
}

void Domain::report_interruption() {
  const std::string text = " interrupted at t = " + utils::number_text(Globals::t) + " s\n";
  Globals::spyFile << "Simulation" << text;
  std::cerr << "The run was" << text;
}

void Domain::stop_if_writer_failed() {
  if (!has_lost_a_result()) return;
  end_progress();
  warn_of_lost_results();
  utils::stop(-1);
}

void Domain::printTime(double t, int width, int precision) {
  std::cout << std::setw(width) << std::fixed << std::setprecision(precision) << t;
  utils::flush_console();
}

void Domain::eraseTime() { std::cout << '\r'; }
