#include "interfaces/HydroFluxLHLLC.hpp"

#include "globals/Globals.hpp"
#include "physics/flux_lhllc.hpp"

void HydroFluxLHLLC::Flux() {
  const physics::SlotPair slots =
      physics::flux_lhllc(water_above_bed_rock(*cell_left), water_above_bed_rock(*cell_right),
                          edge(), Constants::ZERO_DEPTH);
  set_left_slot(slots.left);
  set_right_slot(slots.right);
}
