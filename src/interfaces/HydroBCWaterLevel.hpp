// Imposed water level.
#pragma once

#include "interfaces/GenericInterface.hpp"

class HydroBCWaterLevel : public GenericInterface {
 public:
  /// `level` in m.
  HydroBCWaterLevel(ComputationalCell* cell, const MeshNode& a, const MeshNode& b, double level)
      : GenericInterface(cell, nullptr, a, b), level_imposed(level) {}

  void Flux() override;
  /// Depth of the level over the bed rock, m.
  /// Intended: a limnigraph counts from the bed with its sediments instead.
  double imposed_depth() const { return level_imposed - cell_left->bed_rock_level; }

  double level_imposed;    ///< m
  double h_imposed = 0.0;  ///< depth of the level over the bed rock at the last flux, m
  double c_imposed = 0.0;  ///< celerity at that depth, m/s
};
