// LHLLC flux of an interior edge for the shallow-water equations: HLL with lateralised bed-step
// terms and an upwinded tangential momentum (see hll_water.hpp).
#pragma once

#include "physics/hll_water.hpp"

namespace physics {

/// Bounds of the water waves; a dry side is not left out, it counts with speed 0.
QM_HD inline WaveBounds water_wave_bounds(const EdgeSide& L, const EdgeSide& R) {
  return {smaller(smaller(L.un - L.c, R.un - R.c), 0.0),
          larger(larger(L.un + L.c, R.un + R.c), 0.0)};
}

/// Slots of both cells from their sides of the edge; exactly 0 when neither side is wet.
QM_HD inline SlotPair flux_lhllc(const EdgeSide& L, const EdgeSide& R, const Edge& edge) {
  const WaterFlux F = hll_water(L, R, water_wave_bounds(L, R));
  const WaterSlot l = left_slot(edge, F.Fh, F.FnL, F.Ft);
  const WaterSlot r = right_slot(edge, F.Fh, F.FnR, F.Ft);
  const bool active = L.wet || R.wet;
  return {{active ? l.h : 0.0, active ? l.qx : 0.0, active ? l.qy : 0.0},
          {active ? r.h : 0.0, active ? r.qx : 0.0, active ? r.qy : 0.0}};
}
QM_HD inline SlotPair flux_lhllc(const CellWater& left, const CellWater& right, const Edge& edge,
                                 double zero_depth) {
  return flux_lhllc(to_edge_frame(left, edge, zero_depth), to_edge_frame(right, edge, zero_depth),
                    edge);
}

}  // namespace physics
