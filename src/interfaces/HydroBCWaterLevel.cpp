#include "interfaces/HydroBCWaterLevel.hpp"

#include "globals/Globals.hpp"
#include "physics/boundary_water_level.hpp"

void HydroBCWaterLevel::Flux() {
  // Intended: over the bed rock, whereas a limnigraph counts from the bed with its sediments.
  h_imposed = level_imposed - cell_left->bed_rock_level;
  c_imposed = c(h_imposed);
  set_left_slot(physics::boundary_slot(
      edge(), physics::boundary_water_level(left_side(), h_imposed, Constants::ZERO_DEPTH)));
}
