// Bed-load transport with a Shields number from Manning friction.
// Source: Meyer-Peter and Muller (1948), Proc. 2nd IAHR Congress, Stockholm.
#pragma once

#include "physics/arithmetic.hpp"

namespace physics {

/// Grains of the bed: diameter d (m) and density s relative to water.
struct Grains {
  double d;
  double s;
};

/// Shields number above which grains move.
inline constexpr double critical_shields = 0.047;

/// Rate of transport (m2/s) along x and y, and derivative of its magnitude with respect to depth
/// (m/s). Without motion nothing of it is to be used.
struct BedLoad {
  bool moves;
  double qsx, qsy;
  double dqs_dh;
};

/// Shields number of a flow with unit discharge |q| (m2/s) at depth h (m) and Manning coefficient
/// n.
QM_HD inline double shields_number(double q_squared, double h, double n, const Grains& grains) {
  return n * n * q_squared / ((grains.s - 1.0) * grains.d * power_7_3(h));
}

/// Bed load of a wet cell (h > 0).
QM_HD inline BedLoad bed_load_mpm(double h, double qx, double qy, double n, const Grains& grains) {
  const double q = std::sqrt(qx * qx + qy * qy);
  const double theta = shields_number(q * q, h, n, grains);
  const bool moves = theta > critical_shields;
  const double excess = moves ? theta - critical_shields : 0.0;
  const double weight = 9.81 * (grains.s - 1.0) * grains.d * grains.d * grains.d;
  const double qs = 8.0 * std::sqrt(weight) * power_3_2(excess);
  const double divisor = moves ? q : 1.0;
  const double dqs_dh = (-12.0 * std::sqrt(weight * excess) * 7.0 * (q * q) * (n * n)) /
                        (3.0 * (grains.s - 1.0) * grains.d * power_10_3(h));
  return {moves, qs * qx / divisor, qs * qy / divisor, moves ? dqs_dh : 0.0};
}

/// Water and bed of a cell: depth (m), unit discharges (m2/s), thickness of the sediment (m), and
/// the bed load in force (m2/s).
struct LoadedCell {
  double h, qx, qy;
  double hs, qsx, qsy;
};

/// Bed load of a cell after a step. Intended: below the threshold of motion, or without sediment, a
/// wet cell keeps the bed load of the last step in which it transported.
QM_HD inline BedLoad bed_load_of_cell(const LoadedCell& c, double n, const Grains& grains,
                                      double zero_depth) {
  const bool can_move = c.h > zero_depth && c.hs > zero_depth;
  const BedLoad load = bed_load_mpm(can_move ? c.h : 1.0, c.qx, c.qy, n, grains);
  const bool moves = can_move && load.moves;
  return {moves, moves ? load.qsx : c.qsx, moves ? load.qsy : c.qsy, moves ? load.dqs_dh : 0.0};
}

}  // namespace physics
