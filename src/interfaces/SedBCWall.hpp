// Solid wall of the model with sediments: no sediment crosses it, so it is the hydrodynamic wall.
#pragma once

#include "interfaces/HydroBCWall.hpp"

class SedBCWall : public HydroBCWall {
 public:
  using HydroBCWall::HydroBCWall;
};
