#include "interfaces/SedFluxCLHLLC.hpp"

#include "globals/Globals.hpp"
#include "interfaces/cell_sediment.hpp"
#include "utils/not_hyperbolic.hpp"
#include "utils/stop.hpp"

void warn_not_hyperbolic(int cell, double h, double qx, double qy) {
  if (Globals_Sed::g_notHyperbolicIsTold) return;
  Globals_Sed::g_notHyperbolicIsTold = true;
  utils::warn(utils::not_hyperbolic(cell, Globals::t, h, qx, qy));
}

namespace {

void warn_of(const ComputationalCell& cell) {
  const HydraulicVariableSWE& U = cell.UVal();
  warn_not_hyperbolic(cell.id, U.h, U.qx, U.qy);
}

physics::CellWater water_above_bed(const ComputationalCell& cell) {
  physics::CellWater water = water_above_bed_rock(cell);
  water.zb = cell.bed_level;
  return water;
}

}  // namespace

void SedFluxCLHLLC::Flux() {
  const physics::CoupledSlotPair slots = physics::flux_clhllc(
      water_above_bed(*cell_left), sediment_of(*cell_left), water_above_bed(*cell_right),
      sediment_of(*cell_right), edge(), Globals_Sed::g_sedimentsPorosity, Constants::ZERO_DEPTH);
  if (slots.left_radicand < 0.0) warn_of(*cell_left);
  if (slots.right_radicand < 0.0) warn_of(*cell_right);
  set_left_slot(slots.left.water);
  set_left_bed_slot(slots.left.hs);
  set_right_slot(slots.right.water);
  set_right_bed_slot(slots.right.hs);
}
