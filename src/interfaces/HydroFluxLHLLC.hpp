// Interior edge of the hydrodynamic model.
#pragma once

#include "interfaces/GenericInterface.hpp"

class HydroFluxLHLLC : public GenericInterface {
 public:
  using GenericInterface::GenericInterface;

  void Flux() override;
};
