// Cell of the hydrodynamic model.
#pragma once

#include "model/ComputationalCell.hpp"

class CellSWE : public ComputationalCell {
 public:
  using ComputationalCell::ComputationalCell;

  void Update() override;
};
