// Interior edge of the model with sediments.
#pragma once

#include "interfaces/GenericInterface.hpp"

class SedFluxCLHLLC : public GenericInterface {
 public:
  using GenericInterface::GenericInterface;

  void Flux() override;
};
