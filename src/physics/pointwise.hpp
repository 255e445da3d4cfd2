// Pointwise quantities of a shallow flow: celerity, Froude number, momentum fluxes.
// Depths in m, unit discharges in m2/s, speeds in m/s. A depth is wet when it is strictly greater
// than the threshold; every quantity of a dry depth is exactly 0.
#pragma once

#include "physics/arithmetic.hpp"

namespace physics {

/// Whether a depth (m) counts as water.
QM_HD inline bool is_wet(double h, double zero_depth) { return h > zero_depth; }

/// Celerity of a gravity wave at depth h: sqrt(g h), in m/s.
QM_HD inline double celerity(double h, double zero_depth) {
  const bool wet = is_wet(h, zero_depth);
  return wet ? std::sqrt(9.81 * h) : 0.0;
}

/// The costly terms of a depth, which every edge of a cell needs: computed once per state.
struct DepthTerms {
  double reciprocal;  ///< 1 / h, 1/m
  double celerity;    ///< m/s
};

QM_HD inline DepthTerms depth_terms(double h, double zero_depth) {
  const bool wet = is_wet(h, zero_depth);
  // The bound keeps the reciprocal finite where the threshold is 0 and the depth all but 0.
  const double divisor = wet ? larger(h, 1e-300) : 1.0;
  return {wet ? 1.0 / divisor : 0.0, celerity(h, zero_depth)};
}

/// Froude number of the unit discharge q at depth h; keeps the sign of q.
QM_HD inline double froude(double q, double h, double zero_depth) {
  const bool wet = is_wet(h, zero_depth);
  return wet ? q / (h * celerity(h, zero_depth)) : 0.0;
}

/// Normal momentum flux, advection and hydrostatic thrust: q^2/h + g h^2/2, in m3/s2.
QM_HD inline double sigma(double q, double h, double zero_depth) {
  const bool wet = is_wet(h, zero_depth);
  return wet ? (4.905 * h) * h + (q * q) / h : 0.0;
}

/// Tangential momentum flux: qn qt / h, in m3/s2.
QM_HD inline double mu(double qn, double qt, double h, double zero_depth) {
  const bool wet = is_wet(h, zero_depth);
  return wet ? qn * qt / h : 0.0;
}

}  // namespace physics
