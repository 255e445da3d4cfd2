// Takes notes of the steps of the objects for a report.
#pragma once

#include <vector>

#include "fields/Flow.hpp"
#include "model/PhysicalModel.hpp"

namespace fields {

class StepWatch : public StepObserver {
 public:
  /// Begins with the present states; to be made before the first step.
  explicit StepWatch(PhysicalModel& model);

  const physics::StepNotes& notes() const { return notes_; }
  UnseenDepth unseen_depth(cases::Number cell) const { return unseen_[cases::at(cell)]; }

  /// Goes on from the notes of an earlier run.
  void set_notes(const physics::StepNotes& notes) { notes_ = notes; }
  void set_unseen_depth(cases::Number cell, const UnseenDepth& depth) {
    unseen_[cases::at(cell)] = depth;
  }

  void sources_come_next() override;
  void balance_comes_next() override;
  /// The step is done; `stable_step` (s) is that of the new states.
  void note_states(double stable_step);

 private:
  int limiting_cell(double smallest) const;

  PhysicalModel& model_;
  physics::StepNotes notes_;
  std::vector<double> infiltrated_before_;  ///< of the cells, before their soil recovers, m
  std::vector<UnseenDepth> unseen_;         ///< of the cells
};

}  // namespace fields
