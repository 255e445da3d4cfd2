// Coupled flux of an interior edge for the shallow-water and Exner equations: the water fluxes of
// the lateralised scheme between coupled wave speeds, and an HLL flux of the bed load between the
// bounds of the bed wave.
// Source: Soares-Frazao and Zech (2011), Int. J. Numer. Meth. Fluids 66.
#pragma once

#include "physics/hll_water.hpp"
#include "physics/wave_speeds_coupled.hpp"

namespace physics {

/// The erodible layer of a cell: thickness (m), bed load (m2/s), derivative of its magnitude with
/// respect to depth (m/s).
struct CellSediment {
  double hs;
  double qsx, qsy;
  double dqs_dh;
};

/// Inflow of water and sediment into a cell through one edge.
struct CoupledSlot {
  WaterSlot water;
  double hs;  // m3/s of bed
};

/// The slots of the two cells, and the radicand of the bed wave on each side (see CoupledSpeeds).
struct CoupledSlotPair {
  CoupledSlot left, right;
  double left_radicand, right_radicand;
};

/// Bed load of a cell along the normal of an edge, m2/s.
QM_HD inline double normal_bed_load(const CellSediment& cell, const Edge& edge) {
  return cell.qsx * edge.nx + cell.qsy * edge.ny;
}

/// Flux of bed per unit length through a boundary that the cell's own transport crosses, m2/s.
QM_HD inline double boundary_bed_flux(const CellSediment& cell, const Edge& edge, double p) {
  return normal_bed_load(cell, edge) / (1.0 - p);
}

/// Bounds of the bed wave: the bound of the water waves is kept on the upstream side.
QM_HD inline WaveBounds bed_wave_bounds(const WaveBounds& water, const EdgeSide& L,
                                        const EdgeSide& R, double s2L, double s2R) {
  const bool forward = 0.5 * (L.un + R.un) > 0.0;
  return {forward ? water.SL : smaller(smaller(s2L, s2R), 0.0),
          forward ? larger(larger(s2L, s2R), 0.0) : water.SR};
}

/// Slots of both cells; exactly 0 when neither side is wet. The beds of both sides include the
/// sediment. p: porosity of the bed, below 1.
QM_HD inline CoupledSlotPair flux_clhllc(const EdgeSide& L, const CellSediment& bed_left,
                                         const EdgeSide& R, const CellSediment& bed_right,
                                         const Edge& edge, double p, double zero_depth) {
  const CoupledSpeeds sL = coupled_speeds(L, bed_left.dqs_dh, p, zero_depth);
  const CoupledSpeeds sR = coupled_speeds(R, bed_right.dqs_dh, p, zero_depth);

  const WaveBounds water = {smaller(smaller(sL.s1, sR.s1), 0.0), larger(larger(sL.s3, sR.s3), 0.0)};
  const WaterFlux F = hll_water(L, R, water);

  const WaveBounds bed = bed_wave_bounds(water, L, R, sL.s2, sR.s2);
  const double qsnL = L.wet ? normal_bed_load(bed_left, edge) : 0.0;
  const double qsnR = R.wet ? normal_bed_load(bed_right, edge) : 0.0;
  const bool transports = water.SR - water.SL > 0.0 && std::fabs(bed.SR - bed.SL) > 0.0 &&
                          !is_cut_off_by_dry_bank(L, R);
  const double divisor = transports ? (bed.SR - bed.SL) * (1.0 - p) : 1.0;
  const double numerator = hll_numerator(bed, qsnL, qsnR, bed_right.hs - bed_left.hs);
  const double Fs = transports ? numerator / divisor : 0.0;

  const WaterSlot l = left_slot(edge, F.Fh, F.FnL, F.Ft);
  const WaterSlot r = right_slot(edge, F.Fh, F.FnR, F.Ft);
  const bool active = L.wet || R.wet;
  return {{{active ? l.h : 0.0, active ? l.qx : 0.0, active ? l.qy : 0.0},
           active ? -edge.length * Fs : 0.0},
          {{active ? r.h : 0.0, active ? r.qx : 0.0, active ? r.qy : 0.0},
           active ? edge.length * Fs : 0.0},
          sL.radicand,
          sR.radicand};
}
QM_HD inline CoupledSlotPair flux_clhllc(const CellWater& left, const CellSediment& bed_left,
                                         const CellWater& right, const CellSediment& bed_right,
                                         const Edge& edge, double p, double zero_depth) {
  return flux_clhllc(to_edge_frame(left, edge, zero_depth), bed_left,
                     to_edge_frame(right, edge, zero_depth), bed_right, edge, p, zero_depth);
}

}  // namespace physics
