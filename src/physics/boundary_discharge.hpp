// Imposed unit discharge along the outward normal (m2/s): positive leaves, negative enters.
#pragma once

#include "physics/edge_frame.hpp"

namespace physics {

/// Flux for the imposed normal and tangential unit discharges q and qt. A dry cell exchanges the
/// discharge without momentum. A Froude number of exactly 1 takes the supercritical formula.
QM_HD inline BoundaryFlux boundary_discharge(const EdgeSide& s, double q, double qt,
                                             double zero_depth) {
  const double Fr = std::fabs(froude(s.qn, s.h, zero_depth));
  const double S = sigma(s.qn, s.h, zero_depth);
  const double M = mu(s.qn, s.qt, s.h, zero_depth);
  const double speed = std::fabs(s.un);
  // Magnitudes: the sign of the imposed value does not enter the momentum correction.
  const double D = std::fabs(q) - std::fabs(s.qn);

  const bool subcritical = Fr < 1.0;
  const double divisor = subcritical ? 1.0 : 1.5 * speed;
  const double Fn_sub = S + s.c * (Fr + 1.0) * D;
  const double Fn_super =
      (S + 2.0 * speed * D) - (s.un * s.un - s.c * s.c) * (D - s.h * s.c * (1.0 - Fr)) / divisor;
  const double Fn = subcritical ? Fn_sub : Fn_super;
  const double Ft =
      M + s.ut * (q - s.qn) + s.un * (qt - s.qt) - (s.ut * Fr / (1.0 + Fr)) * (q - s.qn);
  return {q, s.wet ? Fn : 0.0, s.wet ? Ft : 0.0};
}

}  // namespace physics
