// The parts of a step on a device, by its kernels. Machine is the device: Emulator, say. States
// stay on the device while it steps by itself; the host keeps the tables as well, for whoever looks
// at them between steps.
#pragma once

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "engine/Backend.hpp"
#include "engine/device/AdvanceHll1.hpp"
#include "engine/device/AdvanceHll2.hpp"
#include "engine/device/AdvancePatches.hpp"
#include "engine/device/DeviceForcing.hpp"
#include "engine/device/DeviceTables.hpp"
#include "engine/device/EndStep.hpp"
#include "engine/device/FindActive.hpp"
#include "engine/device/KeepStates.hpp"
#include "engine/device/NoteMaxima.hpp"
#include "engine/device/OuterFluxes.hpp"

namespace engine::device {

/// What the largest patch takes of its scratch, without what the threads find in it.
inline PatchScratch room_of(const Tables& tables) {
  PatchScratch room = {};
  for (const Patch& patch : tables.patches.patches) {
    room.slots = std::max(room.slots, patch.empty_slot() + 1);
    room.cells = std::max(room.cells, patch.cells.size());
  }
  if (!tables.soils.empty()) room.demands = room.cells;
  return room;
}

template <class Machine>
class DeviceBackend : public Backend {
 public:
  /// Works on the tables, which must outlive it. Throws std::runtime_error where the machine has
  /// too little scratch for a patch.
  DeviceBackend(Tables& tables, Machine machine)
      : tables_(tables),
        machine_(std::move(machine)),
        on_device_(tables),
        room_(room_of(tables)),
        watches_hyperbolicity_(tables.has_bed && !tables.hll) {
    if (tables.hll) room_of_hll_ = room_of(*tables.hll, !tables.soils.empty());
    require_scratch();
    findings_.take(std::vector<PatchFindings>(patch_count()));
    edges_found_.take(std::vector<EdgeFound>(patch_count()));
  }

  /// Begins a step.
  void outer_fluxes(const std::vector<int>& patches, const kernels::StepValues& step) override {
    bring_to_device();
    on_device_.take_boundaries(tables_);
    not_hyperbolic_.reset();
    set_clock(step);
    if (tables_.hll) return;  // every patch computes those around it
    takes_part_.take(marks_of(patches));
    constexpr bool around = false;
    launch_outer_fluxes(step, around);
    std::vector<EdgeFound> found(watches_hyperbolicity_ ? patch_count() : 0);
    edges_found_.give(found);
    for (const int p : patches) {
      if (watches_hyperbolicity_) note(found[at(p)]);
    }
  }

  double advance(const std::vector<int>& patches, const kernels::StepValues& values,
                 const std::vector<physics::SoilStep>& soil_steps, Activity& activity,
                 StepNotes* notes) override {
    const Step step = {values, soil_steps, activity, notes};
    takes_part_.take(marks_of(patches));
    soil_steps_.take(step.soil_steps);
    launch_patches(on_device(values), soil_steps_.data(), take_notes(notes));
    give_notes(notes);
    return tell_findings(patches, step);
  }

  void note_maxima(const std::vector<int>& patches) override {
    if (!tables_.maxima || patches.empty()) return;
    bring_to_device();
    set_clock({});
    goes_to_rest_.take(marks_of(patches));
    launch_note_maxima();
    on_device_.give_maxima(tables_);
  }

  void finish_step(const Activity& activity) override {
    if (tables_.hll) {
      goes_to_rest_.take(marks_of(activity.gone_to_rest()));
      launch_keep_states();
    }
    on_device_.give_state(tables_);
  }
  bool works_in_place() const override { return false; }
  std::optional<NotHyperbolic> not_hyperbolic() const override { return not_hyperbolic_; }
  void ignore_not_hyperbolic() override { watches_hyperbolicity_ = false; }

  bool can_go_alone() const override { return true; }
  void advance_alone(Forcing& forcing, Activity& activity, const kernels::StepValues& constants,
                     const StepLimits& limits, RunClock& clock) override {
    bring_to_device();
    on_device_.take_boundaries(tables_);
    forcing_.take(forcing.tables(tables_), tables_.soils.size());
    take_activity(activity);
    is_home_ = false;
    at_home_.clear();
    StepClock now = {};
    now.run = clock;
    now.till = limits;
    do {
      clock_.take({&now, 1});
      const long steps_before = now.run.steps;
      const long launched = std::clamp(limits.last_step - steps_before, 1L, steps_at_once);
      for (long k = 0; k < launched; ++k) launch_step(constants);
      clock_.give({&now, 1});
      // Every launch has exchanged the states, also those that found the clock halted.
      const long computed = now.run.steps - steps_before;
      if (tables_.hll && (launched - computed) % 2 != 0) on_device_.take_states_after();
    } while (!now.halted);
    clock = now.run;
    not_hyperbolic_.reset();
    note(now.not_hyperbolic);
    if (tables_.maxima) tables_.maxima->t = clock.begun;
    forcing_.give_rain_clocks(forcing.rain_clocks());
    give_activity(activity);
  }

  void bring_home() override {
    if (is_home_) return;
    on_device_.give_state(tables_);
    is_home_ = true;
  }
  void bring_home(const Column& column) override {
    const bool is_there = std::find(at_home_.begin(), at_home_.end(), &column) != at_home_.end();
    if (is_home_ || is_there) return;
    on_device_.give_column(tables_, column);
    at_home_.push_back(&column);
  }
  void take_anew() override { is_on_device_ = false; }

  int threads() const override { return machine_.threads(); }
  const char* instruction_set() const override { return machine_.name(); }

 private:
  template <class Value>
  using Array = typename Machine::template Array<Value>;

  /// Steps that are launched before the host asks whether they have halted.
  static constexpr long steps_at_once = 32;

  std::size_t patch_count() const { return tables_.patches.patches.size(); }

  void bring_to_device() {
    if (is_on_device_) return;
    on_device_.take_state(tables_);
    is_on_device_ = true;
  }

  std::vector<char> marks_of(const std::vector<int>& patches) const {
    std::vector<char> marks(patch_count(), 0);
    for (const int p : patches) marks[at(p)] = 1;
    return marks;
  }

  /// What a step takes at most, in 8 bytes each.
  int most_scratch_words() const {
    PatchScratch room = room_;
    HllScratch of_hll = room_of_hll_;
    room.findings = of_hll.findings = {AdvancePatches<true>::threads, true, watches_hyperbolicity_};
    if (!tables_.hll) {
      return tables_.has_bed ? AdvancePatches<true>::words_of(room)
                             : AdvancePatches<false>::words_of(room);
    }
    if (tables_.hll->second_order) return AdvanceHll2::words_of(of_hll);
    return tables_.has_bed ? AdvanceHll1<true>::words_of(of_hll)
                           : AdvanceHll1<false>::words_of(of_hll);
  }
  void require_scratch() const {
    const std::size_t bytes = at(most_scratch_words()) * sizeof(double);
    if (bytes <= machine_.scratch_bytes()) return;
    throw std::runtime_error("Error. The device has " + std::to_string(machine_.scratch_bytes()) +
                             " bytes of scratch, but some cells have so many edges that " +
                             std::to_string(bytes) +
                             " are needed; the processor can run them.");
  }

  kernels::MaximaValues maxima_values() const {
    if (!tables_.maxima) return {};
    return {0.0, tables_.zero_depth, tables_.maxima->arrival_depth};
  }

  /// The clock of a step that the host has begun.
  void set_clock(const kernels::StepValues& step) {
    StepClock now = {};
    now.run.t = tables_.maxima ? tables_.maxima->t : 0.0;
    now.run.dt = step.dt;
    now.it_rains = step.rain_depths != nullptr;
    clock_.take({&now, 1});
  }

  /// The same values with rain in the memory of the device.
  kernels::StepValues on_device(kernels::StepValues step) {
    if (step.rain_depths == nullptr) return step;
    rain_depths_.take({step.rain_depths, on_device_.rain_numbers()});
    step.rain_depths = rain_depths_.data();
    return step;
  }

  /// What the threads of a block look for.
  FindingsInScratch findings_of(const NotesView& notes, int threads) const {
    return {threads, notes.are_taken, watches_hyperbolicity_};
  }

  void launch_step(const kernels::StepValues& constants) {
    const ForcingView forcing = forcing_.view();
    kernels::StepValues values = constants;
    values.rain_depths = forcing.rain_depths;
    machine_.launch(BeginStep{on_device_.view(), forcing, on_device_.boundaries(),
                              tables_.hll.has_value(), clock_.data()},
                    1);
    machine_.launch(
        FindActive{.tables = on_device_.view(),
                   .activity = {always_active_.data(), has_rain_.data(), on_device_.neighbours(),
                                takes_part_.data(), goes_to_rest_.data(), findings_.data()},
                   .patches = static_cast<int>(patch_count()),
                   .zero_depth = tables_.zero_depth,
                   .clock = clock_.data()},
        FindActive::blocks_for(patch_count()));
    if (tables_.maxima) launch_note_maxima();
    constexpr bool around = true;
    if (!tables_.hll) launch_outer_fluxes(values, around);
    launch_patches(values, forcing.soil_steps, {});
    if (tables_.hll) launch_keep_states();
    machine_.launch(EndStep{.tables = on_device_.view(),
                            .forcing = forcing,
                            .takes_part = takes_part_.data(),
                            .findings = findings_.data(),
                            .edges_found = watches_hyperbolicity_ ? edges_found_.data() : nullptr,
                            .patches = static_cast<int>(patch_count()),
                            .is_hll = tables_.hll.has_value(),
                            .dry_step = tables_.dry_step,
                            .char_length_min = tables_.char_length_min,
                            .clock = clock_.data()},
                    1);
  }

  /// Of the patches that are marked to go to rest.
  void launch_note_maxima() {
    machine_.launch(
        NoteMaxima{on_device_.view(), goes_to_rest_.data(), clock_.data(), maxima_values()},
        patch_count());
  }
  void launch_keep_states() {
    machine_.launch(KeepStates{on_device_.view(), on_device_.hll_view().after, goes_to_rest_.data(),
                               clock_.data()},
                    patch_count());
    on_device_.take_states_after();
  }

  void launch_outer_fluxes(const kernels::StepValues& step, bool around) {
    tables_.has_bed ? launch_outer_fluxes<true>(step, around)
                    : launch_outer_fluxes<false>(step, around);
  }
  template <bool has_bed>
  void launch_outer_fluxes(const kernels::StepValues& step, bool around) {
    machine_.launch(
        OuterFluxes<has_bed>{.tables = on_device_.view(),
                             .takes_part = takes_part_.data(),
                             .around = around,
                             .neighbours = on_device_.neighbours(),
                             .clock = clock_.data(),
                             .step = step,
                             .found = watches_hyperbolicity_ ? edges_found_.data() : nullptr},
        patch_count());
  }

  void launch_patches(const kernels::StepValues& values, const physics::SoilStep* soil_steps,
                      const NotesView& notes) {
    if (!tables_.hll) {
      tables_.has_bed ? launch_patches<true>(values, soil_steps, notes)
                      : launch_patches<false>(values, soil_steps, notes);
    } else if (tables_.hll->second_order) {
      launch_hll<AdvanceHll2>(values, soil_steps, notes);
    } else {
      tables_.has_bed ? launch_hll<AdvanceHll1<true>>(values, soil_steps, notes)
                      : launch_hll<AdvanceHll1<false>>(values, soil_steps, notes);
    }
  }

  template <bool has_bed>
  void launch_patches(const kernels::StepValues& values, const physics::SoilStep* soil_steps,
                      const NotesView& notes) {
    PatchScratch room = room_;
    room.findings = findings_of(notes, AdvancePatches<has_bed>::threads);
    machine_.launch(AdvancePatches<has_bed>{.tables = on_device_.view(),
                                            .takes_part = takes_part_.data(),
                                            .clock = clock_.data(),
                                            .step = values,
                                            .soil_steps = soil_steps,
                                            .maxima = maxima_values(),
                                            .notes = notes,
                                            .room = room,
                                            .findings = findings_.data()},
                    patch_count());
  }

  template <class Kernel>
  void launch_hll(const kernels::StepValues& values, const physics::SoilStep* soil_steps,
                  const NotesView& notes) {
    HllScratch room = room_of_hll_;
    room.findings = findings_of(notes, Kernel::threads);
    machine_.launch(Kernel{{.tables = on_device_.view(),
                            .hll = on_device_.hll_view(),
                            .takes_part = takes_part_.data(),
                            .clock = clock_.data(),
                            .values = values,
                            .soil_steps = soil_steps,
                            .maxima = maxima_values(),
                            .notes = notes,
                            .room = room,
                            .findings = findings_.data()}},
                    patch_count());
  }

  NotesView take_notes(const StepNotes* notes) {
    if (notes == nullptr) return {};
    recovered_.take(notes->recovered);
    lifted_.take(notes->lifted);
    taken_discharge_.take(notes->taken_discharge);
    return {true, recovered_.data(), lifted_.data(), taken_discharge_.data()};
  }
  void give_notes(StepNotes* notes) const {
    if (notes == nullptr) return;
    recovered_.give(notes->recovered);
    lifted_.give(notes->lifted);
    taken_discharge_.give(notes->taken_discharge);
  }

  /// Tells the schedule what the patches found; their smallest step, s.
  double tell_findings(const std::vector<int>& patches, const Step& step) {
    if (patches.empty()) return physics::unbounded_step;
    std::vector<PatchFindings> findings(patch_count());
    findings_.give(findings);
    double smallest = physics::unbounded_step;
    for (const int p : patches) {
      const PatchFindings& of_patch = findings[at(p)];
      smallest = physics::smaller(smallest, of_patch.smallest_step);
      step.activity.set_can_change(p, of_patch.changing_cells > 0);
      note(of_patch.not_hyperbolic);
      if (step.notes == nullptr) continue;
      step.notes->smallest_steps[at(p)] = of_patch.smallest_step;
      step.notes->extremes[at(p)] = of_patch.extremes;
    }
    return smallest;
  }

  void note(const EdgeFound& found) {
    if (found.edge == HUGE_VAL) return;
    const int edge = static_cast<int>(found.edge);
    if (not_hyperbolic_ && not_hyperbolic_->edge <= edge) return;
    not_hyperbolic_ = {edge, static_cast<int>(found.place), found.h, found.qx, found.qy};
  }

  void take_activity(const Activity& activity) {
    takes_part_.take(activity.marks());
    always_active_.take(activity.always_active());
    has_rain_.take(activity.with_rain());
    goes_to_rest_.resize(patch_count());
    std::vector<PatchFindings> findings(patch_count());
    for (std::size_t p = 0; p < findings.size(); ++p) {
      findings[p].changing_cells = activity.can_change(static_cast<int>(p)) ? 1 : 0;
    }
    findings_.take(findings);
    edges_found_.take(std::vector<EdgeFound>(patch_count()));
  }
  void give_activity(Activity& activity) const {
    std::vector<char> marks(patch_count()), can_change(patch_count());
    std::vector<PatchFindings> findings(patch_count());
    takes_part_.give(marks);
    findings_.give(findings);
    for (std::size_t p = 0; p < findings.size(); ++p) {
      can_change[p] = findings[p].changing_cells > 0;
    }
    activity.set(std::move(marks), std::move(can_change));
  }

  Tables& tables_;
  Machine machine_;
  DeviceTables<Machine> on_device_;
  DeviceForcing<Machine> forcing_;
  PatchScratch room_;
  HllScratch room_of_hll_ = {};
  bool watches_hyperbolicity_;
  bool is_on_device_ = false;           ///< the state of the host, or a later one
  bool is_home_ = true;                 ///< the host has the state of the device, or a later one
  std::vector<const Column*> at_home_;  ///< those that are there where not all is
  std::optional<NotHyperbolic> not_hyperbolic_;

  Array<StepClock> clock_;                 ///< one
  Array<char> takes_part_, goes_to_rest_;  ///< of the patches
  Array<char> always_active_, has_rain_;   ///< the same
  Array<PatchFindings> findings_;          ///< the same
  Array<EdgeFound> edges_found_;           ///< the same, of outer fluxes
  Array<double> rain_depths_;              ///< of a step of the host, m
  Array<physics::SoilStep> soil_steps_;    ///< the same
  Array<double> recovered_, lifted_, taken_discharge_;
};

}  // namespace engine::device
