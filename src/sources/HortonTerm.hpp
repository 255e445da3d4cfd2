// Horton infiltration of one soil class.
#pragma once

#include "physics/infiltration.hpp"
#include "sources/SourceTerm.hpp"

class HortonTerm : public SourceTerm {
 public:
  HortonTerm() = default;
  /// Initial and final capacity f0, fc (m/s), decay with the infiltrated depth k (1/m), largest
  /// cumulative infiltration Fmax (m), recovery rate kr (1/s).
  HortonTerm(int id, double f0, double fc, double k, double Fmax, double kr);

  void compute_source_term(double t, HydraulicVariableSWE& source, HydraulicVariableSWE& state,
                           ParamCell& param) override;

  const physics::HortonSoil& soil() const { return soil_; }

 private:
  physics::HortonSoil soil_{};
};
