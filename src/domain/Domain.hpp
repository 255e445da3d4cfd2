// The one object of a run: set-up, time loop, point location, envelope, and the wiring of sources
// and outputs.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "case/AreaLoss.hpp"
#include "case/Case.hpp"
#include "case/EndAtFirstError.hpp"
#include "domain/PointLocator.hpp"
#include "domain/Progress.hpp"
#include "fields/Flow.hpp"
#include "output/CMonitorSection.hpp"
#include "output/CPicture.hpp"
#include "output/Gauge.hpp"
#include "report/PhaseClock.hpp"
#include "utils/WriterThread.hpp"

class RunReport;
namespace utils {
class DataFileReader;
}

/// Who watches a run; null: nobody. A report looks at the flow until it is written.
struct Watchers {
  Progress* progress = nullptr;
  RunReport* report = nullptr;
};

class Domain {
 public:
  /// Builds the whole run from its data file. The watchers must outlive the run.
  explicit Domain(const std::string& dataFile, Watchers watchers = {});
  Domain(const Domain&) = delete;
  Domain& operator=(const Domain&) = delete;

  /// Advances the run from its start to its end, or until a signal interrupts it.
  void Update();
  /// Whether the simulated time has reached the end of the run.
  static bool is_complete();
  /// The same, until `goes_on`, asked before every step, says no.
  void Update(const std::function<bool()>& goes_on);
  /// Steps computed so far.
  long number_of_steps() const { return steps; }
  /// Number of the cell that contains a point of the plane; -1 if there is none.
  cases::Number CellWithPoint(double x, double y) const;
  /// Body of the envelope writer.
  bool Write_Umax();

 private:
  // Set-up.
  void read_data_file(const std::string& dataFile);
  void take_values(const utils::DataFileReader& reader);
  void report_model() const;
  void read_mesh();
  void read_cell_fields();
  void report_and_check_sediments() const;
  void read_source_terms();
  void set_outputs();
  void set_other_parameters();
  void warn_of_implausible_input() const;
  void warn_of_implausible_fields() const;
  void warn_of_outflows() const;
  bool has_sediments() const { return case_.has_sediments; }

  // Time loop.
  void begin_watching();
  void enter(Phase phase);
  void fire_outputs();
  void compute_step();
  void show_progress();
  void end_progress();
  void write_enveloppe();
  void wait_for_writers();
  /// Whether the run must end, which has been said.
  bool has_lost_a_result() const;
  static void report_interruption();
  void stop_if_writer_failed();
  static void printTime(double t, int width, int precision);
  static void eraseTime();

  // Failures.
  void stop_on_collapsed_step();
  void stop_on_lost_clock();
  [[noreturn]] void stop_at_limiting_cell(const std::string& what);
  void warn_of_lost_states() const;
  void warn_of_lost_results() const;
  void report_lost_states();
  void report_failure(const std::string& what, cases::Number cell);
  /// Answers the name of the snapshot; empty if it would replace an input file.
  std::string write_failure_snapshot();

  Watchers watchers_;
  cases::EndAtFirstError diagnostics_;
  cases::Case case_;
  std::string simulation_name;
  std::string nodes_file, cells_file, edges_file;
  std::string initial_conditions_file;
  std::string friction_file;
  std::string fixed_bed_level_file, sediments_level_file;
  std::string model_name = "Undefined";
  std::unique_ptr<fields::Flow> flow_;  ///< of case_
  double dt_enveloppe = 0.0;            ///< s
  double next_enveloppe_time = 0.0;     ///< s
  double dt_threshold = 1e-08;          ///< smallest acceptable time step, s
  long steps = 0;
  int flux_scheme = 0;
  bool is_pictures = false;
  bool is_gauges = false;
  bool is_discharges = false;
  bool is_fixed_bed_level = false;
  bool is_sediments_level = false;
  bool is_friction = false;
  bool is_rainfall = false;
  bool is_infiltration = false;
  bool is_initial_infiltration = false;
  mutable std::unique_ptr<PointLocator> locator;  ///< kept while gauges are placed
  std::vector<double> umax_buffer;                ///< largest depths for the writer, m
  std::string envelope_file_;
  utils::WriterThread envelope_writer_;
  bool has_lost_failure_snapshot_ = false;
  AreaLoss area_loss;  ///< of the cells, as they are read

  std::string gauges_file, pictures_file, discharge_file;
  std::string rainfall_file, hyetocells_file;
  std::string infiltration_file, infiltracells_file, initial_infiltration_file;
  std::unique_ptr<Gauge> gauge;
  std::unique_ptr<CPicture> picture;
  std::unique_ptr<CMonitorSection> monitor_section;
};
