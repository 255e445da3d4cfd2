// What the patches note of a step for a report, while their cells are in cache.
#pragma once

#include <array>
#include <functional>
#include <vector>

#include "engine/Exchange.hpp"
#include "physics/flow_extremes.hpp"

namespace engine {

/// What becomes of the water and the bed of a cell without showing in its state, summed since the
/// notes began, m.
struct UnseenDepths {
  double recovered;  ///< lost by the soil as it recovered
  double lifted;     ///< sediment that the limit at the bed rock created
  /// Sizes of what the bound of draining films took of the unit discharge, m2/s.
  double taken_discharge;
};

/// The notes name cells by their numbers in the whole case.
class StepNotes {
 public:
  explicit StepNotes(const Tables& tables);

  /// What this rank tells of the present states, before the first step. It is told their stable
  /// step over all ranks (s), and the place of the cell whose boundary bounds it (-1: none does).
  NotedStep of_present(const Tables& tables, double stable_step, int place_of_bound) const;

  // What a backend writes while it computes a patch.
  std::vector<physics::FlowExtremes> extremes;  ///< per patch
  /// Per patch: the smallest step of its cells where it may be that of all, else unbounded, s.
  std::vector<double> smallest_steps;
  /// Per cell, see UnseenDepths; empty without soils, sediments, or an HLL scheme.
  Column recovered, lifted, taken_discharge;

  /// To be called before the states of the cells at places are read: they may be elsewhere.
  using BringHome = std::function<void(const Range& places)>;
  /// What this rank tells of a step that computed these patches and found this minimum, whose step
  /// the boundary of the cell at a place bounds (-1: none does).
  NotedStep of_step(const Tables& tables, const std::vector<int>& patches,
                    const StepMinimum& minimum, int place_of_bound,
                    const BringHome& bring_home) const;
  /// Goes on from what all ranks have told.
  void take(const NotedStep& of_all);
  /// Goes on from the notes of an earlier run, or in other states.
  void set_last_step(const physics::StepNotes& notes) { take({.notes = notes}); }
  const physics::StepNotes& of_last_step() const { return notes_; }
  /// The present state of a cell that the last step has told: of the one that set it, and of those
  /// whose records were new. Null: of others.
  const CellState* told_state(int cell) const;
  UnseenDepths unseen_depths(int place) const;
  /// Place of the cell that set the last step; -1 where it is not here, or there is none.
  int limiting_place(const Tables& tables) const;

 private:
  int limiting_cell(const Tables& tables, const std::vector<int>& patches, double smallest,
                    const BringHome& bring_home) const;
  void note_record(const Tables& tables, const std::vector<int>& patches,
                   physics::FlowRecord& record, double physics::FlowExtremes::*value,
                   const BringHome& bring_home) const;
  /// Where the cell is here.
  NotedState state_of(const Tables& tables, int cell, const BringHome& bring_home) const;
  /// The lowest number of a cell whose place is meant in a patch that qualifies; -1
  /// without one.
  template <class Qualifies, class IsMeant>
  int first_cell(const Tables& tables, const std::vector<int>& patches, const Qualifies& qualifies,
                 const IsMeant& is_meant, const BringHome& bring_home) const;

  physics::StepNotes notes_;
  std::array<NotedState, 3> told_;
  std::vector<int> cell_at_place_;
};

}  // namespace engine
