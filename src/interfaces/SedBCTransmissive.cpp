#include "interfaces/SedBCTransmissive.hpp"

#include "interfaces/cell_sediment.hpp"

void SedBCTransmissive::Flux() {
  HydroBCTransmissive::Flux();
  set_left_bed_slot(bed_slot(*cell_left, edge()));
}
