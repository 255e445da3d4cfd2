// Takes notes of the steps of a model for a report: on the objects, or on the tables where the
// model runs on them. Both give the same notes.
#pragma once

#include <vector>

#include "physics/flow_extremes.hpp"

class PhysicalModel;

/// What no state tells of the books of a cell, since the watch began, m.
struct UnseenDepth {
  double recovered = 0.0;  ///< lost by the soil as it recovered
  double lifted = 0.0;     ///< sediment that the limit at the bed rock created
};

class StepWatch {
 public:
  /// Begins with the present states; to be made before the first step, after the model is compiled.
  explicit StepWatch(PhysicalModel& model);

  const physics::StepNotes& notes() const { return notes_; }
  UnseenDepth unseen_depth(int cell) const;

  // What the step of a model tells, in this order; the first two where the objects run.
  void sources_come_next();
  void balance_comes_next();
  void step_is_done(double stable_step);

 private:
  void note_objects(double stable_step);
  int limiting_cell(double smallest) const;

  PhysicalModel& model_;
  physics::StepNotes notes_;
  std::vector<double> infiltrated_before_;  ///< of the cells, before their soil recovers, m
  std::vector<UnseenDepth> unseen_;         ///< of the cells; empty where the tables run
};
