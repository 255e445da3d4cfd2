// The compiled form of a model: flat tables in an order of their own, and the schedule of a step
// over them. It knows nothing of the objects; the bridge fills it and reads it back.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "engine/Backend.hpp"
#include "engine/ThreadTeam.hpp"

namespace engine {

/// State of one cell, for the objects.
struct CellOutput {
  double h, qx, qy, eta;
  double max_h;
  double infiltrated;
  double bed, hs, qsx, qsy, dqs_dh;
};

/// The states of all cells, in the engine's own order; valid until the next step.
struct StateColumns {
  std::size_t cells;
  const double *h, *qx, *qy, *reciprocal, *celerity;  ///< see kernels::CellColumns
};

/// What a boundary edge lets in, m3/s of water and of bed.
struct BoundaryInflow {
  double water, bed;
};

class Engine {
 public:
  /// Takes the tables over; runs on the given number of threads, at least 1.
  Engine(ModelInput&& input, int threads);

  /// Sets the discharge (m2/s) or the depth (m) that a boundary imposes, by its number in the
  /// input.
  void impose(int boundary, double value);
  /// Begins a step: which patches take part, and the fluxes between them and at the boundaries.
  void fluxes(const StepTimes& times);
  /// Ends it: the other fluxes, sources, balance and dry rules, patch by patch; the stable step of
  /// the new state, s.
  double advance();

  CellOutput cell(int model_cell) const;
  /// Calls read(model cell, its state) for every cell, on all threads at once.
  template <class Read>
  void read_cells(const Read& read) {
    team_.run([&](int member) {
      const Range share = share_of(member, team_.size(), tables_.cell_number.size());
      for (int cell = share.begin; cell < share.end; ++cell) read(cell, this->cell(cell));
    });
  }
  StateColumns states() const;
  /// Place of every cell of the model in the order of the engine.
  const std::vector<int>& places() const { return tables_.cell_number; }
  /// The cell of the model at a place.
  int cell_at(int place) const;
  /// What passed a boundary, by its number in the input, in the last step.
  BoundaryInflow boundary_inflow(int boundary) const;

  /// From now on every step takes notes; `before` are those of the present states.
  void watch(const physics::StepNotes& before);
  const physics::StepNotes& notes() const { return notes_->of_last_step(); }
  UnseenDepths unseen_depths(int model_cell) const;
  /// See Backend.
  std::optional<NotHyperbolic> take_not_hyperbolic() { return backend_->take_not_hyperbolic(); }

  bool has_bed() const { return tables_.has_bed; }
  bool has_soil() const { return !tables_.soils.empty(); }
  int threads() const { return backend_->threads(); }
  const char* instruction_set() const { return backend_->instruction_set(); }
  int patches() const { return static_cast<int>(tables_.patches.patches.size()); }
  /// Patches that the last step computed.
  int active_patches() const { return static_cast<int>(activity_.patches().size()); }
  /// Memory of the tables, bytes.
  std::size_t bytes() const { return tables_.bytes(); }

 private:
  std::size_t place_of(int model_cell) const { return at(tables_.cell_number[at(model_cell)]); }

  ThreadTeam team_;
  Forcing forcing_;
  Tables tables_;
  Activity activity_;
  std::unique_ptr<Backend> backend_;
  std::unique_ptr<StepNotes> notes_;  ///< null: nobody asks for notes
  kernels::StepValues step_{};
};

}  // namespace engine
