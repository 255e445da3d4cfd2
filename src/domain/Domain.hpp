// The one object of a run: set-up, time loop, point location, envelope, and the wiring of outputs.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "case/EndAtFirstError.hpp"
#include "case/PointLocator.hpp"
#include "case/read_case.hpp"
#include "domain/Progress.hpp"
#include "fields/Clock.hpp"
#include "fields/Flow.hpp"
#include "fields/make_flow.hpp"
#include "output/CMonitorSection.hpp"
#include "output/CPicture.hpp"
#include "output/Gauge.hpp"
#include "report/PhaseClock.hpp"
#include "report/WaterLooks.hpp"
#include "utils/WriterThread.hpp"

class RunReport;

/// What a run is given besides its data file. All that is referred to must outlive it.
struct RunSettings {
  std::ostream& log;
  utils::Console& console;
  fields::FlowRequest flow = {};
  // Who watches the run; null: nobody. A report looks at the flow until it is written.
  Progress* progress = nullptr;
  RunReport* report = nullptr;
};

class Domain {
 public:
  /// Builds the whole run from its data file.
  Domain(const std::string& data_file, const RunSettings& settings);
  Domain(const Domain&) = delete;
  Domain& operator=(const Domain&) = delete;

  /// Advances the run from its start to its end, or until `goes_on`, asked before every step, says
  /// no.
  void Update(const std::function<bool()>& goes_on);
  /// Whether the simulated time has reached the end of the run.
  bool is_complete() const { return clock_.t >= case_.t_end; }
  const fields::Clock& clock() const { return clock_; }
  /// Simulated so far, s.
  double simulated() const { return clock_.t - case_.t_start; }
  /// Number of the cell that contains a point of the plane; -1 if there is none.
  cases::Number CellWithPoint(double x, double y) const;
  /// Body of the envelope writer.
  bool Write_Umax();

 private:
  // Set-up.
  cases::ReadCase read_case(const std::string& data_file);
  void set_outputs();
  void set_gauges();
  void set_pictures();
  void set_sections();
  void set_other_parameters();
  void warn_of_implausible_input();

  // Time loop.
  void begin_watching();
  void enter(Phase phase);
  void fire_outputs();
  void compute_step();
  void look_at_water();
  void show_progress();
  void end_progress();
  void write_enveloppe();
  void wait_for_writers();
  /// Whether the run must end, which has been said.
  bool has_lost_a_result() const;
  void report_interruption() const;
  void stop_if_writer_failed();
  void printTime(double t, int width, int precision);
  void eraseTime();

  // Failures.
  void stop_on_collapsed_step();
  void stop_on_lost_clock();
  [[noreturn]] void stop_at_limiting_cell(const std::string& what);
  void warn_of_lost_states() const;
  void warn_of_lost_results();
  void warn_of_strange_water() const;
  /// Once, while the run goes on, when much of the water lies below zero.
  void warn_of_much_below_zero();
  void report_lost_states();
  void report_failure(const std::string& what, cases::Number cell);
  /// Answers the name of the snapshot; empty if it would replace an input file.
  std::string write_failure_snapshot();

  RunSettings settings_;
  cases::EndAtFirstError diagnostics_;
  const cases::ReadCase read_;
  const cases::Case& case_ = read_.contents;
  const cases::DataFile& data_ = read_.data;
  fields::Clock clock_;
  std::unique_ptr<fields::Flow> flow_;  ///< of case_
  std::unique_ptr<WaterLooks> looks_;   ///< at flow_; null before the steps
  bool has_warned_of_much_ = false;
  double next_enveloppe_time = 0.0;               ///< s
  mutable std::unique_ptr<PointLocator> locator;  ///< kept while gauges are placed
  std::vector<double> umax_buffer;                ///< largest depths for the writer, m
  std::string envelope_file_;
  utils::WriterThread envelope_writer_;
  bool has_lost_failure_snapshot_ = false;

  std::unique_ptr<Gauge> gauge;
  std::unique_ptr<CPicture> picture;
  std::unique_ptr<CMonitorSection> monitor_section;
};
