#include "interfaces/SedBCWaterLevel.hpp"

#include "interfaces/cell_sediment.hpp"

void SedBCWaterLevel::Flux() {
  HydroBCWaterLevel::Flux();
  set_left_bed_slot(bed_slot(*cell_left, edge()));
}
