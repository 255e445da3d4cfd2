// What the kernels see of the tables: plain columns, one entry per cell, edge or slot. Kernels are
// built once per instruction set, so nothing here may have inline functions of the standard
// library.
#pragma once

#include <cstdint>

#include "physics/bed_load_mpm.hpp"
#include "physics/flow_extremes.hpp"
#include "physics/infiltration.hpp"

namespace engine {

/// Number of a cell within its patch, or of a slot within the scratch of a patch.
using Local = std::uint16_t;

/// Length of the runs of cells of which the shortest characteristic length is kept.
inline constexpr int cells_of_shortest = 64;

/// Cells, in the engine's own order. Columns that a run does not need are null.
struct CellColumns {
  double *h, *qx, *qy;              ///< state: m, m2/s
  double *reciprocal, *celerity;    ///< terms of the depth: 1/m, m/s
  double* bed;                      ///< level of the bed under the water, m
  const double* eta;                ///< free-surface level before the first step, m; else null
  double* max_h;                    ///< largest depth so far, m
  const double* max_node;           ///< highest vertex, m
  const double* reciprocal_area;    ///< 1/m2
  const double* char_length;        ///< m
  const double* shortest;           ///< shortest of every run of cells_of_shortest cells, m
  const double* manning;            ///< s/m^(1/3)
  double* infiltrated;              ///< m
  const int* rain;                  ///< number of the cell's hyetogram, 0: none
  double *hs, *qsx, *qsy, *dqs_dh;  ///< sediment: m, m2/s, m/s
  const double* rock;               ///< level of the bed under the sediment, m
  const Local* slots[3];            ///< first three slots of the cell in the scratch of its patch
};

/// Edges with a cell on either side; cells are numbered within their patch, or among all cells.
template <class Index>
struct EdgeColumns {
  const Index *left, *right;
  const double *nx, *ny, *length;
};

/// Flux slots as their cells receive them: m3/s, m4/s2, and m3/s of bed.
struct SlotColumns {
  double *mass, *momentum_x, *momentum_y, *bed;

  SlotColumns from(int k) const {
    return {mass + k, momentum_x + k, momentum_y + k, bed != nullptr ? bed + k : nullptr};
  }
};

/// A range of edges, and the slots that they fill: edge e the slots e - begin of both sides.
struct EdgeRange {
  int begin, end;
  int first_cell;  ///< what cell 0 of the edges is among all cells
  SlotColumns left, right;
};

/// A range of cells; their slots, what their soils ask for in this step (m; null: nothing), and
/// where the extremes of their new states go (null: nobody asks).
struct CellRange {
  int begin, end;
  SlotColumns slots;
  const double* demand;
  physics::FlowExtremes* extremes;
};

/// Scalars of a step.
struct StepValues {
  double dt;                  ///< s
  double zero_depth;          ///< m
  double dry_step;            ///< what a dry cell contributes to the stable step, s
  double porosity;            ///< of the bed
  physics::Grains grains;     ///< of the bed
  const double* rain_depths;  ///< of the step, by number of hyetogram, m; null: it does not rain
};

/// The smallest stable step so far (s), and whether all the cells it was asked of are dry.
struct Advance {
  double stable_step;
  bool all_dry;
};

/// The loops of a model over edges and cells, for one instruction set.
struct ModelKernels {
  /// Fluxes of a range of edges; false if the coupled system is not hyperbolic somewhere.
  bool (*patch_fluxes)(const CellColumns&, const EdgeColumns<Local>&, const EdgeRange&,
                       const StepValues&);
  bool (*fluxes)(const CellColumns&, const EdgeColumns<int>&, const EdgeRange&, const StepValues&);
  /// Sources, balance, dry rules, maxima and stable step of a range of cells.
  Advance (*advance)(const CellColumns&, const CellRange&, const StepValues&, double smallest_step);
};

/// The cells of a patch that have a soil.
struct SoilRange {
  int begin, end;
  const int* soil_of_cell;  ///< number of the soil of every cell, -1: none
  int soil;                 ///< the soil in question
  double* demand;           ///< of the cells of the range, m
};

struct Kernels {
  const char* name;
  /// Demand of one soil, and the infiltrated depth after its recovery, where the cells have it.
  void (*green_ampt)(const CellColumns&, const SoilRange&, const physics::GreenAmptSoil&,
                     const physics::SoilStep&);
  void (*horton)(const CellColumns&, const SoilRange&, const physics::HortonSoil&,
                 const physics::SoilStep&);
  ModelKernels water;          ///< of the hydrodynamic model
  ModelKernels water_and_bed;  ///< of the model with sediments
};

/// Kernels for the best instruction set of the machine, or the one that QUILLMERE_ISA names
/// (baseline, avx2, avx512). Throws std::runtime_error for a set that the machine lacks.
const Kernels& kernels_of_this_machine();

}  // namespace engine
