// The steps of a device, by its kernels. Machine is the device: Emulator, say. States stay on the
// device; the host keeps the tables as well, for whoever looks at them between steps.
#pragma once

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <numeric>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "engine/device/CellCopies.hpp"
#include "engine/device/DeviceActivity.hpp"
#include "engine/device/DeviceForcing.hpp"
#include "engine/device/DeviceHalo.hpp"
#include "engine/device/DeviceNotes.hpp"
#include "engine/device/DeviceSteps.hpp"
#include "engine/device/DeviceTables.hpp"
#include "engine/device/EndStep.hpp"
#include "engine/device/KeepStates.hpp"
#include "engine/device/NoteMaxima.hpp"
#include "engine/device/OuterFluxes.hpp"
#include "engine/device/PatchKernels.hpp"

namespace engine::device {

template <class Machine>
class DeviceBackend : public DeviceSteps {
 public:
  /// Works on what the host has of a run, which must outlive it. Throws std::runtime_error where
  /// the machine has too little scratch for a patch.
  DeviceBackend(Tables& tables, Forcing& forcing, Activity& activity, const Exchange& exchange,
                Machine machine)
      : tables_(tables),
        forcing_(forcing),
        activity_(activity),
        machine_(std::move(machine)),
        kernels_(tables),
        on_device_(tables),
        activity_on_device_(tables),
        halo_(tables, exchange),
        name_(name_of(machine_, halo_)),
        cells_with_levels_(cells_with_levels(tables)),
        watches_hyperbolicity_(tables.has_bed && !tables.hll) {
    require_scratch();
  }

  void advance_alone(const kernels::StepValues& constants, const StepLimits& limits,
                     RunClock& clock) override {
    begin(nullptr);
    StepClock now = {};
    now.run = clock;
    now.till = limits;
    do {
      clock_.take({&now, 1});
      const long steps_before = now.run.steps;
      const long launched = std::clamp(limits.last_step - steps_before, 1L, steps_at_once);
      constexpr bool is_alone = true;
      for (long k = 0; k < launched; ++k) launch_step(constants, is_alone);
      clock_.give({&now, 1});
      // Every launch has exchanged the states, also those that found the clock halted.
      const long computed = now.run.steps - steps_before;
      if (tables_.hll && (launched - computed) % 2 != 0) on_device_.take_states_after();
    } while (!now.halted);
    clock = now.run;
    note(now.not_hyperbolic);
    if (tables_.maxima) tables_.maxima->t = clock.begun;
    activity_on_device_.give_marks(activity_);
  }

  void start_step(const StepTimes& times, const kernels::StepValues& constants,
                  StepNotes* notes) override {
    begin(notes);
    if (tables_.maxima) tables_.maxima->t = times.t;
    StepClock now = {};
    now.run.t = times.t;
    now.run.dt = times.dt;
    now.till = {.t_start = times.t_start,
                .t_end = times.t_end,
                .t_stop = HUGE_VAL,
                .last_step = 1,
                .smallest_step = 0.0,
                .cfl = 1.0,
                .advances_by_new_step = false};
    clock_.take({&now, 1});
    constexpr bool is_alone = false;
    launch_step(constants, is_alone);
  }
  PackedHalo packed_halo() override { return halo_.packed(); }
  double finish_step() override {
    StepClock now = {};
    clock_.give({&now, 1});
    note(now.not_hyperbolic);
    activity_on_device_.give_marks(activity_);
    if (StepNotes* const notes = notes_.of_host()) {
      activity_on_device_.give_notes(activity_, *notes);
    }
    if (tables_.hll && tables_.has_bed) bring_levels_home();
    return now.smallest_step;
  }
  void take_ghosts() override {
    halo_.take(on_device_.laid_bed(tables_), machine_);
    if (tables_.cells.eta.empty()) on_device_.drop_given_surface();
  }

  void note_maxima(const std::vector<int>& patches) override {
    if (!tables_.maxima || patches.empty()) return;
    bring_to_device();
    StepClock now = {};
    now.run.t = tables_.maxima->t;
    clock_.take({&now, 1});
    std::vector<char> marks(patch_count(), 0);
    for (const int p : patches) marks[at(p)] = 1;
    marked_.take(marks);
    launch_note_maxima(marked_.data());
    on_device_.give_maxima(tables_);
  }
  std::optional<NotHyperbolic> not_hyperbolic() const override { return not_hyperbolic_; }
  void ignore_not_hyperbolic() override { watches_hyperbolicity_ = false; }

  void bring_home() override {
    bring_forcing_home();
    if (home_.has_all) return;
    on_device_.give_state(tables_);
    notes_.give();
    home_ = {};
  }
  void bring_home(const Column& column) override {
    if (home_.has_all || contains(home_.columns, &column)) return;
    on_device_.give_column(tables_, column);
    home_.columns.push_back(&column);
  }
  void bring_home(const Column& column, std::span<const int> places) override {
    if (home_.has_all || contains(home_.columns, &column)) return;
    copies_.bring_home({on_device_.copied(column, tables_)}, places, machine_);
  }
  void bring_home(const Range& places) override {
    if (home_.has_all || home_.has(places)) return;
    std::vector<int> listed(at(places.size()));
    std::iota(listed.begin(), listed.end(), places.begin);
    copies_.bring_home(on_device_.state_columns(tables_), listed, machine_);
    home_.ends_of_places[places.begin] = places.end;
  }
  void bring_inflows_home() override {
    if (home_.has_all || std::exchange(home_.has_inflows, true)) return;
    on_device_.give_inflows(tables_);
  }
  void bring_forcing_home() override {
    if (!std::exchange(has_forcing_, false)) return;
    forcing_on_device_.give_rain_clocks(forcing_.rain_clocks());
    activity_on_device_.give(activity_);
  }
  void take_anew() override {
    is_on_device_ = false;
    notes_.take_anew();
  }

  int threads() const override { return machine_.threads(); }
  const char* instruction_set() const override { return name_.c_str(); }

 private:
  template <class Value>
  using Array = typename Machine::template Array<Value>;

  /// What the host has of the present state, or a later one.
  struct Home {
    bool has_all = true;
    // Where it has not:
    std::vector<const Column*> columns = {};
    std::map<int, int> ends_of_places = {};  ///< of states, by their beginnings
    bool has_inflows = false;

    bool has(const Range& places) const {
      const auto next = ends_of_places.upper_bound(places.begin);
      return next != ends_of_places.begin() && std::prev(next)->second >= places.end;
    }
  };

  /// Steps that are launched before the host asks whether they have halted.
  static constexpr long steps_at_once = 32;

  template <class Value>
  static bool contains(const std::vector<Value>& values, const Value& value) {
    return std::find(values.begin(), values.end(), value) != values.end();
  }

  /// With the way that messages go, where there are any.
  static std::string name_of(const Machine& machine, const DeviceHalo<Machine>& halo) {
    if (halo.is_empty()) return machine.name();
    return std::string(machine.name()) +
           (halo.is_direct() ? ", messages from its memory" : ", messages through the host");
  }
  static std::vector<int> cells_with_levels(const Tables& tables) {
    std::vector<int> places;
    for (const kernels::BoundaryEdge& boundary : tables.boundaries) {
      if (boundary.kind == kernels::BoundaryKind::water_level) places.push_back(boundary.cell);
    }
    return places;
  }

  std::size_t patch_count() const { return tables_.patches.patches.size(); }

  void require_scratch() const {
    constexpr bool for_notes = true;
    const auto words = at(kernels_.scratch_words(for_notes, watches_hyperbolicity_));
    const std::size_t bytes = words * sizeof(double);
    if (bytes <= machine_.scratch_bytes()) return;
    throw std::runtime_error("Error. A patch of this case needs " + std::to_string(bytes) +
                             " bytes of scratch, but the device has " +
                             std::to_string(machine_.scratch_bytes()) +
                             ": its cells have too many edges, or the device is too small; the "
                             "processor can run them.");
  }

  void bring_to_device() {
    if (std::exchange(is_on_device_, true)) return;
    on_device_.take_state(tables_);
  }

  /// Before steps, of which notes are taken (null: none).
  void begin(StepNotes* notes) {
    bring_to_device();
    notes_.take(notes);
    if (!std::exchange(has_forcing_, true)) {
      on_device_.take_boundaries(tables_);
      forcing_on_device_.take(forcing_.tables(tables_), tables_.soils.size());
      activity_on_device_.take(activity_);
    }
    home_ = {.has_all = false};
    not_hyperbolic_.reset();
  }

  kernels::MaximaValues maxima_values() const {
    if (!tables_.maxima) return {};
    return {0.0, tables_.zero_depth, tables_.maxima->arrival_depth};
  }

  /// Where it `is_alone`, the host has no part in it.
  void launch_step(const kernels::StepValues& constants, bool is_alone) {
    const ForcingView forcing = forcing_on_device_.view();
    kernels::StepValues values = constants;
    values.rain_depths = forcing.rain_depths;
    machine_.launch(BeginStep{on_device_.view(), forcing, on_device_.boundaries(),
                              tables_.hll.has_value(), clock_.data()},
                    1);
    machine_.launch(FindActive{.tables = on_device_.view(),
                               .activity = activity_on_device_.view(on_device_.neighbours()),
                               .patches = static_cast<int>(patch_count()),
                               .owned = tables_.owned,
                               .zero_depth = tables_.zero_depth,
                               .clock = clock_.data()},
                    FindActive::blocks_for(patch_count()));
    if (tables_.maxima) launch_note_maxima(activity_on_device_.goes_to_rest());
    if (tables_.hll) {
      launch_patches(values, forcing.soil_steps, all_patches);
      launch_keep_states();
      start_halo();
    } else {
      launch_outer_fluxes(values);
      launch_patches(values, forcing.soil_steps,
                     halo_.is_empty() ? all_patches : activity_on_device_.is_border());
      start_halo();
      // What others wait for is on its way while the rest is computed.
      if (!halo_.is_empty()) {
        launch_patches(values, forcing.soil_steps, activity_on_device_.is_interior());
      }
    }
    machine_.launch(EndStep{.tables = on_device_.view(),
                            .forcing = forcing,
                            .takes_part = activity_on_device_.takes_part(),
                            .findings = activity_on_device_.findings(),
                            .edges_found = edges_found(),
                            .patches = static_cast<int>(patch_count()),
                            .boundaries_bound_step = tables_.hll && is_alone,
                            .dry_step = tables_.dry_step,
                            .char_length_min = tables_.char_length_min,
                            .clock = clock_.data()},
                    1);
  }

  static constexpr const char* all_patches = nullptr;

  /// Null: nobody looks.
  EdgeFound* edges_found() const {
    return watches_hyperbolicity_ ? activity_on_device_.edges_found() : nullptr;
  }

  void launch_note_maxima(const char* wanted) {
    machine_.launch(NoteMaxima{on_device_.view(), wanted, clock_.data(), maxima_values()},
                    patch_count());
  }
  /// Those of the patches that go to rest.
  void launch_keep_states() {
    machine_.launch(KeepStates{on_device_.view(), on_device_.hll_view().after,
                               activity_on_device_.goes_to_rest(), clock_.data()},
                    patch_count());
    on_device_.take_states_after();
  }

  void launch_outer_fluxes(const kernels::StepValues& step) {
    tables_.has_bed ? launch_outer_fluxes<true>(step) : launch_outer_fluxes<false>(step);
  }
  template <bool has_bed>
  void launch_outer_fluxes(const kernels::StepValues& step) {
    machine_.launch(OuterFluxes<has_bed>{.tables = on_device_.view(),
                                         .takes_part = activity_on_device_.takes_part(),
                                         .neighbours = on_device_.neighbours(),
                                         .clock = clock_.data(),
                                         .step = step,
                                         .found = edges_found()},
                    patch_count());
  }

  void launch_patches(const kernels::StepValues& values, const physics::SoilStep* soil_steps,
                      const char* among) {
    const NotesView notes = notes_.view();
    const PatchStep step = {
        .tables = on_device_.view(),
        .takes_part = activity_on_device_.takes_part(),
        .among = among,
        .clock = clock_.data(),
        .values = values,
        .soil_steps = soil_steps,
        .maxima = maxima_values(),
        .notes = notes,
        .looks_for = {threads_of_patch, notes.are_taken, watches_hyperbolicity_},
        .findings = activity_on_device_.findings()};
    kernels_.launch(step, tables_.hll ? on_device_.hll_view() : HllTableView{}, patch_count(),
                    machine_);
  }

  void start_halo() {
    if (!halo_.is_empty()) halo_.start(on_device_.halo_columns(tables_), machine_);
  }

  void bring_levels_home() {
    copies_.bring_home({on_device_.copied(tables_.cells.bed, tables_)}, cells_with_levels_,
                       machine_);
  }

  void note(const EdgeFound& found) {
    if (found.edge == HUGE_VAL) return;
    not_hyperbolic_ = {static_cast<int>(found.edge), static_cast<int>(found.place), found.h,
                       found.qx, found.qy};
  }

  Tables& tables_;
  Forcing& forcing_;
  Activity& activity_;
  Machine machine_;
  PatchKernels kernels_;
  DeviceTables<Machine> on_device_;
  DeviceForcing<Machine> forcing_on_device_;
  DeviceActivity<Machine> activity_on_device_;
  DeviceNotes<Machine> notes_;
  DeviceHalo<Machine> halo_;
  const std::string name_;
  CellCopies<Machine> copies_;
  std::vector<int> cells_with_levels_;
  bool watches_hyperbolicity_;
  bool is_on_device_ = false;  ///< the state of the host, or a later one
  bool has_forcing_ = false;   ///< the device goes on with those of the host
  Home home_;
  std::optional<NotHyperbolic> not_hyperbolic_;

  Array<StepClock> clock_;  ///< one
  Array<char> marked_;      ///< patches whose maxima are noted
};

}  // namespace engine::device
