// Green-Ampt infiltration of one soil class.
#pragma once

#include "physics/infiltration.hpp"
#include "sources/SourceTerm.hpp"

class GreenAmptTerm : public SourceTerm {
 public:
  GreenAmptTerm() = default;
  /// Hydraulic conductivity Ks (m/s), suction head psi (m), initial and saturated moisture content,
  /// depth of the layer L (m), recovery rate kr (1/s).
  GreenAmptTerm(int id, double Ks, double psi, double theta_i, double theta_s, double L, double kr);

  /// Cumulative infiltration (m) after a time span (s) of ponding on a fresh soil.
  double newton_raphson(double time_span) const;

  void compute_source_term(double t, HydraulicVariableSWE& source, HydraulicVariableSWE& state,
                           ParamCell& param) override;

  const physics::GreenAmptSoil& soil() const { return soil_; }

 private:
  physics::GreenAmptSoil soil_{};
};
