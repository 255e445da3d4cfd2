// Free outflow of water and sediment.
#pragma once

#include "interfaces/GenericInterface.hpp"

class SedBCTransmissive : public GenericInterface {
 public:
  SedBCTransmissive(ComputationalCell* cell, const MeshNode& a, const MeshNode& b)
      : GenericInterface(cell, nullptr, a, b) {}

  void Flux() override;
};
