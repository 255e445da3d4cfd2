// What the kernels of the HLL schemes see beside the tables, see engine::HllTables.
#pragma once

#include "engine/device/TableView.hpp"
#include "kernels/hll_bed.hpp"

namespace engine::device {

/// See engine::HllPatch; ranges by their begin and size.
struct HllPatchView {
  int first_cell, cells;
  int first_around, around;  ///< places of the cells around the patch, from entry `ring` on
  int ring, with_states;
  int first_state;  ///< where geometry, weights and neighbours of its entries begin
  int first_edge, edges;
  int first_boundary, boundaries;
  bool has_soil;

  QM_HD int entries(const HllPatchView& patch) { return patch.ring + patch.around; }
  /// Between its own cells and those around it no cell stands.
  QM_HD bool is_gap(const HllPatchView& patch, int entry) {
    return entry >= patch.cells && entry < patch.ring;
  }
};

struct HllTableView {
  const HllPatchView* patches;
  const int* around;
  const double* geometry;
  int numbers;  ///< of the geometry of a cell
  const float* weights;
  const kernels::Local* neighbours[3];
  kernels::EdgeColumns<kernels::Local> edges;
  const kernels::Local* boundary_states;  ///< in the order of TableView::boundaries
  kernels::HllAfterColumns after;
};

/// Place in the tables of an entry of a patch.
QM_HD inline int place_of(const HllTableView& hll, const HllPatchView& patch, int entry) {
  return entry < patch.cells ? patch.first_cell + entry
                             : hll.around[patch.first_around + (entry - patch.ring)];
}

/// Where the geometry of an entry of a patch begins.
QM_HD inline const double* geometry_of(const HllTableView& hll, const HllPatchView& patch,
                                       int entry) {
  return hll.geometry + kernels::hll_begin(patch.first_state + entry, hll.numbers);
}

QM_HD inline const float* weights_of(const HllTableView& hll, const HllPatchView& patch,
                                     int entry) {
  return hll.weights +
         kernels::hll_begin(patch.first_state + entry, kernels::HllCellColumns::weights_per_cell);
}

}  // namespace engine::device
