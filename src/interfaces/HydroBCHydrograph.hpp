// Unit discharge imposed by a time series.
#pragma once

#include <memory>
#include <string>

#include "globals/Globals.hpp"
#include "interfaces/GenericInterface.hpp"
#include "interfaces/TimeSeries.hpp"

class HydroBCHydrograph : public GenericInterface {
 public:
  /// `file`: samples of the unit discharge along the outward normal (m2/s, positive leaves).
  HydroBCHydrograph(ComputationalCell* cell, const MeshNode& a, const MeshNode& b,
                    const std::string& file);

  void Flux() override;
  /// The unit discharge at Globals::t, m2/s.
  double discharge_now() { return series->value_at(Globals::t, GetCurrent()); }
  /// Advances to the interval of the series that starts at or before Globals::t.
  int GetCurrent();

  std::shared_ptr<const TimeSeries> series;
  double q_imposed = 0.0;   ///< at the last flux, m2/s
  double qt_imposed = 0.0;  ///< tangential, m2/s
  int current_index = 0;    ///< interval in force; never moves back
};
