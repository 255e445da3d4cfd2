// What the kernels of the step of patches have in common, whatever the scheme; a block to a patch.
#pragma once

#include "engine/device/PatchFindings.hpp"
#include "engine/device/StepClock.hpp"
#include "engine/device/soil_demand.hpp"

namespace engine::device {

inline constexpr int threads_of_patch = 256;

/// What a kernel is told.
struct PatchStep {
  TableView tables;
  const char* takes_part;  ///< of the patches
  const char* among;       ///< the same: those that are meant; null: all
  const StepClock* clock;
  kernels::StepValues values;  ///< see present_values
  const physics::SoilStep* soil_steps;
  kernels::MaximaValues maxima;
  NotesView notes;
  FindingsInScratch looks_for;  ///< the threads of a block, with which its scratch begins
  PatchFindings* findings;      ///< of the patches
};

QM_HD inline bool is_computed(const PatchStep& step, int patch) {
  return !step.clock->halted && step.takes_part[patch] != 0 &&
         (step.among == nullptr || step.among[patch] != 0);
}

/// The scratch behind what the threads find.
template <class Scratch>
QM_HD inline Scratch behind_findings(const PatchStep& step, Scratch scratch) {
  return scratch + FindingsInScratch::words_of(step.looks_for);
}

/// What comes before all of cell k of a patch, at place i: its maxima, and the demand of its soil.
template <class Scratch>
QM_HD inline void begin_cell(const PatchStep& step, int i, bool has_soil, Scratch demand, int k) {
  if (step.tables.maxima.depth != nullptr) {
    kernels::note_state(step.tables.cells, step.tables.maxima, i,
                        at_time(step.maxima, step.clock->run.t));
  }
  if (has_soil) demand[k] = demand_of(step.tables, step.soil_steps, step.notes, i);
}

/// What the threads of a block have found, in two phases: by groups of threads, then together.
template <class Scratch>
QM_HD inline void unite_findings(const PatchStep& step, const Thread& thread, Scratch scratch) {
  FindingsInScratch::unite_group(step.looks_for, scratch, thread);
}
template <class Scratch>
QM_HD inline void tell_findings(const PatchStep& step, const Thread& thread, Scratch scratch) {
  if (thread.number > 0) return;
  step.findings[thread.block] = FindingsInScratch::of_groups(step.looks_for, scratch);
}

}  // namespace engine::device
