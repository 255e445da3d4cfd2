#include "interfaces/HydroBCDischarge.hpp"

#include "globals/Globals.hpp"
#include "physics/boundary_discharge.hpp"

void HydroBCDischarge::Flux() {
  set_left_slot(physics::boundary_slot(
      edge(),
      physics::boundary_discharge(left_side(), q_imposed, qt_imposed, Constants::ZERO_DEPTH)));
}
