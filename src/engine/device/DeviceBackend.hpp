// The parts of a step on a device, by its kernels. Machine is the device: Emulator, say. The host
// keeps the tables as well, since schedule and outputs read them: every step begins with a copy of
// the state to the device and ends with one from there.
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
#include "engine/device/DeviceTables.hpp"
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
  }

  /// Begins a step.
  void outer_fluxes(const std::vector<int>& patches, const kernels::StepValues& step) override {
    on_device_.take_state(tables_);
    not_hyperbolic_.reset();
    if (tables_.hll) return;  // every patch computes those around it
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
    list_.take(patches);
    soil_steps_.take(step.soil_steps);
    findings_.resize(patches.size());
    if (!tables_.hll) {
      tables_.has_bed ? launch_patches<true>(step) : launch_patches<false>(step);
    } else if (tables_.hll->second_order) {
      launch_hll<AdvanceHll2>(step);
    } else {
      tables_.has_bed ? launch_hll<AdvanceHll1<true>>(step) : launch_hll<AdvanceHll1<false>>(step);
    }
    give_notes(notes);
    return tell_findings(patches, step);
  }

  void note_maxima(const std::vector<int>& patches) override {
    if (!tables_.maxima || patches.empty()) return;
    on_device_.take_state(tables_);
    list_.take(patches);
    machine_.launch(NoteMaxima{on_device_.view(), list_.data(), maxima_values()}, patches.size());
    on_device_.give_maxima(tables_);
  }

  void finish_step(const Activity& activity) override {
    if (tables_.hll) {
      const std::vector<int>& resting = activity.gone_to_rest();
      list_.take(resting);
      machine_.launch(KeepStates{on_device_.view(), on_device_.hll_view().after, list_.data()},
                      resting.size());
      on_device_.take_states_after();
    }
    on_device_.give_state(tables_);
  }
  bool works_in_place() const override { return false; }
  std::optional<NotHyperbolic> not_hyperbolic() const override { return not_hyperbolic_; }
  void ignore_not_hyperbolic() override { watches_hyperbolicity_ = false; }

  int threads() const override { return machine_.threads(); }
  const char* instruction_set() const override { return machine_.name(); }

 private:
  template <class Value>
  using Array = typename Machine::template Array<Value>;

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
                             " are needed; QUILLMERE_ENGINE=tables runs them on the processor.");
  }

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

  /// What the threads of a block look for.
  FindingsInScratch findings_of(const Step& step, int threads) const {
    return {threads, step.notes != nullptr, watches_hyperbolicity_};
  }

  template <bool has_bed>
  void launch_patches(const Step& step) {
    PatchScratch room = room_;
    room.findings = findings_of(step, AdvancePatches<has_bed>::threads);
    machine_.launch(AdvancePatches<has_bed>{.tables = on_device_.view(),
                                            .patches = list_.data(),
                                            .step = on_device(step.values),
                                            .soil_steps = soil_steps_.data(),
                                            .maxima = maxima_values(),
                                            .notes = take_notes(step.notes),
                                            .room = room,
                                            .findings = findings_.data()},
                    findings_.size());
  }

  template <class Kernel>
  void launch_hll(const Step& step) {
    HllScratch room = room_of_hll_;
    room.findings = findings_of(step, Kernel::threads);
    machine_.launch(Kernel{{.tables = on_device_.view(),
                            .hll = on_device_.hll_view(),
                            .patches = list_.data(),
                            .values = on_device(step.values),
                            .soil_steps = soil_steps_.data(),
                            .maxima = maxima_values(),
                            .notes = take_notes(step.notes),
                            .room = room,
                            .findings = findings_.data()}},
                    findings_.size());
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
  HllScratch room_of_hll_ = {};
  bool watches_hyperbolicity_;
  std::optional<NotHyperbolic> not_hyperbolic_;

  Array<int> list_;  ///< patches of a launch
  Array<double> rain_depths_;
  Array<physics::SoilStep> soil_steps_;
  Array<double> recovered_, lifted_, taken_discharge_;
  Array<EdgeFound> edges_found_;
  Array<PatchFindings> findings_;
};

}  // namespace engine::device
