// Free-surface level imposed by a time series.
#pragma once

#include <memory>
#include <string>

#include "globals/Globals.hpp"
#include "interfaces/GenericInterface.hpp"
#include "interfaces/TimeSeries.hpp"

class HydroBCLimnigraph : public GenericInterface {
 public:
  /// `file`: samples of the free-surface level (m).
  HydroBCLimnigraph(ComputationalCell* cell, const MeshNode& a, const MeshNode& b,
                    const std::string& file);

  void Flux() override;
  /// The level at Globals::t, m.
  double level_now() { return series->value_at(Globals::t, GetCurrent()); }
  /// Advances to the interval of the series that starts before Globals::t.
  int GetCurrent();

  std::shared_ptr<const TimeSeries> series;
  double level_imposed = 0.0;  ///< at the last flux, m
  double h_imposed = 0.0;      ///< depth of the level over the bed, m
  double c_imposed = 0.0;      ///< celerity at that depth, m/s
  int current_index = 0;       ///< interval in force; never moves back
};
