// The flow of a case on flat tables: the schedule of a step over them, and their states.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>

#include "engine/Backend.hpp"
#include "engine/State.hpp"
#include "engine/ThreadTeam.hpp"

namespace engine {

/// Cells and boundaries are named by their numbers in the case.
class Engine {
 public:
  /// Makes the tables of a case, which must outlive the engine, and runs on a number of threads, at
  /// least 1. Throws std::length_error as make_tables does.
  Engine(const cases::Case& contents, int threads, int cells_per_patch = 0);

  /// Stable step of the present states before the Courant factor, s.
  double stable_step() const;
  /// Advances all cells by a step; the stable step of the new states, s.
  double advance(const StepTimes& times);

  State state();
  /// Puts a state of the same case in force.
  void set_state(const State& state);

  /// The values of a column of the tables: of all cells, on all threads at once, or of those given.
  void read(const Column& column, std::span<double> values);
  void read(const Column& column, std::span<const cases::Number> cells,
            std::span<double> values) const;
  /// What passed a boundary in the last step.
  BoundaryInflow boundary_inflow(int boundary) const;

  /// From now on every step takes notes.
  void watch();
  const physics::StepNotes& notes() const { return notes_->of_last_step(); }
  UnseenDepths unseen_depths(cases::Number cell) const;
  /// Where the last step was not hyperbolic, on the first such edge; only the first time. `place`
  /// is then the number of the cell in the case.
  std::optional<NotHyperbolic> take_not_hyperbolic();

  const Tables& tables() const { return tables_; }
  int threads() const { return backend_->threads(); }
  const char* instruction_set() const { return backend_->instruction_set(); }
  /// Patches that the last step computed.
  int active_patches() const { return static_cast<int>(activity_.patches().size()); }

 private:
  ThreadTeam team_;
  Tables tables_;
  Forcing forcing_;
  Activity activity_;
  std::unique_ptr<Backend> backend_;
  std::unique_ptr<StepNotes> notes_;  ///< null: nobody asks for notes
  kernels::StepValues step_{};
};

}  // namespace engine
