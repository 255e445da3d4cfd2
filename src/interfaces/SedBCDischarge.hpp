// Imposed unit discharges of water and sediment.
#pragma once

#include "interfaces/HydroBCDischarge.hpp"

class SedBCDischarge : public HydroBCDischarge {
 public:
  /// `q` and `qs` along the outward normal, m2/s: positive leaves the domain.
  SedBCDischarge(ComputationalCell* cell, const MeshNode& a, const MeshNode& b, double q, double qs)
      : HydroBCDischarge(cell, a, b, q), qs_imposed(qs) {}

  void Flux() override;

  double qs_imposed;  ///< bed load, m2/s
};
