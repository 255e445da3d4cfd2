#include "interfaces/HydroBCTransmissive.hpp"

#include "globals/Globals.hpp"
#include "physics/boundary_transmissive.hpp"

void HydroBCTransmissive::Flux() {
  set_left_slot(physics::boundary_slot(
      edge(), physics::boundary_transmissive(left_side(), Constants::ZERO_DEPTH)));
}
