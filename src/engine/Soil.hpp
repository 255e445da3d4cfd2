// A soil of a case, of either kind.
#pragma once

#include "physics/infiltration.hpp"

namespace engine {

struct Soil {
  bool is_green_ampt;
  physics::GreenAmptSoil green_ampt;
  physics::HortonSoil horton;
};

}  // namespace engine
