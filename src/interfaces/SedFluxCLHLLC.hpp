// Interior edge of the model with sediments.
#pragma once

#include "interfaces/GenericInterface.hpp"

/// Warns, once per run, that the coupled system of water and bed is not hyperbolic in a cell of
/// depth h (m) and unit discharges qx, qy (m2/s).
void warn_not_hyperbolic(int cell, double h, double qx, double qy);

class SedFluxCLHLLC : public GenericInterface {
 public:
  using GenericInterface::GenericInterface;

  void Flux() override;
};
