// The one object of a run: set-up, time loop, point location, envelope, and the wiring of outputs.
#pragma once

#include <cmath>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "case/EndAtFirstError.hpp"
#include "case/read_case.hpp"
#include "checkpoint/CheckpointKeeper.hpp"
#include "checkpoint/checkpoint_pair.hpp"
#include "domain/Progress.hpp"
#include "fields/Clock.hpp"
#include "fields/Flow.hpp"
#include "fields/make_flow.hpp"
#include "output/CMonitorSection.hpp"
#include "output/CPicture.hpp"
#include "output/GatheredFields.hpp"
#include "output/Gauge.hpp"
#include "output/MaximaFile.hpp"
#include "output/ResultsFile.hpp"
#include "report/PhaseClock.hpp"
#include "report/WaterLooks.hpp"
#include "utils/WriterThread.hpp"

class RunReport;

/// Where a run goes on.
struct RestartRequest {
  std::string checkpoint;        ///< its name
  bool despite_changes = false;  ///< of what must be the same otherwise
};

/// What a run is given besides its data file. All that is referred to must outlive it.
struct RunSettings {
  std::ostream& log;
  utils::Console& console;
  fields::FlowRequest flow = {};
  // Who watches the run; null: nobody. A report looks at the flow until it is written.
  Progress* progress = nullptr;
  RunReport* report = nullptr;
  // Null: no checkpoints are kept; the run begins at its start.
  const checkpoint::Request* checkpoints = nullptr;
  const RestartRequest* restart = nullptr;
  std::string version = "";  ///< of the program
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
  /// Simulated so far by this call of the program, s.
  double simulated() const { return clock_.t - t_begin_; }
  /// Number of the cell that contains a point of the plane; -1 if there is none.
  cases::Number CellWithPoint(double x, double y) const;
  /// Hands the largest depths over to be written.
  void Write_Umax();

 private:
  // Set-up.
  cases::ReadCase read_case(const std::string& data_file);
  /// Whether no rank needs more of the case than its share.
  bool can_share_case() const;
  /// Reads the case once more, all of it on this rank, as the objects need it.
  void fetch_mesh();
  void set_outputs();
  void set_gauges();
  void set_pictures();
  void set_results();
  std::unique_ptr<fields::ListedMesh> listed_mesh() const;
  void set_sections();
  void set_maxima();
  void set_other_parameters();
  void warn_of_implausible_input();

  // Restart. No result is touched before all of the checkpoint has been found to be fit.
  bool is_restarted() const { return restart_ != nullptr; }
  static std::unique_ptr<checkpoint::Loaded> load_checkpoint(const RunSettings& settings);
  void require_same_inputs();
  void require_same_results() const;
  /// Whether results in NetCDF go on in the file of the run before.
  bool goes_on_in_results() const;
  std::string continuation() const;
  void require_same_maxima(const std::optional<double>& before) const;
  /// Calls load(rows) with the rows of the checkpoint.
  template <class Load>
  void load_rows(const Load& load) const;
  void load_flow();
  [[noreturn]] void refuse_other_flow() const;
  void load_books();
  void go_on_with_outputs();

  // Checkpoints.
  void keep_checkpoint();
  void keep_last_checkpoint();
  OutputPositions output_positions() const;
  /// For the thread that writes checkpoints: whether all results so far are written. Brings lines
  /// to the disk.
  bool has_written_results(const OutputPositions& positions);

  // Time loop.
  void begin_watching();
  void enter(Phase phase);
  void fire_outputs();
  /// Whether the loop goes on; `is_allowed` as of Update().
  bool may_go_on(const std::function<bool()>& is_allowed);
  /// What there is to do besides steps, before one and after one.
  void pause_before_step();
  void pause_after_step();
  /// Up to when the loop needs nothing of the flow but steps, before one, s.
  double next_pause();
  /// Computes a step, or several where nobody sees the states between them.
  void compute_steps();
  void look_at_water();
  void show_progress();
  void end_progress();
  void write_enveloppe();
  void write_results_of_the_end();
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
  /// Where the run goes on, until it does; null: it begins at its start.
  std::unique_ptr<checkpoint::Loaded> restart_;
  std::string data_file_;
  /// The case as ranks have read it together; null: this rank has all of it.
  std::unique_ptr<fields::SharedCase> shared_;
  cases::ReadCase read_;
  const cases::Case& case_ = read_.contents;
  const cases::DataFile& data_ = read_.data;
  std::vector<checkpoint::Input> inputs_;  ///< of a run with checkpoints, or that goes on
  fields::Clock clock_;
  int passes_ = 0;        ///< steps since the clock was last shown, and the one that comes
  double t_begin_ = 0.0;  ///< of this call of the program, s
  bool is_asked_to_end_ = false;
  std::unique_ptr<fields::Flow> flow_;             ///< of case_
  std::unique_ptr<fields::Ground> ground_;         ///< of case_; once there is a flow, of that
  std::unique_ptr<WaterLooks> looks_;              ///< at flow_; null before the steps
  std::unique_ptr<fields::SavedRows> saved_rows_;  ///< of flow_, for checkpoints and restarts
  bool has_warned_of_much_ = false;
  double outputs_done_ = -HUGE_VAL;  ///< what was due up to this time is taken, s
  double next_enveloppe_time = 0.0;  ///< s
  GatheredFields envelope_{case_.mesh, {{fields::Field::largest_depth}}};
  std::string envelope_file_;
  utils::WriterThread envelope_writer_;
  bool has_lost_snapshot_ = false;  ///< of a failure, or of the end

  std::unique_ptr<Gauge> gauge;
  std::unique_ptr<CPicture> picture;
  std::unique_ptr<MaximaFile> maxima_;
  std::unique_ptr<ResultsFile> results_;
  std::unique_ptr<CMonitorSection> monitor_section;

  /// Null: no checkpoints. Its thread uses all that stands above.
  std::unique_ptr<checkpoint::CheckpointKeeper> keeper_;
};
