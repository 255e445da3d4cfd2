// The bodies of a step of the first-order HLL scheme that move the bed: what a cell carries and has
// to give, the bed load between two cells and over a boundary, and the balance of a cell.
#pragma once

#include "kernels/hll.hpp"
#include "physics/cell_update_exner.hpp"
#include "physics/hll_bed_flux.hpp"

namespace kernels {

/// Of the cells with edge states of a patch, see physics::HllBed.
template <class Column>
struct HllBedColumnsWith {
  Column per_discharge, gain, reserve, hs;
};
using HllBedColumns = HllBedColumnsWith<double*>;

template <class Column>
QM_HD inline physics::HllBed hll_bed(const HllBedColumnsWith<Column>& beds, int k) {
  return {beds.per_discharge[k], beds.gain[k], beds.reserve[k], beds.hs[k]};
}

/// What the water of cell i of the tables can carry.
template <bool friction>
QM_HD inline physics::BedLoad carried_bed_load(const CellColumns& cells, int i,
                                               const physics::PrimitiveWater& water,
                                               const physics::Grains& grains, double zero_depth) {
  return physics::bed_load_in_water(water, friction ? cells.manning[i] : 0.0, grains, zero_depth);
}

/// The bed of cell i of the tables, which is entry k of its patch; its geometry stands there.
template <bool friction, class Column>
QM_HD inline void store_hll_bed(const CellColumns& cells, int i,
                                const HllWaterColumnsWith<Column>& waters, const double* geometry,
                                int k, const HllBedColumnsWith<Column>& beds,
                                const StepValues& step) {
  const physics::PrimitiveWater water = hll_neighbour(waters, k).water;
  const physics::HllBed bed = physics::hll_bed(
      water, carried_bed_load<friction>(cells, i, water, step.grains, step.zero_depth), cells.hs[i],
      step.porosity, hll_level_cell(geometry), step.dt);
  beds.per_discharge[k] = bed.per_discharge;
  beds.gain[k] = bed.gain;
  beds.reserve[k] = bed.reserve;
  beds.hs[k] = bed.hs;
}

/// Water that passed an edge into a slot, out of the cell that the edge leads out of, m2/s. The
/// edges that fill a block have no length.
QM_HD inline double passing_out(const physics::Edge& edge, double slot) {
  return -slot / (edge.length > 0.0 ? edge.length : 1.0);
}

/// Bed that passes an edge between two cells from left to right, m3/s, with the water that is in
/// the slot on the left already (m3/s).
template <class Column>
QM_HD inline double hll_bed_discharge(const HllCellStatesWith<Column>& cells,
                                      const HllBedColumnsWith<Column>& beds, int left, int right,
                                      const physics::Edge& edge, double slot) {
  return edge.length * physics::hll_bed_flux(hll_state(cells, left, edge), hll_bed(beds, left),
                                             hll_state(cells, right, reversed(edge)),
                                             hll_bed(beds, right), edge, passing_out(edge, slot));
}

/// Bed that passes a boundary of a cell into slot k, where what passes of water is already.
template <class Column, class Slots>
QM_HD inline void hll_bed_flux_of_boundary(const HllCellStatesWith<Column>& cells, int cell,
                                           const HllBedColumnsWith<Column>& beds,
                                           const BoundaryEdge& boundary, const StepValues& step,
                                           const Slots& slots, int k) {
  const physics::HllEdgeState water = hll_state(cells, cell, boundary.edge);
  const physics::HllBed bed = hll_bed(beds, cell);
  double flux = 0.0;
  switch (boundary.kind) {
    case BoundaryKind::wall:
      break;
    case BoundaryKind::transmissive:
    case BoundaryKind::water_level:
      flux = physics::hll_bed_flux_open(water, bed, boundary.edge,
                                        passing_out(boundary.edge, slots.mass[k]));
      break;
    case BoundaryKind::discharge:
      flux = physics::hll_bed_flux_imposed(water, bed, boundary.edge, boundary.imposed_bed,
                                           step.porosity, step.zero_depth);
      break;
  }
  slots.bed[k] = -boundary.edge.length * flux;
}

/// Stores the bed load of cell i of the tables with that water over so much sediment (m). Its
/// physics::crossing_rate_with_bed, 1/s.
template <bool friction>
QM_HD inline double store_bed_load(const CellColumns& cells, int i,
                                   const physics::PrimitiveWater& water, double hs,
                                   double reciprocal_length, const StepValues& step) {
  const physics::BedLoad load = physics::bed_load_of_sediment(
      carried_bed_load<friction>(cells, i, water, step.grains, step.zero_depth), hs);
  cells.qsx[i] = load.qsx;
  cells.qsy[i] = load.qsy;
  return physics::crossing_rate_with_bed(water, load, step.porosity, reciprocal_length);
}

/// The bed of cell i of the tables after the step of its water, from its slots; its
/// physics::crossing_rate_with_bed, 1/s.
template <bool friction, class Slots>
QM_HD inline double advance_hll_bed(const CellColumns& cells, int i, int s0, int s1, int s2,
                                    const Slots& slots, const HllAfterColumns& to,
                                    const StepValues& step) {
  const double hs = physics::balanced_sediment(
      cells.hs[i], physics::sum_of_slots(slots.bed[s0], slots.bed[s1], slots.bed[s2]),
      step.dt * cells.reciprocal_area[i]);
  to.hs[i] = hs;
  to.bed[i] = cells.rock[i] + hs;
  const physics::PrimitiveWater water =
      physics::primitive_water<false>(to.h[i], to.qx[i], to.qy[i], 0.0, step.zero_depth);
  return store_bed_load<friction>(cells, i, water, hs, to.reciprocal_length[i], step);
}

}  // namespace kernels
