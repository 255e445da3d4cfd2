// The body of a boundary edge: what passes it, into the slot of its only cell.
#pragma once

#include "kernels/edge.hpp"
#include "physics/boundary_discharge.hpp"
#include "physics/boundary_transmissive.hpp"
#include "physics/boundary_wall.hpp"
#include "physics/boundary_water_level.hpp"

namespace kernels {

enum class BoundaryKind { wall, transmissive, discharge, water_level };

struct BoundaryEdge {
  BoundaryKind kind;
  int cell;
  physics::Edge edge;
  double imposed;      ///< unit discharge (m2/s) or depth (m); level (m) in the HLL schemes
  double imposed_bed;  ///< bed load along the outward normal (m2/s)
};

QM_HD inline physics::BoundaryFlux flux_of_kind(const BoundaryEdge& boundary,
                                                const physics::EdgeSide& side, double zero_depth) {
  switch (boundary.kind) {
    case BoundaryKind::wall:
      return physics::boundary_wall(side, zero_depth);
    case BoundaryKind::transmissive:
      return physics::boundary_transmissive(side, zero_depth);
    case BoundaryKind::discharge:
      return physics::boundary_discharge(side, boundary.imposed, 0.0, zero_depth);
    case BoundaryKind::water_level:
      return physics::boundary_water_level(side, boundary.imposed, zero_depth);
  }
  return {};
}

/// Bed load per unit length along the outward normal of a wet cell, m2/s.
QM_HD inline double bed_flux_of_kind(const BoundaryEdge& boundary, const CellColumns& cells,
                                     double porosity) {
  switch (boundary.kind) {
    case BoundaryKind::wall:
      return 0.0;
    case BoundaryKind::discharge:
      return boundary.imposed_bed / (1.0 - porosity);
    case BoundaryKind::transmissive:
    case BoundaryKind::water_level:
      return physics::boundary_bed_flux(sediment_of(cells, boundary.cell), boundary.edge, porosity);
  }
  return 0.0;
}

/// What passes a boundary, into slot k.
QM_HD inline void flux_of_boundary(const CellColumns& cells, const BoundaryEdge& boundary,
                                   const StepValues& step, const SlotColumns& slots, int k) {
  const physics::EdgeSide side =
      cells.eta != nullptr
          ? side_of<Given<true, false>>(cells, boundary.cell, boundary.edge, step.zero_depth)
          : side_of<Given<false, false>>(cells, boundary.cell, boundary.edge, step.zero_depth);
  const physics::BoundaryFlux flux = flux_of_kind(boundary, side, step.zero_depth);
  fill_slot(slots, k, physics::boundary_slot(boundary.edge, flux));
  if (slots.bed == nullptr) return;
  const double bed = bed_flux_of_kind(boundary, cells, step.porosity);
  slots.bed[k] = side.wet ? -boundary.edge.length * bed : 0.0;
}

}  // namespace kernels
