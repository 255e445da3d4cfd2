// Cell of the model with sediments.
#pragma once

#include "model/ComputationalCell.hpp"

class CellSWE_Exner : public ComputationalCell {
 public:
  using ComputationalCell::ComputationalCell;

  void Update() override;
  /// Bed load of the present state, after Meyer-Peter and Muller.
  void compute_qs_MPM();
};
