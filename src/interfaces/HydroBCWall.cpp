#include "interfaces/HydroBCWall.hpp"

#include "globals/Globals.hpp"
#include "physics/boundary_wall.hpp"

void HydroBCWall::Flux() {
  set_left_slot(
      physics::boundary_slot(edge(), physics::boundary_wall(left_side(), Constants::ZERO_DEPTH)));
}
