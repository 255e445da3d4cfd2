// The flow of a run: its steps and its states, whatever computes them.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "case/Case.hpp"
#include "engine/CellState.hpp"
#include "engine/State.hpp"
#include "engine/step_values.hpp"
#include "fields/Field.hpp"
#include "fields/Ground.hpp"
#include "fields/Rows.hpp"
#include "fields/looks.hpp"
#include "physics/flow_extremes.hpp"

namespace fields {

using engine::BoundaryInflow;
using engine::CellState;
using engine::StepTimes;

/// What becomes of the water and the bed of a cell without showing in its state, summed since the
/// steps are watched, m where not said otherwise.
struct UnseenDepth {
  double recovered = 0.0;        ///< lost by the soil as it recovered
  double lifted = 0.0;           ///< sediment that the limit at the bed rock created
  double taken_discharge = 0.0;  ///< sizes of what bounds of draining films took, m2/s
};

/// What the steps run on: the name of the path, the threads of each rank, the instruction set of
/// the first rank, and how many ranks there are. Of several: how often their cells were shared out
/// anew, and for how long steps kept the busiest of them busy over the mean of all.
struct ExecutionPath {
  const char* name;
  int threads;
  std::string instruction_set;
  int ranks = 1;
  int recuts = 0;
  double imbalance = 1.0;
  std::vector<std::string> ranks_run_on = {};  ///< of several, what each has as instruction set
};

/// What the rule of the time step takes for cells without water.
struct FlowScales {
  double h0;               ///< largest depth at the start, m
  double char_length_min;  ///< smallest characteristic length of a cell, m
};

/// Cells and boundaries are named by their numbers in the case.
class Flow {
 public:
  virtual ~Flow() = default;

  virtual FlowScales scales() const = 0;
  /// Stable step of the present states, at a time (s), before the Courant factor, s.
  virtual double stable_step(double t) = 0;
  /// Advances all cells by a step; the stable step of the new states, s.
  virtual double advance(const StepTimes& times) = 0;
  /// Where the flow can do so: steps that nobody sees, up to limits, at least one, after which the
  /// clock is set. False where steps have to go one by one.
  virtual bool advance_alone(engine::RunClock&, const engine::StepLimits&) { return false; }

  // Several ranks need no orders for steps between which nobody asks for anything.
  /// Before a step: up to a time (s) nothing but steps as the clock brings them is asked of the
  /// flow, whenever it takes no questions.
  virtual void leave_alone_until(double /*t*/) {}
  /// Whether anything but the next step may be asked of the flow: always, unless it was left alone
  /// or one of its ranks has failed.
  virtual bool takes_questions() const { return true; }

  /// The present values of a field, of the cells given.
  virtual void read(Field field, std::span<const cases::Number> cells,
                    std::span<double> values) const = 0;
  virtual CellState state(cases::Number cell) const = 0;
  /// What the run asks of the mesh of this case from now on: which must live as long, as must the
  /// flow.
  virtual std::unique_ptr<Ground> ground(const cases::Case& contents) const = 0;
  /// Looks at all cells at once, those of this case, from now on: which must live as long, as must
  /// the flow.
  virtual std::unique_ptr<Looks> looks(const cases::Case& contents) const = 0;
  /// The rows of a table of all cells of a mesh, which must live as long, as must the flow.
  virtual std::unique_ptr<Rows> rows(const cases::Mesh& mesh, const RowsRequest& request) const = 0;
  /// Rows of numbers of all cells, those of this case, which must live as long, as must the flow.
  virtual std::unique_ptr<ValueRows> value_rows(const cases::Case& contents) const = 0;
  /// The rows of what is kept of the flow between steps, which must outlive them.
  virtual std::unique_ptr<SavedRows> saved_rows() const = 0;
  /// Puts the state that was saved in force, see fields::fits(), of rows that come one behind the
  /// other. What `rows` throws comes out, and nothing has changed then.
  virtual void load(const SavedFlow& saved, utils::ByteSource& rows) = 0;
  /// The same of books: of the notes, of steps that are watched, and of what looks have seen.
  virtual void load_books(const SavedFlow& saved, bool has_notes, Looks& looks,
                          utils::ByteSource& rows) = 0;
  virtual ExecutionPath execution_path() const = 0;

  /// From now on the maxima of the flow are kept, with the states that steps begin with.
  /// `arrival_depth` (m): deeper cells are under water. To be called before the first step.
  virtual void keep_maxima(double arrival_depth) = 0;
  /// The present states count, too, at their time (s): the maxima to be read hold up to then.
  /// Without effect where none are kept.
  virtual void note_maxima(double t) = 0;

  /// From now on every step takes notes for a report. To be called before the first step.
  virtual void watch() = 0;
  virtual const physics::StepNotes& notes() const = 0;
};

}  // namespace fields
