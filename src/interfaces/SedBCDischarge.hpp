// Imposed unit discharges of water and sediment.
#pragma once

#include "interfaces/GenericInterface.hpp"

class SedBCDischarge : public GenericInterface {
 public:
  /// `q` and `qs` along the outward normal, m2/s: positive leaves the domain.
  SedBCDischarge(ComputationalCell* cell, const MeshNode& a, const MeshNode& b, double q, double qs)
      : GenericInterface(cell, nullptr, a, b), q_imposed(q), qs_imposed(qs) {}

  void Flux() override;

  double q_imposed;         ///< water, m2/s
  double qt_imposed = 0.0;  ///< water, tangential, m2/s
  double qs_imposed;        ///< bed load, m2/s
};
