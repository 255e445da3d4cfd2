// Manning bed friction of one cell.
#pragma once

#include "sources/SourceTerm.hpp"

class FrictionTerm : public SourceTerm {
 public:
  FrictionTerm() = default;
  /// `n`: Manning coefficient, s/m^(1/3).
  explicit FrictionTerm(double n) : n_(n) {}

  double get_friction_coefficient() const { return n_; }

  /// Replaces, not adds to, the momentum source of a wet cell.
  void compute_source_term(double t, HydraulicVariableSWE& source, HydraulicVariableSWE& state,
                           ParamCell& param) override;

 private:
  double n_ = 0.0;
};
