// Approximate wave speeds of the coupled water and bed system: the slow bed wave next to the two
// water waves.
// Source: Goutiere, Soares-Frazao, Savary, Laraichi and Zech (2008), J. Hydraul. Eng. 134.
#pragma once

#include "physics/edge_frame.hpp"

namespace physics {

/// Speeds of one side of an edge (m/s): slowest, bed wave, fastest. Where the coupled system is not
/// hyperbolic the radicand of the bed wave (m2/s2) is negative, and the bed is left out of the
/// speeds.
struct CoupledSpeeds {
  double s1, s2, s3;
  double radicand;
};

/// Speeds of a side, all 0 when dry. dqs_dh: derivative of the bed load with respect to depth
/// (m/s); p: porosity of the bed, below 1.
QM_HD inline CoupledSpeeds coupled_speeds(const EdgeSide& s, double dqs_dh, double p,
                                          double zero_depth) {
  const double slow = s.un - s.c;
  const double fast = s.un + s.c;
  // Intended: the depth threshold serves as a threshold of speed here.
  const bool moving = std::fabs(fast) > zero_depth;
  const double divisor = moving ? (1.0 - p) * std::fabs(fast) : 1.0;
  const double bed = 39.24 * s.h * dqs_dh / divisor;
  const double radicand = moving ? slow * slow - bed : 0.0;  // a dry side does not move
  const bool hyperbolic = !(radicand < 0.0);
  const double root = std::sqrt(hyperbolic ? radicand : 0.0);
  const double lambda = moving && hyperbolic ? root : std::fabs(slow);

  const bool forward = s.un >= 0.0;
  const double s1 = forward ? 0.5 * (slow - lambda) : slow;
  const double s2 = forward ? 0.5 * (slow + lambda) : 0.5 * (fast - lambda);
  const double s3 = forward ? fast : 0.5 * (fast + lambda);
  return {s.wet ? s1 : 0.0, s.wet ? s2 : 0.0, s.wet ? s3 : 0.0, radicand};
}

}  // namespace physics
