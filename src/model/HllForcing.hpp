// What time brings to a step of the cell-by-cell walk: rain, the soils' step, and series.
#pragma once

#include <utility>
#include <vector>

#include "case/Case.hpp"
#include "physics/infiltration.hpp"
#include "physics/rain.hpp"

class HllForcing {
 public:
  /// Points into the case, which must outlive it.
  explicit HllForcing(const cases::Case& contents);

  /// A step of dt from t, s.
  void begin_step(double t, double dt);
  /// Depth of the rain that falls on a cell in the step, m.
  double rain_on(cases::Number cell) const;
  /// What the soil of a cell asks for in the step (m), of water h (m) deep, and what it holds after
  /// its recovery, of the F (m) that it held.
  physics::Infiltration infiltration(cases::Number cell, double h, double F) const;
  /// What a boundary imposes at a time (s): unit discharge (m2/s) or level (m).
  double imposed_by(const cases::Boundary& boundary, double t) const;

  const std::vector<physics::RainClock>& rain_clocks() const { return rain_clocks_; }
  void set_rain_clocks(std::vector<physics::RainClock> clocks) { rain_clocks_ = std::move(clocks); }

 private:
  const cases::Case& case_;
  std::vector<physics::RainClock> rain_clocks_;  ///< the cells of a hyetogram rain alike
  std::vector<double> rain_depths_;              ///< of the step, m
  std::vector<physics::SoilStep> soil_steps_;
};
