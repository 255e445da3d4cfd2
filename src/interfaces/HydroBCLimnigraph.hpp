// Water level imposed by a time series.
#pragma once

#include <memory>
#include <string>

#include "globals/Globals.hpp"
#include "interfaces/GenericInterface.hpp"
#include "interfaces/TimeSeries.hpp"

class HydroBCLimnigraph : public GenericInterface {
 public:
  /// `file`: samples of the water level (m).
  HydroBCLimnigraph(ComputationalCell* cell, const MeshNode& a, const MeshNode& b,
                    const std::string& file);

  void Flux() override;
  /// Sets the level at Globals::t and returns its depth over the bed, m.
  /// Intended: the bed with its sediments; HydroBCWaterLevel counts from the bed rock instead.
  double depth_now() {
    level_imposed = series->value_at(Globals::t, GetCurrent());
    return level_imposed - cell_left->bed_level;
  }
  /// Advances to the interval of the series that starts before Globals::t.
  int GetCurrent();

  std::shared_ptr<const TimeSeries> series;
  MeshNode midpoint;           ///< of the two nodes
  double level_imposed = 0.0;  ///< at the last flux, m
  double h_imposed = 0.0;      ///< depth of the level over the bed, m
  double c_imposed = 0.0;      ///< celerity at that depth, m/s
  int current_index = 0;       ///< interval in force; never moves back
};
