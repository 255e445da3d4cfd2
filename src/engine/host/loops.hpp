// The loops over the tables, as the host runs them: a table of functions for every instruction set.
#pragma once

#include <optional>
#include <string>

#include "engine/runs.hpp"
#include "kernels/columns.hpp"
#include "kernels/hll_bed.hpp"
#include "kernels/maxima.hpp"
#include "physics/flow_extremes.hpp"
#include "physics/infiltration.hpp"

namespace engine {

/// A range of edges, and the slots that they fill: edge e the slots e - begin of both sides.
struct EdgeRange {
  int begin, end;
  int first_cell;  ///< number, among all cells, of the cell that the edges call 0
  kernels::SlotColumns left, right;
};

/// A range of cells; their slots, what their soils ask for in this step (m; null: nothing), and
/// where the extremes of their new states go (null: nobody asks).
struct CellRange {
  int begin, end;
  const double* shortest;  ///< of every run of cells_of_shortest cells, from the first one on, m
  kernels::SlotColumns slots;
  const double* demand;
  physics::FlowExtremes* extremes;
  kernels::MaximaHint* hints;  ///< of the runs of cells, from the first one on; null: nobody asks
};

/// The cells of a patch that have a soil.
struct SoilRange {
  int begin, end;
  int soil;        ///< number of the soil in question
  double* demand;  ///< of the cells of the range, m
};

/// What a loop over cells found: the smallest stable step so far (s), and whether none of its cells
/// can change in a step without inflow.
struct Advance {
  double stable_step;
  bool all_rest;
};

/// The loops of a model over edges and cells.
struct ModelLoops {
  /// Fluxes of a range of edges; false if the coupled system is not hyperbolic somewhere.
  bool (*patch_fluxes)(const kernels::CellColumns&, const kernels::EdgeColumns<kernels::Local>&,
                       const EdgeRange&, const kernels::StepValues&);
  bool (*fluxes)(const kernels::CellColumns&, const kernels::EdgeColumns<int>&, const EdgeRange&,
                 const kernels::StepValues&);
  /// Sources, balance, dry rules, largest depths and stable step of a range of cells.
  Advance (*advance)(const kernels::CellColumns&, const CellRange&, const kernels::StepValues&,
                     double smallest_step);
};

/// The cells of a patch and those around it, of which an HLL scheme takes the water.
struct HllRange {
  int first_cell, cells;  ///< its own
  const int* around;      ///< places of the others
  int cells_around;
  int ring;  ///< entry of the first of them
};

/// The cells of a patch at the end of its step.
struct HllCellRange {
  int first_cell, cells;
  kernels::HllBeforeColumns before;
  const kernels::Local* slots[3];
  kernels::SlotColumns slots_of_patch;
  const double* demand;  ///< of their soils, m; null: nothing
  kernels::HllAfterColumns to;
  physics::FlowExtremes* extremes;  ///< of the new states; null: nobody asks
  double* taken_discharge;          ///< sums over all steps, of the cells, m2/s; null: the same
  kernels::MaximaHint* hints;       ///< of the runs of cells, from the first one on; null: the same
};

/// What the cells of a patch found: the largest physics::crossing_rate (1/s), and whether none can
/// change in a step without inflow.
struct HllAdvance {
  double crossing_rate;
  bool all_rest;
};

/// What the next patch reads first, from its first cell on.
struct HllAhead {
  const double* columns[4] = {};
  const double* geometry = nullptr;  ///< see kernels::HllCellColumns
  int numbers = 0;                   ///< of the geometry of a cell
  int cells = 0;                     ///< 0: there is no next one
};

/// Fluxes of so many edges, a multiple of a block, into the slots of their left and right sides.
/// What lies ahead comes into the cache meanwhile: fluxes leave the memory idle, and a patch has
/// fewer cells than edges.
template <class States>
using HllFluxes = void (*)(const kernels::EdgeColumns<kernels::Local>&, int count, States,
                           kernels::SlotColumns left, kernels::SlotColumns right, double zero_depth,
                           HllAhead);

/// The loops of the HLL schemes, in the order of a step of a patch.
struct HllLoops {
  // First order.
  void (*states)(const kernels::CellColumns&, const HllRange&, const kernels::HllCellColumns&,
                 const kernels::HllCellStates&, const kernels::StepValues&);
  HllFluxes<kernels::HllCellStates> fluxes_of_cells;
  // Second order; edge states of so many cells, a multiple of a block.
  void (*waters)(const kernels::CellColumns&, const HllRange&, const kernels::HllWaterColumns&,
                 double zero_depth);
  void (*edges)(kernels::HllWaterColumns, kernels::HllCellColumns, int count,
                kernels::HllEdgeColumns, kernels::StepValues);
  HllFluxes<kernels::HllEdgeColumns> fluxes_of_edges;
  // Both.
  HllAdvance (*advance)(const kernels::CellColumns&, const HllCellRange&,
                        const kernels::StepValues&);
  // The same of a bed that moves: of so many cells, a multiple of a block; into the slots of bed
  // alone; and the largest physics::crossing_rate_with_bed, after the step of the water.
  void (*beds)(const kernels::CellColumns&, const HllRange&, const kernels::HllWaterColumns&,
               const kernels::HllCellColumns&, int count, const kernels::HllBedColumns&,
               const kernels::StepValues&);
  void (*bed_fluxes)(const kernels::EdgeColumns<kernels::Local>&, int count, kernels::HllCellStates,
                     kernels::HllBedColumns, kernels::SlotColumns left, kernels::SlotColumns right);
  double (*advance_bed)(const kernels::CellColumns&, const HllCellRange&,
                        const kernels::StepValues&);
};

struct Loops {
  const char* instruction_set;
  /// Terms of the depth of a range of cells: begin, end, dry depth (m).
  void (*terms)(const kernels::CellColumns&, int begin, int end, double zero_depth);
  /// Demand of one soil, and the infiltrated depth after its recovery, where the cells have it.
  void (*green_ampt)(const kernels::CellColumns&, const SoilRange&, const physics::GreenAmptSoil&,
                     const physics::SoilStep&);
  void (*horton)(const kernels::CellColumns&, const SoilRange&, const physics::HortonSoil&,
                 const physics::SoilStep&);
  /// Notes the present states of the cells from begin to end in what is kept of them; the last
  /// argument holds an entry for every run of cells_of_shortest cells of the tables.
  void (*note_maxima)(const kernels::CellColumns&, const kernels::MaximaColumns&, int begin,
                      int end, const kernels::MaximaValues&, kernels::MaximaHint*);
  ModelLoops water;          ///< of the hydrodynamic model
  ModelLoops water_and_bed;  ///< of the model with sediments
  HllLoops hll;
};

/// Loops for an instruction set (baseline, avx2, avx512), or the best of this machine. Throws
/// std::runtime_error for a set that the machine lacks.
const Loops& loops_for(const std::optional<std::string>& instruction_set);

}  // namespace engine
