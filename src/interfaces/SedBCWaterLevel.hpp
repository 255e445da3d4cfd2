// Imposed water level of the model with sediments.
#pragma once

#include "interfaces/HydroBCWaterLevel.hpp"

class SedBCWaterLevel : public HydroBCWaterLevel {
 public:
  using HydroBCWaterLevel::HydroBCWaterLevel;

  void Flux() override;
};
