// What the kernels of a device see of the tables: columns in its own memory.
#pragma once

#include "engine/Soil.hpp"
#include "kernels/boundary.hpp"
#include "kernels/columns.hpp"
#include "kernels/maxima.hpp"

namespace engine::device {

/// See engine::Patch; ranges by their begin and size.
struct PatchView {
  int first_cell, cells;
  int first_edge, edges;  ///< within the patch
  int first_cut_edge, cut_edges;
  int first_boundary, boundaries;
  int first_outer_slot, outer_slots;
  int first_neighbour, neighbours;  ///< see Patches::neighbours
  int right_slots;                  ///< in the scratch of the patch, see there
  bool has_soil;
};

struct TableView {
  kernels::CellColumns cells;
  const PatchView* patches;
  const int* outer_slots;
  kernels::EdgeColumns<kernels::Local> edges;
  kernels::EdgeColumns<int> cut_edges;
  const int *edge_number, *cut_edge_number;  ///< in the model; null without sediments
  int cut_edge_count;
  const kernels::BoundaryEdge* boundaries;
  kernels::SlotColumns outer;  ///< left sides of the cut edges, their right sides, boundaries
  const Soil* soils;
  kernels::MaximaColumns maxima;  ///< null where a run keeps none
};

/// The slots from number k on.
template <bool has_bed, class Column>
QM_HD inline kernels::SlotColumnsWith<Column> slots_from(
    const kernels::SlotColumnsWith<Column>& slots, int k) {
  return {slots.mass + k, slots.momentum_x + k, slots.momentum_y + k,
          has_bed ? slots.bed + k : slots.bed};
}

template <class Index>
QM_HD inline physics::Edge edge_of(const kernels::EdgeColumns<Index>& edges, int e) {
  return {edges.nx[e], edges.ny[e], edges.length[e]};
}

}  // namespace engine::device
