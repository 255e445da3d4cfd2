// What the bodies of a step see of the tables: plain columns, one entry per cell, edge or slot. The
// bodies are built once per instruction set, and for a device, so nothing here may have inline
// functions of the standard library.
#pragma once

#include <cstdint>

#include "physics/bed_load_mpm.hpp"

namespace kernels {

/// Number of a cell within its patch, or of a slot within the scratch of a patch.
using Local = std::uint16_t;

/// Cells, in the engine's own order. Columns that a run does not need are null. Those in the
/// scratch of a patch are plain pointers, or a type that watches over their use.
template <class ScratchColumn>
struct CellColumnsWith {
  double *h, *qx, *qy;  ///< state: m, m2/s
  /// Terms of the depth at the start of a step, 1/m and m/s: of the patch that is being computed.
  ScratchColumn reciprocal, celerity;
  double* bed;                      ///< level of the bed under the water, m
  const double* eta;                ///< free-surface level before the first step, m; else null
  double* max_h;                    ///< largest depth so far, m
  const double* max_node;           ///< highest vertex, m
  const double* reciprocal_area;    ///< 1/m2
  const double* char_length;        ///< m
  const double* manning;            ///< s/m^(1/3)
  double* infiltrated;              ///< m
  const int* rain;                  ///< number of the cell's hyetogram, 0: none
  const int* soil;                  ///< number of the cell's soil, -1: none
  double *hs, *qsx, *qsy, *dqs_dh;  ///< sediment: m, m2/s, m/s
  const double* rock;               ///< level of the bed under the sediment, m
  const Local* slots[3];            ///< first three slots of the cell in the scratch of its patch
};
using CellColumns = CellColumnsWith<double*>;

/// The same columns, with terms of the depth in scratch.
template <class ScratchColumn>
QM_HD inline CellColumnsWith<ScratchColumn> with_terms(const CellColumns& c,
                                                       ScratchColumn reciprocal,
                                                       ScratchColumn celerity) {
  return {c.h,
          c.qx,
          c.qy,
          reciprocal,
          celerity,
          c.bed,
          c.eta,
          c.max_h,
          c.max_node,
          c.reciprocal_area,
          c.char_length,
          c.manning,
          c.infiltrated,
          c.rain,
          c.soil,
          c.hs,
          c.qsx,
          c.qsy,
          c.dqs_dh,
          c.rock,
          {c.slots[0], c.slots[1], c.slots[2]}};
}

/// Edges with a cell on either side; cells are numbered within their patch, or among all cells.
template <class Index>
struct EdgeColumns {
  const Index *left, *right;
  const double *nx, *ny, *length;
};

/// Flux slots as their cells receive them: m3/s, m4/s2, and m3/s of bed (null without sediments).
template <class Column>
struct SlotColumnsWith {
  Column mass, momentum_x, momentum_y, bed;

  SlotColumnsWith from(int k) const {
    return {mass + k, momentum_x + k, momentum_y + k, bed != nullptr ? bed + k : nullptr};
  }
};
using SlotColumns = SlotColumnsWith<double*>;

/// Scalars of a step.
struct StepValues {
  double dt;                  ///< s
  double zero_depth;          ///< m
  double dry_step;            ///< what a dry cell contributes to the stable step, s
  double porosity;            ///< of the bed
  physics::Grains grains;     ///< of the bed
  const double* rain_depths;  ///< of the step, by number of hyetogram, m; null: it does not rain
};

}  // namespace kernels
