// Bed-load transport with a Shields number from Manning friction.
// Source: Meyer-Peter and Muller (1948), Proc. 2nd IAHR Congress, Stockholm.
#pragma once

#include "physics/pointwise.hpp"

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

/// h^(-7/3) of a depth h (m) and its reciprocal.
QM_HD inline double power_minus_7_3(double h, double reciprocal_h) {
  return power_minus_4_3(h, reciprocal_h) * reciprocal_h;
}

/// Shields number of a flow with squared unit discharge |q|^2 (m4/s2) at depth h (m) and Manning
/// coefficient n: n^2 |q|^2 / ((s - 1) d h^(7/3)).
QM_HD inline double shields_number(double q_squared, double h, double reciprocal_h, double n,
                                   const Grains& grains) {
  const double reciprocal_grains = 1.0 / ((grains.s - 1.0) * grains.d);
  return ((n * n) * q_squared) * reciprocal_grains * power_minus_7_3(h, reciprocal_h);
}

/// Bed load of a wet cell (h > 0).
QM_HD inline BedLoad bed_load_mpm(double h, double reciprocal_h, double qx, double qy, double n,
                                  const Grains& grains) {
  const double q_squared = fused(qx, qx, qy * qy);
  const double theta = shields_number(q_squared, h, reciprocal_h, n, grains);
  const bool moves = theta > critical_shields;
  const double excess = moves ? theta - critical_shields : 0.0;
  const double root = std::sqrt(excess);
  const double weight =
      std::sqrt(9.81 * (grains.s - 1.0) * grains.d * grains.d * grains.d);  // m3/2 s
  const double qs = (8.0 * weight) * (excess * root);
  const double qs_per_q = qs / (moves ? std::sqrt(q_squared) : 1.0);
  // d theta / dh = -7/3 theta / h.
  const double dqs_dh = (-28.0 * weight) * root * (theta * reciprocal_h);
  return {moves, qs_per_q * qx, qs_per_q * qy, moves ? dqs_dh : 0.0};
}

/// Water and bed of a cell: depth (m), unit discharges (m2/s), thickness of the sediment (m), and
/// the bed load in force (m2/s).
struct LoadedCell {
  double h, qx, qy;
  double hs, qsx, qsy;
};

/// Bed load of a cell after a step, with the reciprocal of its depth. Intended: below the threshold
/// of motion, or without sediment, a wet cell keeps the bed load of the last step in which it
/// transported.
QM_HD inline BedLoad bed_load_of_cell(const LoadedCell& c, double reciprocal_h, double n,
                                      const Grains& grains, double zero_depth) {
  const bool can_move = c.h > zero_depth && c.hs > zero_depth;
  const BedLoad load =
      bed_load_mpm(can_move ? c.h : 1.0, can_move ? reciprocal_h : 1.0, c.qx, c.qy, n, grains);
  const bool moves = can_move && load.moves;
  return {moves, moves ? load.qsx : c.qsx, moves ? load.qsy : c.qsy, moves ? load.dqs_dh : 0.0};
}

}  // namespace physics
