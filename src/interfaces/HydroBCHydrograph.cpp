#include "interfaces/HydroBCHydrograph.hpp"

#include "globals/Globals.hpp"
#include "physics/boundary_discharge.hpp"

HydroBCHydrograph::HydroBCHydrograph(ComputationalCell* cell, const MeshNode& a, const MeshNode& b,
                                     const std::string& file)
    : GenericInterface(cell, nullptr, a, b), series(TimeSeries::from_file(file)) {}

int HydroBCHydrograph::GetCurrent() {
  // Intended: at a sample time the interval that starts there (a limnigraph stays in the one that
  // ends there).
  current_index = physics::interval_that_starts(series->samples(), current_index, Globals::t);
  return current_index;
}

void HydroBCHydrograph::Flux() {
  q_imposed = discharge_now();
  set_left_slot(physics::boundary_slot(
      edge(),
      physics::boundary_discharge(left_side(), q_imposed, qt_imposed, Constants::ZERO_DEPTH)));
}
