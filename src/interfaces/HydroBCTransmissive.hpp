// Free outflow.
#pragma once

#include "interfaces/GenericInterface.hpp"

class HydroBCTransmissive : public GenericInterface {
 public:
  HydroBCTransmissive(ComputationalCell* cell, const MeshNode& a, const MeshNode& b)
      : GenericInterface(cell, nullptr, a, b) {}

  void Flux() override;
};
