// The flow of a case, or of a part of it, on flat tables: the schedule of a step over them, and
// their states.
#pragma once

#include <cmath>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>

#include "engine/Exchange.hpp"
#include "engine/Processor.hpp"
#include "engine/State.hpp"
#include "engine/TablesHalo.hpp"
#include "engine/ThreadTeam.hpp"
#include "engine/WorkMeter.hpp"
#include "engine/device/DeviceSteps.hpp"
#include "physics/initial_water.hpp"

namespace engine {

/// What a rank asks of all of them, to be done after a step.
struct Wishes {
  bool stop = false;        ///< the end of the run
  double pause = HUGE_VAL;  ///< a pause between steps as soon as the clock has come to a time, s
};

/// Cells and boundaries are named by their numbers in the case or part that it is made of; but what
/// ranks tell each other, notes and not_hyperbolic(), by those in the whole case. An engine of a
/// part computes its own cells and is one of several ranks: what is marked "together" is to be
/// called on all of them, in the same order.
class Engine {
 public:
  /// Makes the tables of a case, which must outlive the engine, and runs on a number of threads, at
  /// least 1, by loops as loops_for() chooses them, or on a device. Throws std::length_error as
  /// make_tables does, std::runtime_error as loops_for() and make_device_backend() do.
  Engine(const cases::Case& contents, int threads, int cells_per_patch = 0,
         const Processor& processor = {});
  /// The same of a part, with an exchange; both must outlive the engine.
  Engine(const cases::Part& part, Exchange& exchange, int threads, int cells_per_patch = 0,
         const Processor& processor = {});

  /// Together: stable step of the present states of all ranks before the Courant factor, s.
  double stable_step(double t);
  /// Together: advances all cells by a step; the stable step of the new states, s.
  double advance(const StepTimes& times, const Wishes& own = {});
  /// Where a device computes all of a case, and nobody takes notes: steps that nobody sees, up to
  /// limits, at least one, after which the clock is set. False where steps have to go one by one.
  bool advance_alone(RunClock& clock, const StepLimits& limits);
  /// What any rank wished in the last step.
  Wishes wishes() const { return {agreed_.stop < 0.0, agreed_.pause}; }

  /// That of the owned cells, in the order of their numbers.
  State state();
  /// The same into a state that holds another one, whose memory is taken again.
  void save(State& state);
  /// Together: puts such a state of the same case or part in force, which holds maxima where
  /// they are kept; throws std::invalid_argument if it lacks them.
  void set_state(const State& state);

  // Between steps; the cells are owned.
  /// For every cell: whether its patch may change in the next step without inflow, or took part in
  /// the last one.
  std::vector<char> awake() const;
  /// That of the engine from which the state in force comes; without it all are awake.
  void set_awake(const std::vector<char>& awake);
  /// Replaces depths and discharges.
  void set_water(std::span<const cases::Number> cells,
                 std::span<const physics::InitialWater> water);
  /// From now on a boundary imposes a discharge (m2/s) or a level (m).
  void impose_on_boundary(int boundary, double value);
  /// From now on steady rains (m/s) fall on cells, in place of that of the case.
  void impose_rain(std::span<const cases::Number> cells, std::span<const double> intensities);

  /// The values of a column of the tables: of all owned cells in the order of their numbers, on all
  /// threads at once, or of those given.
  void read(const Column& column, std::span<double> values);
  void read(const Column& column, std::span<const cases::Number> cells,
            std::span<double> values) const;
  /// What passed a boundary in the last step; nothing where it is not that of an owned cell.
  BoundaryInflow boundary_inflow(int boundary) const;

  /// From now on, which is before the first step, the largest flow of every cell is kept, the
  /// present one included; `arrival_depth` (m) as physics::FlowMaxima has it.
  void keep_maxima(double arrival_depth);
  /// Notes the present states, at their time (s): what is kept holds up to then. Steps note the
  /// states that they begin with.
  void note_maxima(double t);

  /// Together: from a time on (s) every step takes notes, of all ranks.
  void watch(double t);
  const physics::StepNotes& notes() const { return notes_->of_last_step(); }
  /// See StepNotes; of a cell by its number in the whole case.
  const CellState* told_state(int cell) const {
    return notes_ ? notes_->told_state(cell) : nullptr;
  }
  /// The notes of the owned cells, once there are any, and those that the next step goes on with.
  void save_notes(SavedNotes& notes);
  void load_notes(const SavedNotes& notes);
  UnseenDepths unseen_depths(cases::Number cell) const;
  /// Where the last step was not hyperbolic, on the first such edge; only the first time, and on
  /// the rank that owns the cell. `place` is then the number of the cell.
  const std::optional<NotHyperbolic>& not_hyperbolic() const { return not_hyperbolic_; }

  /// Whether that is told of the last step, on any rank.
  bool any_rank_was_not_hyperbolic() const { return agreed_.not_hyperbolic != HUGE_VAL; }

  /// The columns of the cells, for read(): what they hold may be elsewhere.
  const CellTable& columns() const { return tables_.cells; }
  const Tables& tables() const {
    bring_home();
    return tables_;
  }
  /// The place of an owned cell, where columns() then hold its present state: that of the water,
  /// the sediment and the bed.
  std::size_t place_at_hand(cases::Number cell) const;
  int threads() const { return backend().threads(); }
  const char* instruction_set() const { return backend().instruction_set(); }
  /// What a report calls the path: tables, or device.
  const char* path() const { return device_ ? "device" : "tables"; }
  /// Of one of several ranks: ends a window of steps, see WorkMeter.
  Work end_window() { return meter_->end_window(); }
  /// For every owned cell: whether it is wet, or is computed whether there is water or not.
  std::vector<char> busy();
  /// Patches that the last step computed.
  int active_patches() const { return static_cast<int>(activity_.patches().size()); }

 private:
  /// Of a part, or (null) of a whole case.
  Engine(const cases::Case& contents, const cases::Part* part, Exchange& exchange, int threads,
         int cells_per_patch, const Processor& processor);

  Backend& backend() const { return device_ ? static_cast<Backend&>(*device_) : *host_; }
  /// To be called before the tables are read or changed, which may be elsewhere; and after they or
  /// the notes were changed otherwise than by a step.
  void bring_home() const {
    if (device_) device_->bring_home();
  }
  void take_anew() {
    if (device_) device_->take_anew();
  }

  double advance_on_host(const StepTimes& times, const Wishes& own);
  double advance_on_device(const StepTimes& times, const Wishes& own);
  double advance_patches(const std::vector<int>& patches);
  /// That the step has computed.
  int cells_of_step() const;
  /// Ends a step, once all ranks have told their smallest one; that of the whole domain, s.
  double agree_on_step();
  /// The smallest step of the cells, at a time (s), or that of a boundary if it is smaller.
  double bounded_by_boundaries(double smallest_step, double t);
  /// Place of the cell whose boundary bounds a step (s); -1: none here does.
  int place_of_bound(double step) const;
  /// With the notes of the step, where somebody asks for them.
  void start_minimum(double smallest_step, const Wishes& own);
  StepMinimum finish_uniting();
  void find_not_hyperbolic();
  void ignore_not_hyperbolic();
  /// The values of a column for the owned cells in the order of their numbers; none where it is
  /// empty.
  void save_column(const Column& column, std::vector<double>& values);
  void load_column(const std::vector<double>& values, Column& column) const;

  Alone alone_;
  Exchange& exchange_;
  ThreadTeam team_;
  Tables tables_;
  TablesHalo halo_;
  Forcing forcing_;
  Activity activity_;
  std::unique_ptr<PatchBackend> host_;           ///< or
  std::unique_ptr<device::DeviceSteps> device_;  ///< the other is null
  std::optional<WorkMeter> meter_;               ///< of one of several ranks
  std::unique_ptr<StepNotes> notes_;             ///< null: nobody asks for notes
  kernels::StepValues step_{};
  double step_of_bound_ = 0.0;  ///< by which a boundary here bounds the next step, s
  int place_of_bound_ = -1;     ///< of its cell; -1: cells bound it more
  StepMinimum agreed_;          ///< in the last step
  std::optional<NotHyperbolic> not_hyperbolic_;  ///< see there
  bool has_told_not_hyperbolic_ = false;
};

}  // namespace engine
