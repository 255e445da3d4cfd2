// One explicit step of a cell of the hydrodynamic model, with all its dry and wet rules.
#pragma once

#include "physics/cell_update.hpp"

namespace physics {

/// Operands of the update.
struct SweCell {
  double h, qx, qy;                       // state: m, m2/s
  double Fh, Fqx, Fqy;                    // sum of the flux slots: m3/s, m4/s2
  double dt_over_area;                    // s/m2
  double dt;                              // s
  double rain;                            // depth of rain of the step, m
  double source_qx, source_qy;            // momentum sources per unit of g h dt
  double infiltration_step;               // demand of the soil, m
  double infiltrated_depth;               // cumulative, m
  double bed_rock_level, max_node_level;  // m
};

/// The cell after the step.
struct SweCellUpdate {
  double h, qx, qy;
  double infiltrated_depth;
  double free_surface_level;
};

/// Balance, rain, infiltration, sources, and the wet and dry rules, in this order. A negative depth
/// is kept: positivity is the concern of the flux and of the Courant number.
QM_HD inline SweCellUpdate update_swe(const SweCell& c, double zero_depth) {
  double h = c.h + c.Fh * c.dt_over_area;
  double qx = c.qx + c.Fqx * c.dt_over_area;
  double qy = c.qy + c.Fqy * c.dt_over_area;
  const double qx_balance = qx;
  const double qy_balance = qy;

  h += c.rain;

  // The soil takes what it asks for, or all there is; a cell emptied by it has no discharge either.
  const bool infiltrates = c.infiltration_step > 0.0;
  const bool enough = h > c.infiltration_step;
  const double taken = enough ? c.infiltration_step : h;
  const double h_left = enough ? h - c.infiltration_step : 0.0;
  const double qx_left = enough ? qx : 0.0;
  const double qy_left = enough ? qy : 0.0;
  const double infiltrated_depth = infiltrates ? c.infiltrated_depth + taken : c.infiltrated_depth;
  h = infiltrates ? h_left : h;
  qx = infiltrates ? qx_left : qx;
  qy = infiltrates ? qy_left : qy;

  qx += momentum_change(c.source_qx, c.dt, h);
  qy += momentum_change(c.source_qy, c.dt, h);
  qx = is_reversed(qx_balance, qx) ? 0.0 : qx;
  qy = is_reversed(qy_balance, qy) ? 0.0 : qy;

  // Water that does not yet cover the cell's highest vertex carries no momentum.
  const double free_surface_level = c.bed_rock_level + h;
  const bool partly_wet = free_surface_level < c.max_node_level;
  const bool dry = h < zero_depth;
  qx = partly_wet ? 0.0 : qx;
  qy = partly_wet ? 0.0 : qy;
  qx = dry ? 0.0 : qx;
  qy = dry ? 0.0 : qy;

  return {h, qx, qy, infiltrated_depth, free_surface_level};
}

}  // namespace physics
