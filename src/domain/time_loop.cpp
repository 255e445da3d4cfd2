// The time loop: outputs, progress, and the steps.
#include <algorithm>
#include <cmath>
#include <iomanip>
#include <iostream>
#include <string>

#include "domain/Domain.hpp"
#include "output/Snapshot.hpp"
#include "report/RunReport.hpp"
#include "utils/number_text.hpp"
#include "utils/stop.hpp"

namespace {

constexpr int passes_between_displays = 10;  // of the clock

}  // namespace

void Domain::Update(const std::function<bool()>& goes_on) {
  clock_ = is_restarted() ? restart_->contents.clock : fields::clock_at_start(case_, *flow_);
  t_begin_ = clock_.t;
  if (is_restarted()) settings_.console.show(continuation());
  printTime(clock_.t, 8, 3);
  passes_ = 0;

  begin_watching();
  if (is_restarted()) go_on_with_outputs();
  while (may_go_on(goes_on)) {
    if (flow_->takes_questions()) pause_before_step();
    outputs_done_ = clock_.t;  // of a flow that takes no questions nothing is due
    enter(Phase::steps);
    if (++passes_ > passes_between_displays) {
      passes_ = 0;
      eraseTime();
      printTime(clock_.t, 8, 3);
    }
    stop_on_collapsed_step();
    compute_steps();
    if (flow_->takes_questions()) pause_after_step();
  }
  enter(Phase::outputs);
  end_progress();
  write_results_of_the_end();
  if (keeper_) keep_last_checkpoint();
  wait_for_writers();
  if (gauge) gauge->close();
  if (monitor_section) monitor_section->close();
  stop_if_writer_failed();
  eraseTime();
  stop_on_lost_clock();
  warn_of_lost_results();
  if (!is_complete()) report_interruption();
}

bool Domain::may_go_on(const std::function<bool()>& is_allowed) {
  if (!(clock_.t < case_.t_end)) return false;
  is_asked_to_end_ = !is_allowed();
  return !is_asked_to_end_ || !flow_->takes_questions();
}

void Domain::pause_before_step() {
  if (keeper_ && keeper_->is_due()) keep_checkpoint();
  enter(Phase::outputs);
  fire_outputs();
}

void Domain::pause_after_step() {
  utils::go_on_with_writers();
  stop_if_writer_failed();
  show_progress();
}

double Domain::next_pause() {
  const bool is_next = is_asked_to_end_ || looks_->is_due(1) || (keeper_ && keeper_->is_due()) ||
                       has_lost_a_result() || utils::can_go_on_with_writers() ||
                       (settings_.progress != nullptr && settings_.progress->is_due());
  if (is_next) return -HUGE_VAL;
  double next = std::min(case_.t_end, next_enveloppe_time);
  if (gauge) next = std::min(next, gauge->next_time());
  if (monitor_section) next = std::min(next, monitor_section->next_time());
  if (picture) next = std::min(next, picture->next_time() - fields::Clock::smallest_step);
  if (results_) next = std::min(next, results_->next_time() - fields::Clock::smallest_step);
  return next;
}

void Domain::compute_steps() {
  const double t = clock_.t, dt = clock_.dt;
  const long steps = clock_.steps;
  const double pause = next_pause();
  flow_->leave_alone_until(pause);
  const long last_before_display = steps + passes_between_displays + 1 - passes_;
  fields::advance(*flow_, case_, clock_, pause, std::min(looks_->due_after(), last_before_display));
  passes_ += static_cast<int>(clock_.steps - steps) - 1;
  if (looks_->is_due()) look_at_water();
  if (settings_.report == nullptr) return;
  settings_.report->add_step(t, dt);
  report_lost_states();
}

void Domain::look_at_water() {
  looks_->look();
  warn_of_much_below_zero();
}

void Domain::begin_watching() {
  looks_ = std::make_unique<WaterLooks>(*flow_, case_, clock_);
  if (settings_.report != nullptr) settings_.report->begin(*flow_, case_, clock_, *looks_);
  if (is_restarted()) load_books();
  if (settings_.report != nullptr) report_lost_states();
  if (settings_.progress != nullptr) settings_.progress->begin(clock_.t, case_.t_end);
}

void Domain::enter(Phase phase) {
  if (settings_.report != nullptr) settings_.report->enter(phase);
}

void Domain::show_progress() {
  if (settings_.progress == nullptr || !settings_.progress->is_due()) return;
  settings_.progress->show(clock_.t, clock_.dt, looks_->at_cells().survey());
}

void Domain::end_progress() {
  if (settings_.progress != nullptr) settings_.progress->end();
}

void Domain::fire_outputs() {
  const bool gauge_due = gauge && gauge->CheckTime(clock_.t);
  const bool picture_due = picture && picture->CheckTime(clock_.t, fields::Clock::smallest_step);
  const bool results_due = results_ && results_->CheckTime(clock_.t, fields::Clock::smallest_step);
  const bool section_due = monitor_section && monitor_section->CheckTime(clock_.t);
  const bool enveloppe_due = clock_.t > next_enveloppe_time;

  if (picture_due || results_due || enveloppe_due) look_at_water();
  if (gauge_due) gauge->WriteMeasure(*flow_);
  if (picture_due) picture->WriteMeasure(*flow_);
  if (results_due) results_->WriteMeasure(*flow_);
  if (section_due) monitor_section->WriteMeasure(*flow_, clock_.t);
  if (enveloppe_due) write_enveloppe();
  if (enveloppe_due && maxima_) maxima_->WriteMeasure(*flow_, clock_.t);
}

void Domain::write_results_of_the_end() {
  if (std::isnan(clock_.t)) return;  // the flow is lost with its time
  if (maxima_) maxima_->WriteMeasure(*flow_, clock_.t);
  if (results_) results_->finish(*flow_);
  if (!data_.final_state) return;
  Snapshot snapshot(case_);
  snapshot.gather(*flow_);
  if (!snapshot.write(data_.output_folder + *data_.final_state)) has_lost_snapshot_ = true;
}

void Domain::wait_for_writers() {
  if (gauge) gauge->wait();
  if (picture) picture->wait();
  if (maxima_) maxima_->wait();
  if (results_) results_->wait();
  if (monitor_section) monitor_section->wait();
  envelope_writer_.wait();
}

bool Domain::has_lost_a_result() const {
  return has_lost_snapshot_ || envelope_writer_.has_failed() || (gauge && gauge->has_failed()) ||
         (picture && picture->has_failed()) || (monitor_section && monitor_section->has_failed()) ||
         (maxima_ && maxima_->has_failed()) || (results_ && results_->has_failed());
}

void Domain::report_interruption() const {
  const std::string text = " interrupted at t = " + utils::number_text(clock_.t) + " s\n";
  settings_.log << "Simulation" << text;
  std::cerr << "The run was" << text;
}

void Domain::stop_if_writer_failed() {
  if (!has_lost_a_result()) return;
  end_progress();
  warn_of_lost_results();
  utils::stop(-1);
}

void Domain::printTime(double t, int width, int precision) {
  settings_.console.out() << std::setw(width) << std::fixed << std::setprecision(precision) << t;
  settings_.console.flush();
}

void Domain::eraseTime() { settings_.console.out() << '\r'; }
