// The time loop: outputs, progress, and the steps.
#include <cmath>
#include <iomanip>
#include <iostream>
#include <sstream>

#include "domain/Domain.hpp"
#include "globals/Globals.hpp"
#include "globals/WriterHandoff.hpp"
#include "utils/signals.hpp"
#include "utils/stop.hpp"

void Domain::Update() {
  Update([] { return true; });
}

void Domain::Update(const std::function<bool()>& goes_on) {
  constexpr int passes_between_displays = 10;
  Globals::t = Globals_Params::tStart;
  printTime(Globals::t, 8, 3);
  int passes = 0;

  Globals::dt = cfl * model->dtMin();
  utils::listen_for_interruption();
  Progress* const progress = watchers_.progress;
  if (progress != nullptr) progress->begin(Globals::t, Globals_Params::tEnd);
  while (Globals::t < Globals_Params::tEnd && utils::interrupting_signal() == 0 && goes_on()) {
    fire_outputs();
    if (++passes > passes_between_displays) {
      passes = 0;
      eraseTime();
      printTime(Globals::t, 8, 3);
    }
    stop_on_collapsed_step();
    Globals::dt = cfl * model->computeFlowStep();
    ++steps;
    // Intended: the clock advances by the new step, not by the one just applied, and no step is
    // shortened to meet an output time or the end.
    Globals::t += Globals::dt;
    stop_if_writer_failed();
    if (progress != nullptr && progress->is_due()) {
      progress->show(Globals::t, Globals::dt, survey_flow(*model));
    }
  }
  end_progress();
  Handoff::join_all();
  stop_if_writer_failed();
  eraseTime();
  if (std::isnan(Globals::t)) {
    std::cerr << "Error. The simulated time is not a number any more.\n";
    report_limiting_cell();
    utils::stop(-1);
  }
  if (!is_complete()) report_interruption();
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

  // All states first: a writer that is started copies while the next one is being prepared.
  if (picture_due || enveloppe_due) {
    model->publish();
  } else {
    if (gauge_due) model->publish(gauge->watched_cells());
    if (section_due) model->publish(monitor_section->watched_cells());
  }
  if (gauge_due) gauge->WriteMeasure();
  if (picture_due) picture->WriteMeasure(model.get());
  if (section_due) monitor_section->WriteMeasure();
  if (enveloppe_due) write_enveloppe();
}

void Domain::stop_on_collapsed_step() {
  const bool clock_stands_still = Globals::t + Globals::dt == Globals::t;
  if (!(Globals::dt <= dt_threshold || clock_stands_still)) return;
  end_progress();
  std::cerr << "dt too small!\n";
  Globals::spyFile << "Simulation stopped at t = " << Globals::t << " s\n"
                   << "Too small dt! dt = " << Globals::dt << " s\n";
  report_limiting_cell();
  utils::stop(-1);
}

void Domain::report_limiting_cell() const {
  model->publish();
  const ComputationalCell* const cell = model->limiting_cell();
  if (cell == nullptr) return;
  const HydraulicVariableSWE& U = cell->UVal();
  const double velocity = U.h != 0.0 ? std::hypot(U.qx, U.qy) / U.h : 0.0;
  std::cerr << "Limiting cell: " << cell->id << " (counted from 0), centre ("
            << std::setprecision(12) << cell->center.x << ", " << cell->center.y << ") m"
            << std::setprecision(6) << ", depth " << U.h << " m, velocity " << velocity
            << " m/s, characteristic length " << cell->char_length << " m\n";
}

void Domain::report_interruption() {
  std::ostringstream text;
  text << " interrupted at t = " << Globals::t << " s\n";
  Globals::spyFile << "Simulation" << text.str();
  std::cerr << "The run was" << text.str();
}

void Domain::stop_if_writer_failed() {
  if (!Thread::has_failed) return;
  end_progress();
  utils::stop(-1);
}

void Domain::printTime(double t, int width, int precision) {
  std::cout << std::setw(width) << std::fixed << std::setprecision(precision) << t << std::flush;
}

void Domain::eraseTime() { std::cout << '\r'; }
