// What the kernels see of the tables: plain columns, one entry per cell or edge. Kernels are built
// once per instruction set, so nothing here may have inline functions of the standard library.
#pragma once

#include "physics/flux_lhllc.hpp"
#include "physics/stable_step.hpp"

namespace engine {

/// Cells of the hydrodynamic model, in the engine's own order.
struct CellColumns {
  double *h, *qx, *qy;  ///< state: m, m2/s
  double* eta;          ///< free-surface level, m
  double *max_h, *max_u, *max_v;
  const double *zb, *max_node;       ///< bed rock and highest vertex, m
  const double *area, *char_length;  ///< m2, m
  const double* manning;             ///< s/m^(1/3)
  double* rain;                      ///< depth of rain of the step, m; taken by the update
  double *demand, *infiltrated;      ///< infiltration of the step and since the start, m
  const int* slots[3];               ///< first three slots: 2 edge + (0 left, 1 right)
};

/// Edges: geometry, and the flux of the step as their cells receive it.
struct EdgeColumns {
  const int *left, *right;
  const double *nx, *ny, *length;
  double* mass;  ///< inflow into the left cell, m3/s; the right cell receives the opposite
  /// Momentum, m4/s2: entry 2 edge for the left cell, 2 edge + 1 for the right one.
  double *momentum_x, *momentum_y;
};

/// Which source terms a run has.
struct Sources {
  bool friction, rain, infiltration;
};

/// Scalars of a step.
struct StepValues {
  double dt;          ///< s
  double zero_depth;  ///< m
  double dry_step;    ///< what a dry cell contributes to the stable step, s
};

/// The loops over edges and cells, for one instruction set.
struct Kernels {
  const char* name;
  /// Fluxes of the interior edges [begin, end).
  void (*fluxes)(const CellColumns&, const EdgeColumns&, double zero_depth, int begin, int end);
  /// Sources, balance, dry rules and maxima of the cells [begin, end); their smallest stable step.
  double (*advance)(const CellColumns&, const EdgeColumns&, Sources, const StepValues&, int begin,
                    int end);
};

/// Kernels for the best instruction set of the machine, or the one that QUILLMERE_ISA names
/// (baseline, avx2, avx512). Throws std::runtime_error for a set that the machine lacks.
const Kernels& kernels_of_this_machine();

}  // namespace engine
