#include "interfaces/SedBCDischarge.hpp"

#include "globals/Globals.hpp"

void SedBCDischarge::Flux() {
  HydroBCDischarge::Flux();
  const double bed_flux = qs_imposed / (1.0 - Globals_Sed::g_sedimentsPorosity);
  set_left_bed_slot(left_side().wet ? -length * bed_flux : 0.0);
}
