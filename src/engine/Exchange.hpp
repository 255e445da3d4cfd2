// What a step asks of the other ranks that compute parts of the same case.
#pragma once

#include <array>
#include <cmath>
#include <vector>

#include "engine/Tables.hpp"
#include "physics/flow_extremes.hpp"
#include "physics/stable_step.hpp"

namespace engine {

/// What all ranks agree on in a step: the smallest of each value.
struct StepMinimum {
  double step = physics::unbounded_step;  ///< stable step before the Courant factor, s
  double stop = 0.0;                      ///< below 0: a rank asks to end the run
  double pause = HUGE_VAL;  ///< time up to which no rank asks for anything but steps, s
  /// Number of the first edge on which the coupled system of water and bed is not hyperbolic.
  double not_hyperbolic = HUGE_VAL;
};

inline StepMinimum smallest_of(const StepMinimum& a, const StepMinimum& b) {
  return {physics::smaller(a.step, b.step), physics::smaller(a.stop, b.stop),
          physics::smaller(a.pause, b.pause), physics::smaller(a.not_hyperbolic, b.not_hyperbolic)};
}

/// Notes of two sets of cells as those of one. Of cells that set the step alike it is the one that
/// did before that counts, or else the one with the lowest number.
inline physics::StepNotes united(const physics::StepNotes& a, const physics::StepNotes& b,
                                 int limited_before) {
  const auto lower = [](int i, int j) { return i < 0 || (j >= 0 && j < i) ? j : i; };
  const auto record = [&](const physics::FlowRecord& x, const physics::FlowRecord& y) {
    if (x.value == y.value) return physics::FlowRecord{x.value, lower(x.cell, y.cell)};
    return x.value > y.value ? x : y;
  };
  const bool is_as_before = a.limiting_cell == limited_before || b.limiting_cell == limited_before;
  return {limited_before >= 0 && is_as_before ? limited_before
                                              : lower(a.limiting_cell, b.limiting_cell),
          record(a.speed_squared, b.speed_squared),
          record(a.speed_squared_per_depth, b.speed_squared_per_depth), a.not_finite + b.not_finite,
          a.films + b.films};
}

/// The state of a cell, by its number in the whole case; -1: of none.
struct NotedState {
  int cell = -1;
  CellState state = {};
};

/// What a rank tells of a step of which notes are taken.
struct NotedStep {
  StepMinimum minimum = {};
  physics::StepNotes notes = {};  ///< with the cell that sets the step of the minimum
  int limited_before = -1;        ///< the cell that set the step before
  /// Of that cell, and of those whose records are new.
  std::array<NotedState, 3> states = {};

  /// The cells that the states would be of.
  std::array<int, 3> cells() const {
    return {notes.limiting_cell, notes.speed_squared.cell, notes.speed_squared_per_depth.cell};
  }
};

/// Those of two sets of cells as that of one.
inline NotedStep united(const NotedStep& a, const NotedStep& b) {
  NotedStep both = {smallest_of(a.minimum, b.minimum), {}, a.limited_before, {}};
  const auto notes_of = [&](const NotedStep& step) {
    physics::StepNotes notes = step.notes;
    if (step.minimum.step != both.minimum.step) notes.limiting_cell = -1;
    return notes;
  };
  both.notes = united(notes_of(a), notes_of(b), a.limited_before);
  const std::array<int, 3> cells = both.cells();
  for (std::size_t k = 0; k < cells.size(); ++k) {
    for (const NotedStep* const step : {&a, &b}) {
      if (step->states[k].cell == cells[k]) both.states[k] = step->states[k];
    }
  }
  return both;
}

/// The cells of the halo, by their numbers in the part of a rank, as messages have them: those of
/// the first neighbour, then those of the next.
struct HaloCells {
  std::vector<cases::Number> sent, received;
};

/// Their values: all columns of the first cell, then those of the next. In the memory of the host,
/// or of a card.
struct PackedHalo {
  const double* sent;
  double* received;
  int columns;

  bool operator==(const PackedHalo&) const = default;
};

/// Every rank calls the same functions in the same order, each start before its finish.
class Exchange {
 public:
  virtual ~Exchange() = default;

  virtual const HaloCells& halo() const = 0;
  /// Whether a halo may lie in the memory of a card.
  virtual bool takes_memory_of_card() const = 0;
  /// Sends what is sent of a halo and fills what is received, which nobody else may touch before
  /// finish_halo() is over.
  virtual void start_halo(const PackedHalo& packed) = 0;
  virtual void finish_halo() = 0;
  virtual void start_minimum(const StepMinimum& own) = 0;
  virtual StepMinimum finish_minimum() = 0;
  /// The same in a step of which notes are taken, see united.
  virtual void start_uniting(const NotedStep& own) = 0;
  virtual NotedStep finish_uniting() = 0;
};

/// One rank has the whole case.
class Alone final : public Exchange {
 public:
  const HaloCells& halo() const override { return none_; }
  bool takes_memory_of_card() const override { return true; }
  void start_halo(const PackedHalo&) override {}
  void finish_halo() override {}
  void start_minimum(const StepMinimum& own) override { own_.minimum = own; }
  StepMinimum finish_minimum() override { return own_.minimum; }
  void start_uniting(const NotedStep& own) override { own_ = own; }
  NotedStep finish_uniting() override { return own_; }

 private:
  HaloCells none_;
  NotedStep own_;
};

/// Calls visit(column) for what changes of a cell and its neighbours read. The free surface is
/// among it as long as it is given; the bed follows from its sediment.
template <class Visit>
void for_each_halo_column(CellTable& cells, const Visit& visit) {
  for (Column* column : {&cells.h, &cells.qx, &cells.qy, &cells.eta, &cells.hs, &cells.qsx,
                         &cells.qsy, &cells.dqs_dh}) {
    if (!column->empty()) visit(*column);
  }
}

}  // namespace engine
