// A soil class described by its curve number. It has no effect on a run: no input file names it.
// Source: Soil Conservation Service (1972), National Engineering Handbook, Section 4.
#pragma once

#include "sources/SourceTerm.hpp"

class CNTerm : public SourceTerm {
 public:
  /// Curve number, and the ratio `a` of initial abstraction to potential retention; `b` is kept.
  CNTerm(int id, double CN, double a, double b);

  double potential_retention() const { return S_; }   ///< mm
  double initial_abstraction() const { return Ia_; }  ///< mm

  void compute_source_term(double, HydraulicVariableSWE&, HydraulicVariableSWE&,
                           ParamCell&) override {}

 private:
  double CN_;
  double a_;
  double b_;
  double S_;
  double Ia_;
};
