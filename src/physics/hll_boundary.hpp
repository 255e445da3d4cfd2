// Boundary conditions of the second-order scheme: the outgoing Riemann invariant of the edge state
// meets what is imposed, and no outlet draws faster than critical flow.
// Source: Toro (2001), Shock-Capturing Methods for Free-Surface Shallow Flows, for the invariants.
#pragma once

#include "physics/hll_edge_states.hpp"

namespace physics {

/// An edge state in the frame of its boundary.
struct HllBoundarySide {
  bool wet;
  double h, bed;  ///< m
  double un, ut;  ///< along the outward normal and the tangent, m/s
  double c;       ///< celerity, m/s
  double R;       ///< outgoing invariant un + 2 c, m/s
  double cap;     ///< largest outflow of the step, m3/s
};

QM_HD inline HllBoundarySide hll_boundary_side(const HllEdgeState& s, const Edge& edge,
                                               double zero_depth) {
  const double un = s.u * edge.nx + s.v * edge.ny;
  const double ut = s.v * edge.nx - s.u * edge.ny;
  const double c = std::sqrt(9.81 * s.h);
  return {is_wet(s.h, zero_depth), s.h, s.e - s.h, un, ut, c, un + 2.0 * c, s.cap};
}

// Every flux is less the hydrostatic thrust of the cell's own water, g h^2 / 2.

/// Thrust of a depth h beyond that of the side's own, m3/s2.
QM_HD inline double thrust_beyond(const HllBoundarySide& s, double h) {
  return (4.905 * (h - s.h)) * (h + s.h);
}

/// Flux of water of celerity c that leaves at un; what leaves takes its tangential velocity along.
QM_HD inline BoundaryFlux flux_of_celerity(const HllBoundarySide& s, double c, double un) {
  const double h = c * c / 9.81;
  const double q = un * h;
  return {q, q * un + thrust_beyond(s, h), larger(q, 0.0) * s.ut};
}

/// The side's own flux: of water that leaves faster than its waves.
QM_HD inline BoundaryFlux own_flux(const HllBoundarySide& s) {
  const double q = s.un * s.h;
  return {q, q * s.un, s.ut * q};
}

QM_HD inline BoundaryFlux chosen(bool first, const BoundaryFlux& a, const BoundaryFlux& b) {
  return {first ? a.mass : b.mass, first ? a.normal : b.normal,
          first ? a.tangential : b.tangential};
}
QM_HD inline BoundaryFlux only_if(bool passes, const BoundaryFlux& flux) {
  return chosen(passes, flux, {0.0, 0.0, 0.0});
}

/// Solid wall: the thrust of the reflected wave.
QM_HD inline BoundaryFlux hll_wall(const HllBoundarySide& s) {
  return only_if(s.wet, {0.0, larger(s.un, 0.0) * s.h * (s.un + s.c), 0.0});
}

/// Free outflow: as it arrives where it is faster than its waves, else critical.
QM_HD inline BoundaryFlux hll_free_outflow(const HllBoundarySide& s) {
  const double c = larger(s.R, 0.0) / 3.0;
  return only_if(s.wet, chosen(s.un > s.c, own_flux(s), flux_of_celerity(s, c, c)));
}

/// Imposed level (m), met by the outgoing invariant; neither way faster than critical. Water that
/// arrives faster than its waves leaves as it is, unless the thrust behind the level is stronger:
/// then the level fills in as over dry ground. A dry edge lets in alone.
QM_HD inline BoundaryFlux hll_water_level(const HllBoundarySide& s, double level) {
  const double depth = larger(level - s.bed, 0.0);
  const bool fast = s.un > s.c;
  const bool stronger = thrust_beyond(s, depth) < s.un * s.un * s.h;
  const double R = fast ? 0.0 : s.R;
  const double c = larger(std::sqrt(9.81 * depth), R / 3.0);
  const double un = larger(R - 2.0 * c, -c);
  const bool passes = s.wet || un < 0.0;
  return only_if(passes, chosen(fast && stronger, own_flux(s), flux_of_celerity(s, c, un)));
}

/// One step of Newton's towards a root c of 2 c^3 - R c^2 + g q = 0: of the celerity at which water
/// of the invariant R carries q outwards.
QM_HD inline double newton_of_invariant(double c, double R, double gq) {
  const double f = (2.0 * c - R) * (c * c) + gq;
  const double slope = (6.0 * c - 2.0 * R) * c;
  return slope > 0.0 ? c - f / slope : c;
}

/// x^(1/3) of a number that is not negative.
QM_HD inline double cubic_root(double x) {
  // The rough root takes normal numbers.
  return x > 1e-200 ? cube_root(x > 1e-200 ? x : 1.0).c : 0.0;
}

/// Celerity at the boundary where q < 0 (or 0) enters: never shallower than critical.
QM_HD inline double celerity_of_inflow(double R, double q) {
  const double towards = larger(R, 0.0);
  double c = 0.5 * towards + cubic_root(-0.5 * 9.81 * q);
  for (int k = 0; k < 8; ++k) c = newton_of_invariant(c, towards, 9.81 * q);
  return larger(c, cubic_root(-9.81 * q));
}

/// Celerity at the boundary where q > 0 leaves: the deeper root, never shallower than critical.
QM_HD inline double celerity_of_outflow(double R, double q) {
  double c = 0.5 * R;
  for (int k = 0; k < 12; ++k) c = larger(newton_of_invariant(c, R, 9.81 * q), R / 3.0);
  return c;
}

/// The flux of water that meets the outgoing invariant with the discharge q.
QM_HD inline BoundaryFlux discharge_by_invariant(const HllBoundarySide& s, double q) {
  const double R = s.wet ? larger(s.R, 0.0) : 0.0;
  const double most = R * R * R / (27.0 * 9.81);
  const double imposed = smaller(q, most);
  const double c_out = celerity_of_outflow(R, larger(imposed, 0.0));
  const double c_in = celerity_of_inflow(R, smaller(imposed, 0.0));
  const double c = imposed > 0.0 ? c_out : c_in;
  const double h = c * c / 9.81;
  const double un = h > 0.0 ? imposed / (h > 0.0 ? h : 1.0) : 0.0;
  return {imposed, imposed * un + thrust_beyond(s, h), larger(imposed, 0.0) * s.ut};
}

/// The flux of water that arrives faster than its waves and of which no more than q may leave: a
/// jump runs back through it, as from a wall. No invariant holds there: it would set the thrust of
/// a film by its speed alone.
QM_HD inline BoundaryFlux discharge_of_fast_water(const HllBoundarySide& s, double q) {
  const double arriving = s.un * s.h;
  const double imposed = smaller(q, arriving);
  return {imposed, arriving * s.un + s.c * (arriving - imposed), larger(imposed, 0.0) * s.ut};
}

/// Imposed unit discharge q along the outward normal (m2/s): positive leaves, as far as the water
/// can carry it, negative enters.
QM_HD inline BoundaryFlux hll_discharge(const HllBoundarySide& s, double q) {
  const bool fast = s.wet && s.un > s.c;
  const BoundaryFlux flux =
      chosen(fast, discharge_of_fast_water(s, q), discharge_by_invariant(s, q));
  return only_if(s.wet || q < 0.0, flux);
}

/// The slot of the cell, which gives no more than it can spare.
QM_HD inline WaterSlot hll_boundary_slot(const HllBoundarySide& s, const Edge& edge,
                                         const BoundaryFlux& flux) {
  const double out = edge.length * flux.mass;
  const double share = out > s.cap ? s.cap / (out > s.cap ? out : 1.0) : 1.0;
  return boundary_slot(edge, {share * flux.mass, share * flux.normal, share * flux.tangential});
}

// What a boundary adds to the bounds of the step, whatever the state of its cell: speeds of the
// waves (m/s) that it may send in.

QM_HD inline double wave_speed_of_discharge(double q) {
  return 2.0 * cubic_root(9.81 * std::fabs(q));
}
QM_HD inline double wave_speed_of_level(double level, double bed) {
  return 2.0 * std::sqrt(9.81 * larger(level - bed, 0.0));
}

}  // namespace physics
