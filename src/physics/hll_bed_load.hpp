// The bed of a cell in the first-order positive scheme: what its water carries away, how much of
// that it has to give in a step, and how its waves bound the step.
// Sources: Meyer-Peter and Muller (1948), see bed_load_mpm.hpp; Cordier, Le and Morales de Luna
// (2011), Adv. Water Resour. 34, for the bound of the waves of water and bed together.
#pragma once

#include "physics/bed_load_mpm.hpp"
#include "physics/hll_edge_states.hpp"

namespace physics {

/// What water of that depth and velocity carries over sediment, with Manning's n (s/m^(1/3)) of the
/// bed. A dry cell moves nothing, nor does one whose Shields number is below the threshold.
QM_HD inline BedLoad bed_load_in_water(const PrimitiveWater& water, double n, const Grains& grains,
                                       double zero_depth) {
  const bool wet = is_wet(water.h, zero_depth);
  const double h = wet ? larger(water.h, 1e-60) : 1.0;
  const BedLoad load =
      bed_load_mpm(h, reciprocal_of_wet(water.h, wet), h * water.u, h * water.v, n, grains);
  const bool moves = wet && load.moves;
  return {moves, moves ? load.qsx : 0.0, moves ? load.qsy : 0.0, moves ? load.dqs_dh : 0.0};
}

/// The same where there is sediment (hs, in m); over bare rock there is nothing to carry.
QM_HD inline BedLoad bed_load_of_sediment(const BedLoad& carried, double hs) {
  const bool moves = carried.moves && hs > 0.0;
  return {moves, moves ? carried.qsx : 0.0, moves ? carried.qsy : 0.0,
          moves ? carried.dqs_dh : 0.0};
}

/// Derivative of the size of a load by that of the unit discharge, of water of that speed (m/s):
/// the Shields number goes with |q|^2 h^(-7/3).
QM_HD inline double gain_of_load(const BedLoad& load, double speed) {
  return load.moves ? (-6.0 / 7.0) * load.dqs_dh / (load.moves ? speed : 1.0) : 0.0;
}

/// The bed of a cell as its edges see it in a step. Loads are those of bed with its pores.
struct HllBed {
  double per_discharge;  ///< load over unit discharge
  double gain;           ///< derivative of the size of the load by that of the unit discharge
  double reserve;        ///< how many times its load the cell has to give in the step
  double hs;             ///< sediment, m
};

/// Largest share of its depth that a cell's water moves of its bed in a step. In a step the bed
/// does not know how it changes the flow: a tenth of the depth changes the celerity by 5 %. It
/// binds in films, for which the transport formula was not made: it would have them carry more bed
/// than water.
inline constexpr double share_of_depth_moved = 0.1;

/// cell: its shape; dt: the step, s; porosity: of the bed. The reserve is shared out among the
/// edges through which the load leaves, so that no sediment ever falls below zero.
QM_HD inline HllBed hll_bed(const PrimitiveWater& water, const BedLoad& carried, double hs,
                            double porosity, const HllCell& cell, double dt) {
  const double with_pores = 1.0 / (1.0 - porosity);
  const double qsx = with_pores * carried.qsx, qsy = with_pores * carried.qsy;
  const OutwardNormals n = outward_normals(cell.shape);
  const double out = larger(qsx * n.k0.x + qsy * n.k0.y, 0.0) +
                     larger(qsx * n.k1.x + qsy * n.k1.y, 0.0) +
                     larger(qsx * n.k2.x + qsy * n.k2.y, 0.0);
  const double moved = dt * cell.reciprocal_area * out + 1e-300;  // m in the step
  const double most = share_of_depth_moved * water.h;
  const double f = smaller(1.0, most / moved);
  const double there = larger(smaller(hs, most), 0.0);
  const double speed = std::sqrt(water.u * water.u + water.v * water.v);
  const double discharge = carried.moves ? water.h * speed : 1.0;
  const double load = std::sqrt(qsx * qsx + qsy * qsy);
  return {f * (load / discharge), f * (with_pores * gain_of_load(carried, speed)),
          (1.0 - 1e-12) * there / (f * moved + 1e-300), hs};
}

/// How often per second the fastest wave of water and bed together may cross a cell, of whose
/// length the reciprocal is given (1/m); 0 where no bed moves. Source: Cordier, Le and Morales de
/// Luna (2011), by the bounds of Nickalls (2011) for the roots of a cubic.
QM_HD inline double crossing_rate_with_bed(const PrimitiveWater& water, const BedLoad& load,
                                           double porosity, double reciprocal_length) {
  const double speed_squared = water.u * water.u + water.v * water.v;
  const double speed = std::sqrt(speed_squared);
  const double gain = gain_of_load(load, speed) / (1.0 - porosity);
  const double root = std::sqrt(speed_squared + (3.0 * 9.81) * water.h * (1.0 + gain));
  return load.moves ? (2.0 / 3.0) * (speed + root) * reciprocal_length : 0.0;
}

}  // namespace physics
