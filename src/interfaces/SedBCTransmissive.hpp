// Free outflow of water and sediment.
#pragma once

#include "interfaces/HydroBCTransmissive.hpp"

class SedBCTransmissive : public HydroBCTransmissive {
 public:
  using HydroBCTransmissive::HydroBCTransmissive;

  void Flux() override;
};
