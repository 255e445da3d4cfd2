// The compiled form of a model: flat tables in an order of their own, and a step over them. It
// knows nothing of the objects; the bridge fills it and reads it back.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "engine/ModelInput.hpp"
#include "engine/Patches.hpp"
#include "engine/ThreadTeam.hpp"
#include "engine/views.hpp"
#include "physics/edge_frame.hpp"
#include "physics/flow_extremes.hpp"

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
  const double *h, *qx, *qy, *reciprocal, *celerity;  ///< see CellColumns
};

/// What a boundary edge lets in, m3/s of water and of bed.
struct BoundaryInflow {
  double water, bed;
};

/// What no state tells of the books of a cell, since the watch began, m.
struct UnseenDepths {
  double recovered;  ///< lost by the soil as it recovered
  double lifted;     ///< sediment that the limit at the bed rock created
};

/// Clock of a step: time and span of the run, and the step (s).
struct StepTimes {
  double t, t_start, t_end, dt;
};

/// Where the coupled system of water and bed was found not to be hyperbolic.
struct NotHyperbolic {
  int edge, cell;  ///< of the model
  double h, qx, qy;
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
      const Range share = share_of(member, team_.size(), cell_number_.size());
      for (int cell = share.begin; cell < share.end; ++cell) read(cell, this->cell(cell));
    });
  }
  StateColumns states() const;
  /// Place of every cell of the model in the order of the engine.
  const std::vector<int>& places() const { return cell_number_; }
  /// The cell of the model at a place.
  int cell_at(int place) const;
  /// What passed a boundary, by its number in the input, in the last step.
  BoundaryInflow boundary_inflow(int boundary) const;

  /// From now on every step takes notes; `before` are those of the present states.
  void watch(const physics::StepNotes& before);
  const physics::StepNotes& notes() const { return watch_->notes; }
  UnseenDepths unseen_depths(int model_cell) const;
  /// Where the last step was not hyperbolic, on the first such edge of the model; asked once, as
  /// the engine looks no further after it has found one.
  std::optional<NotHyperbolic> take_not_hyperbolic();

  bool has_bed() const { return has_bed_; }
  bool has_soil() const { return !soils_.empty(); }
  int threads() const { return team_.size(); }
  int patches() const { return static_cast<int>(patches_.patches.size()); }
  /// Patches that the last step computed.
  int active_patches() const { return static_cast<int>(active_.size()); }
  /// Memory of the tables, bytes.
  std::size_t bytes() const;
  const char* instruction_set() const { return kernels_.name; }

 private:
  struct Boundary {
    BoundaryKind kind;
    int cell;
    physics::Edge edge;
    double imposed, imposed_bed;
  };
  /// What a thread needs for one patch at a time.
  struct Scratch {
    Column mass, momentum_x, momentum_y, bed;
    Column demand;
    Column infiltrated_before;  ///< of a patch that is watched, before the soil recovers, m
    double smallest_step = 0.0;
    std::optional<NotHyperbolic> not_hyperbolic;

    SlotColumns slots();
  };

  /// What the patches note of a step.
  struct Watch {
    physics::StepNotes notes;
    std::vector<physics::FlowExtremes> extremes;  ///< per patch
    /// Per patch: the smallest step of its cells where it may be that of all, else unbounded, s.
    std::vector<double> smallest_steps;
    Column recovered, lifted;  ///< per cell, m; see UnseenDepths
  };

  void number_cells(const std::vector<double>& x, const std::vector<double>& y, int cells_per_patch,
                    EdgeTable& edges);
  void number_boundaries(const std::vector<BoundaryInput>& boundaries, const EdgeTable& edges);
  void derive_columns();
  void prepare_scratch();
  void rain(const StepTimes& times);
  void find_active_patches();
  bool touches_mark(std::size_t patch) const;
  bool touches_water(const Patch& patch) const;
  void flux_of_boundary(int boundary);
  int end_of_run(int k, int end) const;
  void outer_fluxes(int first_patch, int last_patch, Scratch& scratch);
  void advance_patch(int patch, Scratch& scratch);
  void set_demand(int patch, Scratch& scratch);
  void note_recovery(const Range& cells, const Scratch& scratch);
  void note_bare_rock(const Range& cells, const SlotColumns& slots);
  void note_step(double smallest);
  int limiting_cell(double smallest) const;
  void note_record(physics::FlowRecord& record, double physics::FlowExtremes::*value);
  /// The lowest number, in the model, of a cell whose place is meant in a patch that qualifies; -1
  /// without one.
  template <class Qualifies, class IsMeant>
  int first_cell(const Qualifies& qualifies, const IsMeant& is_meant) const;
  template <class Index>
  void find_not_hyperbolic(const EdgeColumns<Index>& edges, const EdgeRange& range,
                           const std::vector<int>& numbers, Scratch& scratch) const;

  CellColumns cell_columns();
  EdgeColumns<Local> patch_edge_columns() const;
  EdgeColumns<int> cut_edge_columns() const;
  SlotColumns outer_slot_columns();

  const Kernels& kernels_;
  const ModelKernels& model_;
  ThreadTeam team_;
  bool has_bed_;
  bool watches_hyperbolicity_;
  double dry_step_;
  double char_length_min_;
  StepValues step_{};

  CellTable cells_;
  Column reciprocal_, celerity_;  ///< terms of the depth
  Column shortest_;               ///< see CellColumns
  std::vector<int> cell_number_;  ///< place of a cell of the model in the tables
  Patches patches_;
  std::vector<Boundary> boundaries_;
  std::vector<int> boundary_number_;  ///< place of a boundary of the input
  Column outer_mass_, outer_momentum_x_, outer_momentum_y_, outer_bed_;

  std::vector<RainInput> rain_;
  Column rain_depths_;
  std::vector<Soil> soils_;
  std::vector<physics::SoilStep> soil_steps_;
  std::vector<std::vector<int>> soils_of_patch_;

  std::vector<char> can_change_;     ///< per patch, by the state of its own cells
  std::vector<char> always_active_;  ///< per patch: inflow, or a soil that recovers
  std::vector<char> has_rain_;
  std::vector<char> marks_;
  std::vector<int> active_;                 ///< patches that a step computes
  std::vector<int> with_fluxes_;            ///< those whose outer fluxes it computes
  std::vector<Scratch> scratch_;            ///< one per thread
  std::unique_ptr<Watch> watch_;            ///< null: nobody asks for notes
  mutable std::vector<int> cell_at_place_;  ///< filled when it is asked for first
};

}  // namespace engine
