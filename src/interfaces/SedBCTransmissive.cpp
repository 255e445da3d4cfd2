#include "interfaces/SedBCTransmissive.hpp"

#include "interfaces/cell_sediment.hpp"
#include "physics/boundary_transmissive.hpp"

void SedBCTransmissive::Flux() {
  set_left_slot(physics::boundary_slot(edge(), physics::boundary_transmissive(
                                                   left_side(), Constants::ZERO_DEPTH)),
                bed_slot(*cell_left, edge()));
}
