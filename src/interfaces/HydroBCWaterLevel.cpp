#include "interfaces/HydroBCWaterLevel.hpp"

#include "globals/Globals.hpp"
#include "physics/boundary_water_level.hpp"

void HydroBCWaterLevel::Flux() {
  h_imposed = imposed_depth();
  c_imposed = c(h_imposed);
  set_left_slot(physics::boundary_slot(
      edge(), physics::boundary_water_level(left_side(), h_imposed, Constants::ZERO_DEPTH)));
}
