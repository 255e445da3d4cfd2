// The water fluxes of an HLL-type solver over a stepped bed, shared by the hydrodynamic and the
// coupled scheme, which differ only in their wave-speed bounds.
// Source: Harten, Lax and van Leer (1983), SIAM Review 25, for the HLL average; Fraccarollo, Capart
// and Zech (2003), Int. J. Numer. Meth. Fluids 41, for the lateralised momentum fluxes.
#pragma once

#include "physics/edge_frame.hpp"

namespace physics {

/// Slowest and fastest wave of an edge (m/s), SL <= 0 <= SR.
struct WaveBounds {
  double SL, SR;
};

/// Fluxes per unit length: mass, the two normal momentum fluxes, and tangential momentum.
struct WaterFlux {
  double Fh, FnL, FnR, Ft;
};

/// HLL average of two fluxes over a jump of the conserved quantity, times SR - SL.
QM_HD inline double hll_numerator(const WaveBounds& waves, double fluxL, double fluxR,
                                  double jump) {
  return fused(waves.SL * waves.SR, jump, fused(waves.SR, fluxL, -(waves.SL * fluxR)));
}

/// Whether one side is dry with its bed above the other side's free surface: no mass passes.
/// Strict: water exactly at the level of the dry bank still flows.
QM_HD inline bool is_cut_off_by_dry_bank(const EdgeSide& L, const EdgeSide& R) {
  return (!L.wet && R.eta < L.zb) || (!R.wet && L.eta < R.zb);
}

/// Water fluxes between two sides. Where SR - SL is not positive (dry, or not finite) all are 0.
QM_HD inline WaterFlux hll_water(const EdgeSide& L, const EdgeSide& R, const WaveBounds& waves) {
  const double SL = waves.SL;
  const double SR = waves.SR;
  const bool open = SR - SL > 0.0;
  const double reciprocal = 1.0 / (open ? SR - SL : 1.0);  // one division for all four fluxes

  const double dz = R.zb - L.zb;
  const double hsum = L.h + R.h;

  // Mass: the difference of levels, not of depths, keeps a lake at rest over an uneven bed.
  double Fh = hll_numerator(waves, L.qn, R.qn, R.eta - L.eta) * reciprocal;
  Fh = is_cut_off_by_dry_bank(L, R) ? 0.0 : Fh;

  // Normal momentum: one HLL average, then the bed step's thrust on each side.
  const double Fn =
      hll_numerator(waves, normal_momentum(L), normal_momentum(R), R.qn - L.qn) * reciprocal;
  const double stepL = L.eta >= R.zb ? dz : L.h;
  // Intended: +hR where the right water lies below the left bed, although the step is then
  // negative; the sign decides what a cell perched above a lower neighbour receives.
  const double stepR = R.eta >= L.zb ? dz : R.h;
  const double thrust = 4.905 * hsum * reciprocal;
  const double FnL = Fn - SL * stepL * thrust;
  const double FnR = Fn - SR * stepR * thrust;

  // Tangential momentum travels with the water.
  const double Ft = (Fh > 0.0 ? L.ut : R.ut) * Fh;

  return {open ? Fh : 0.0, open ? FnL : 0.0, open ? FnR : 0.0, open ? Ft : 0.0};
}

}  // namespace physics
