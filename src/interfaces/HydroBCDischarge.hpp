// Imposed unit discharge.
#pragma once

#include "interfaces/GenericInterface.hpp"

class HydroBCDischarge : public GenericInterface {
 public:
  /// `q` along the outward normal, m2/s: positive leaves the domain.
  HydroBCDischarge(ComputationalCell* cell, const MeshNode& a, const MeshNode& b, double q)
      : GenericInterface(cell, nullptr, a, b), q_imposed(q) {}

  void Flux() override;

  double q_imposed;         ///< normal, m2/s
  double qt_imposed = 0.0;  ///< tangential, m2/s
};
