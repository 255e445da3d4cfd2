#include "interfaces/SedBCDischarge.hpp"

#include "globals/Globals.hpp"
#include "physics/boundary_discharge.hpp"

void SedBCDischarge::Flux() {
  const physics::EdgeSide side = left_side();
  const double bed_flux = qs_imposed / (1.0 - Globals_Sed::g_sedimentsPorosity);
  set_left_slot(
      physics::boundary_slot(edge(), physics::boundary_discharge(side, q_imposed, qt_imposed,
                                                                 Constants::ZERO_DEPTH)),
      side.wet ? -length * bed_flux : 0.0);
}
