// Flux between two edge states over a step of the bed: HLL on mass and both momenta, hydrostatic
// reconstruction, and outflows that are never more than their cells can give.
// Sources: Harten, Lax and van Leer (1983), SIAM Review 25, for the average; Chen and Noelle
// (2017), SIAM J. Numer. Anal. 55, for the reconstruction, which lets thin films run down a slope;
// Toro (2001), Shock-Capturing Methods for Free-Surface Shallow Flows, for the speeds of dry
// fronts.
#pragma once

#include "physics/hll_edge_states.hpp"

namespace physics {

/// Depths of both sides above the bed that they share, m.
struct ReconstructedDepths {
  double bed;   ///< level of the shared bed, m
  double a, b;  ///< left, right
};

QM_HD inline ReconstructedDepths reconstructed_depths(const HllEdgeState& l,
                                                      const HllEdgeState& r) {
  const double z = smaller(larger(l.e - l.h, r.e - r.h), smaller(l.e, r.e));
  return {z, larger(smaller(l.e - z, l.h), 0.0), larger(smaller(r.e - z, r.h), 0.0)};
}

/// Bounds of the waves between depths a and b at normal velocities ul and ur; at a dry side the
/// front of the water runs out ahead of its waves.
struct FrontSpeeds {
  double SL, SR;  ///< m/s, SL <= 0 <= SR
};

QM_HD inline FrontSpeeds front_speeds(double a, double b, double ul, double ur) {
  const double ca = std::sqrt(9.81 * a), cb = std::sqrt(9.81 * b);
  const bool dry_left = a <= 0.0, dry_right = b <= 0.0;
  double slow = dry_right ? ul - ca : smaller(ul - ca, ur - cb);
  double fast = dry_left ? ur + cb : larger(ul + ca, ur + cb);
  slow = dry_left ? ur - 2.0 * cb : slow;
  fast = dry_right ? ul + 2.0 * ca : fast;
  return {smaller(slow, 0.0), larger(fast, 0.0)};
}

/// Slots of both cells of an edge, each less the hydrostatic thrust of its own water, which its
/// level_gradient has: water at rest gives exact zeros.
QM_HD inline SlotPair hll_edge_flux(const HllEdgeState& l, const HllEdgeState& r, const Edge& edge,
                                    double zero_depth) {
  const double ul = l.u * edge.nx + l.v * edge.ny, tl = l.v * edge.nx - l.u * edge.ny;
  const double ur = r.u * edge.nx + r.v * edge.ny, tr = r.v * edge.nx - r.u * edge.ny;
  const ReconstructedDepths d = reconstructed_depths(l, r);
  const double a = d.a, b = d.b;
  const FrontSpeeds S = front_speeds(a, b, ul, ur);
  const double width = S.SR - S.SL;
  const bool open = smaller(width, larger(l.h, r.h) - zero_depth) > 0.0;
  const double reciprocal = open ? 1.0 / (open ? width : 1.0) : 0.0;

  // Fluxes less the thrust g a^2 / 2 of the left side; P is what the right side has beyond it.
  const double qa = a * ul, qb = b * ur, jump = b - a, product = S.SL * S.SR;
  const double P = (4.905 * jump) * (b + a);
  const double Fh = (S.SR * qa - S.SL * qb + product * jump) * reciprocal;
  const double Fn = (S.SR * (qa * ul) - S.SL * (qb * ur + P) + product * (qb - qa)) * reciprocal;
  const double Ft =
      (S.SR * (qa * tl) - S.SL * (qb * tr) + product * (b * tr - a * tl)) * reciprocal;

  // No more than the side that gives can spare.
  const double out = edge.length * Fh;
  const double size = larger(out, -out);
  const double cap = Fh > 0.0 ? l.cap : r.cap;
  const double share = size > cap ? cap / size : 1.0;

  // Where the bed steps up from the shared level, it bears the water of that side.
  const double step_l = 9.81 * l.h * larger((l.e - l.h) - d.bed, 0.0);
  const double step_r = 9.81 * r.h * larger((r.e - r.h) - d.bed, 0.0);
  const double base = share * Fn;
  const double FnL = base - (open ? step_l : 0.0);
  const double FnR = base - (open ? share * P + step_r : 0.0);
  const double T = share * Ft;
  const WaterSlot left = left_slot(edge, share * Fh, FnL, T);
  const WaterSlot right = right_slot(edge, share * Fh, FnR, T);
  return {left, right};
}

}  // namespace physics
