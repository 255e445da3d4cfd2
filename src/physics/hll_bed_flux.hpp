// Bed load through the edges of the first-order positive scheme: weakly coupled to the water, by
// the waves of water and bed together.
// Sources: Goutiere, Soares-Frazao, Savary, Laraichi and Zech (2008), J. Hydraul. Eng. 134, for the
// speeds of these waves; Soares-Frazao and Zech (2011), Int. J. Numer. Meth. Fluids 66, for the bed
// load between the two slower ones; Juez, Murillo and Garcia-Navarro (2014), Adv. Water Resour. 71,
// for taking it from the side that the bed wave comes from. Taken from the side that the water
// comes from it is unstable where that is faster than its waves, see Cordier, Le and Morales de
// Luna (2011), Adv. Water Resour. 34.
#pragma once

#include "physics/hll_bed_load.hpp"
#include "physics/hll_edge_flux.hpp"

namespace physics {

/// How an edge weighs the loads of its sides.
struct BedWave {
  /// 1: all from the left, -1: all from the right. The bed wave runs with water that is slower than
  /// its waves and against one that is faster.
  double from_left;
  double damping;  ///< of jumps of the bed, m/s: at critical flow, where neither side is upwind
};

/// Of mean depth (m) and mean velocity (m/s) along the normal; change: of the load with depth, m/s.
QM_HD inline BedWave bed_wave(double depth, double un, double change) {
  const double c = std::sqrt(9.81 * depth);
  const double speed = std::fabs(un), slow = speed - c, fast = speed + c;
  const double product = (9.81 * depth) * change / (fast > 0.0 ? fast : 1.0);
  const double width_squared = slow * slow + 4.0 * product;
  const bool moves = width_squared > 0.0;
  const double reciprocal = moves ? 1.0 / std::sqrt(moves ? width_squared : 1.0) : 0.0;
  const double ahead = -slow * reciprocal;
  // The product of both speeds over their difference, where they are alike in size.
  const double damping = product * reciprocal * (4.0 * product * (reciprocal * reciprocal));
  return {un >= 0.0 ? ahead : -ahead, damping};
}

/// The smaller of two jumps of one sign; 0 where their signs differ.
QM_HD inline double smaller_jump(double a, double b) {
  const double size = smaller(std::fabs(a), std::fabs(b));
  return a * b > 0.0 ? (a > 0.0 ? size : -size) : 0.0;
}

/// A side of an edge, with its bed, along the normal.
struct BedSide {
  double load;            ///< that of the cell, m2/s
  double with_discharge;  ///< that of the water that passes the edge, m2/s
  double change;          ///< size of the derivative of the load with respect to depth, m/s
};

/// The load for the water that passes an edge (m2/s) is, in first order about that of the cell, the
/// one at the depth of the cell: a bed wave leaves the discharge as it is. The discharge of a cell
/// scatters from triangle to triangle, what passes their edges does not.
QM_HD inline BedSide bed_side(const HllEdgeState& s, const HllBed& bed, double un, double passing) {
  const double speed_squared = s.u * s.u + s.v * s.v;
  const bool moves = speed_squared > 0.0;
  const double along = un * un / (moves ? speed_squared : 1.0);
  const double gain = bed.per_discharge + (bed.gain - bed.per_discharge) * along;
  const double q = s.h * un, load = bed.per_discharge * q;
  const double more = gain * (passing - q);
  const bool shrinks = more * load < 0.0;  // but does not turn round
  const double shrunk = load * (load / (shrinks ? load - more : 1.0));
  return {load, shrinks ? shrunk : load + more, (7.0 / 6.0) * bed.gain * std::sqrt(speed_squared)};
}

/// The load that the waves of water and bed leave on an edge, m2/s.
QM_HD inline double bed_load_between(const BedSide& l, const BedSide& r, const BedWave& wave) {
  const double load = 0.5 * ((l.with_discharge + r.with_discharge) +
                             wave.from_left * (l.with_discharge - r.with_discharge));
  return larger(smaller(load, larger(l.load, r.load)), smaller(l.load, r.load));
}

/// Bed with its pores that passes an edge from left to right with water (passing, m2/s), per unit
/// of length, m2/s. A side gives where its own water carries towards the other and finds a way
/// there, and no more than it has.
QM_HD inline double hll_bed_flux(const HllEdgeState& l, const HllBed& bed_left,
                                 const HllEdgeState& r, const HllBed& bed_right, const Edge& edge,
                                 double passing) {
  const double ul = l.u * edge.nx + l.v * edge.ny, ur = r.u * edge.nx + r.v * edge.ny;
  const BedSide left = bed_side(l, bed_left, ul, passing);
  const BedSide right = bed_side(r, bed_right, ur, passing);
  const double both = l.h + r.h;
  const double un = (l.h * ul + r.h * ur) / (both > 0.0 ? both : 1.0);
  const BedWave wave = bed_wave(0.5 * both, un, larger(left.change, right.change));
  const double jump = smaller_jump(bed_right.hs - bed_left.hs, (r.e - r.h) - (l.e - l.h));
  const double wanted = bed_load_between(left, right, wave) - wave.damping * jump;

  const ReconstructedDepths d = reconstructed_depths(l, r);
  const double most = d.a > 0.0 ? bed_left.reserve * larger(left.load, 0.0) : 0.0;
  const double least = d.b > 0.0 ? bed_right.reserve * smaller(right.load, 0.0) : 0.0;
  return larger(smaller(wanted, most), least);
}

/// The most that a cell can give through an edge in the step, per unit of length, m2/s.
QM_HD inline double bed_to_give(const HllEdgeState& s, const HllBed& bed, const Edge& edge) {
  const double q = s.h * (s.u * edge.nx + s.v * edge.ny);
  return bed.reserve * larger(bed.per_discharge * q, 0.0);
}

/// Bed that leaves through an open boundary, per unit of length, m2/s: water that passes (m2/s,
/// positive: outwards) carries as much as that of the cell, and no more than there is.
QM_HD inline double hll_bed_flux_open(const HllEdgeState& s, const HllBed& bed, const Edge& edge,
                                      double passing) {
  return smaller(bed.per_discharge * passing, bed_to_give(s, bed, edge));
}

/// Bed that leaves through a boundary that imposes a load qs along the outward normal (m2/s,
/// without pores): what enters does so at a wet edge alone, what leaves has to be there.
QM_HD inline double hll_bed_flux_imposed(const HllEdgeState& s, const HllBed& bed, const Edge& edge,
                                         double qs, double porosity, double zero_depth) {
  const double imposed = smaller(qs / (1.0 - porosity), bed_to_give(s, bed, edge));
  return is_wet(s.h, zero_depth) ? imposed : 0.0;
}

}  // namespace physics
