// Solid wall.
#pragma once

#include "interfaces/GenericInterface.hpp"

class HydroBCWall : public GenericInterface {
 public:
  HydroBCWall(ComputationalCell* cell, const MeshNode& a, const MeshNode& b)
      : GenericInterface(cell, nullptr, a, b) {}

  void Flux() override;
};
