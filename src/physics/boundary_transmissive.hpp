// Free outflow: supercritical water leaves with its own flux; subcritical water is drawn towards
// the critical depth of its normal discharge along the outgoing characteristic.
#pragma once

#include "physics/edge_frame.hpp"

namespace physics {

/// Critical depth (m) of a unit discharge (m2/s): (|q| / sqrt(g))^(2/3).
QM_HD inline double critical_depth(double q) { return power_2_3(std::fabs(q) / std::sqrt(9.81)); }

/// Flux through a free outflow; a Froude number of exactly 1 takes the critical-depth branch.
QM_HD inline BoundaryFlux boundary_transmissive(const EdgeSide& s, double zero_depth) {
  const double Fr = froude(s.qn, s.h, zero_depth);
  const double S = sigma(s.qn, s.h, zero_depth);
  const double M = mu(s.qn, s.qt, s.h, zero_depth);
  const double dh = critical_depth(s.qn) - s.h;
  const double slow = s.un - s.c;
  const bool supercritical = std::fabs(Fr) > 1.0;

  const double Fh = supercritical ? s.qn : s.qn + slow * dh;
  const double Fn = supercritical ? S : S + slow * slow * dh;
  const double Ft = supercritical ? M : M + s.ut * (Fh - s.qn);
  return {s.wet ? Fh : 0.0, s.wet ? Fn : 0.0, s.wet ? Ft : 0.0};
}

}  // namespace physics
