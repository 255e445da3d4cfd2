#include "interfaces/HydroBCLimnigraph.hpp"

#include "globals/Globals.hpp"
#include "physics/boundary_water_level.hpp"

HydroBCLimnigraph::HydroBCLimnigraph(ComputationalCell* cell, const MeshNode& a, const MeshNode& b,
                                     const std::string& file)
    : GenericInterface(cell, nullptr, a, b), series(TimeSeries::from_file(file)) {
  midpoint = (a + b) / 2.0;
}

int HydroBCLimnigraph::GetCurrent() {
  // Intended: at a sample time the interval that ends there (a hydrograph is already in the one
  // that starts there).
  current_index = physics::interval_that_ends(series->samples(), current_index, Globals::t);
  return current_index;
}

void HydroBCLimnigraph::Flux() {
  h_imposed = depth_now();
  c_imposed = c(h_imposed);
  set_left_slot(physics::boundary_slot(
      edge(), physics::boundary_water_level(left_side(), h_imposed, Constants::ZERO_DEPTH)));
}
