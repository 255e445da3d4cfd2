// The parts of a step on a device, by its kernels. Machine is the device: Emulator, say. The host
// keeps the tables as well, since schedule and outputs read them: every step begins with a copy of
// the state to the device and ends with one from there.
#pragma once

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "engine/Backend.hpp"
#include "engine/device/AdvancePatches.hpp"
#include "engine/device/DeviceTables.hpp"
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
  /// Works on the tables, which must outlive it.
  DeviceBackend(Tables& tables, Machine machine)
      : tables_(tables),
        machine_(std::move(machine)),
        on_device_(tables),
        room_(room_of(tables)),
        watches_hyperbolicity_(tables.has_bed) {}

  /// Begins a step.
  void outer_fluxes(const std::vector<int>& patches, const kernels::StepValues& step) override {
    on_device_.take_state(tables_);
    not_hyperbolic_.reset();
    if (tables_.has_bed) {
      launch_outer_fluxes<true>(patches, step);
    } else {
      launch_outer_fluxes<false>(patches, step);
    }
  }

  double advance(const std::vector<int>& patches, const kernels::StepValues& values,
                 const std::vector<physics::SoilStep>& soil_steps, Activity& activity,
                 StepNotes* notes) override {
    const Step step = {values, soil_steps, activity, notes};
    return tables_.has_bed ? launch_patches<true>(patches, step)
                           : launch_patches<false>(patches, step);
  }

  void note_maxima(const std::vector<int>& patches) override {
    if (!tables_.maxima || patches.empty()) return;
    on_device_.take_state(tables_);
    list_.take(patches);
    machine_.launch(NoteMaxima{on_device_.view(), list_.data(), maxima_values()}, patches.size());
    on_device_.give_maxima(tables_);
  }

  void finish_step(const Activity&) override { on_device_.give_state(tables_); }
  bool works_in_place() const override { return false; }
  std::optional<NotHyperbolic> not_hyperbolic() const override { return not_hyperbolic_; }
  void ignore_not_hyperbolic() override { watches_hyperbolicity_ = false; }

  int threads() const override { return machine_.threads(); }
  const char* instruction_set() const override { return Machine::name; }

 private:
  template <class Value>
  using Array = typename Machine::template Array<Value>;

  kernels::MaximaValues maxima_values() const {
    if (!tables_.maxima) return {};
    return {tables_.maxima->t, tables_.zero_depth, tables_.maxima->arrival_depth};
  }

  /// The same values with rain in the memory of the device.
  kernels::StepValues on_device(kernels::StepValues step) {
    if (step.rain_depths == nullptr) return step;
    const auto& rain = tables_.cells.rain;
    const std::size_t rains = 1 + at(*std::max_element(rain.begin(), rain.end()));
    rain_depths_.take({step.rain_depths, rains});
    step.rain_depths = rain_depths_.data();
    return step;
  }

  template <bool has_bed>
  void launch_outer_fluxes(const std::vector<int>& patches, const kernels::StepValues& step) {
    list_.take(patches);
    edges_found_.resize(watches_hyperbolicity_ ? patches.size() : 0);
    machine_.launch(OuterFluxes<has_bed>{.tables = on_device_.view(),
                                         .patches = list_.data(),
                                         .step = on_device(step),
                                         .found = edges_found_.data()},
                    patches.size());
    std::vector<EdgeFound> found(edges_found_.size());
    edges_found_.give(found);
    for (const EdgeFound& of_patch : found) note(of_patch);
  }

  template <bool has_bed>
  double launch_patches(const std::vector<int>& patches, const Step& step) {
    list_.take(patches);
    soil_steps_.take(step.soil_steps);
    findings_.resize(patches.size());
    PatchScratch room = room_;
    room.findings = {AdvancePatches<has_bed>::threads, step.notes != nullptr,
                     watches_hyperbolicity_};
    machine_.launch(AdvancePatches<has_bed>{.tables = on_device_.view(),
                                            .patches = list_.data(),
                                            .step = on_device(step.values),
                                            .soil_steps = soil_steps_.data(),
                                            .maxima = maxima_values(),
                                            .notes = take_notes(step.notes),
                                            .room = room,
                                            .findings = findings_.data()},
                    patches.size());
    give_notes(step.notes);
    return tell_findings(patches, step);
  }

  NotesView take_notes(const StepNotes* notes) {
    if (notes == nullptr) return {};
    recovered_.take(notes->recovered);
    lifted_.take(notes->lifted);
    return {true, recovered_.data(), lifted_.data()};
  }
  void give_notes(StepNotes* notes) const {
    if (notes == nullptr) return;
    recovered_.give(notes->recovered);
    lifted_.give(notes->lifted);
  }

  /// Tells the schedule what the patches found; their smallest step, s.
  double tell_findings(const std::vector<int>& patches, const Step& step) {
    std::vector<PatchFindings> findings(patches.size());
    findings_.give(findings);
    double smallest = physics::unbounded_step;
    for (std::size_t k = 0; k < patches.size(); ++k) {
      const PatchFindings& of_patch = findings[k];
      smallest = physics::smaller(smallest, of_patch.smallest_step);
      step.activity.set_can_change(patches[k], of_patch.changing_cells > 0);
      note(of_patch.not_hyperbolic);
      if (step.notes == nullptr) continue;
      step.notes->smallest_steps[at(patches[k])] = of_patch.smallest_step;
      step.notes->extremes[at(patches[k])] = of_patch.extremes;
    }
    return smallest;
  }

  void note(const EdgeFound& found) {
    if (found.edge == HUGE_VAL) return;
    const int edge = static_cast<int>(found.edge);
    if (not_hyperbolic_ && not_hyperbolic_->edge <= edge) return;
    not_hyperbolic_ = {edge, static_cast<int>(found.place), found.h, found.qx, found.qy};
  }

  Tables& tables_;
  Machine machine_;
  DeviceTables<Machine> on_device_;
  PatchScratch room_;
  bool watches_hyperbolicity_;
  std::optional<NotHyperbolic> not_hyperbolic_;

  Array<int> list_;  ///< patches of a launch
  Array<double> rain_depths_;
  Array<physics::SoilStep> soil_steps_;
  Array<double> recovered_, lifted_;
  Array<EdgeFound> edges_found_;
  Array<PatchFindings> findings_;
};

}  // namespace engine::device
