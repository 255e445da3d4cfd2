// One explicit step of a cell of the model with sediments.
#pragma once

#include "physics/cell_update.hpp"

namespace physics {

/// Operands of the update.
struct ExnerCell {
  double h, qx, qy, hs;         // state: m, m2/s, m2/s, m
  double qsx, qsy;              // bed load, m2/s
  double Fh, Fqx, Fqy, Fhs;     // sum of the flux slots: m3/s, m4/s2, m3/s
  double dt_over_area;          // s/m2
  double dt;                    // s
  double rain;                  // depth of rain of the step, m
  double source_qx, source_qy;  // momentum sources per unit of g h dt
};

/// The cell after the step, and the discharges that its largest velocity counts from.
struct ExnerCellUpdate {
  double h, qx, qy, hs;
  double qsx, qsy;
  double qx_moving, qy_moving;
};

/// Thickness of the sediment (m) after a step's inflow Fhs (m3/s): below 0 where more was carried
/// away than there was.
QM_HD inline double balanced_sediment(double hs, double Fhs, double dt_over_area) {
  return hs + Fhs * dt_over_area;
}

/// Balance, sources, and the dry rules, in this order.
/// Intended: no rule for partly wet cells and no infiltration in this model; momentum sources are
/// scaled with the depth before rain.
QM_HD inline ExnerCellUpdate update_exner(const ExnerCell& c, double zero_depth) {
  const double h_balance = c.h + c.Fh * c.dt_over_area;
  const double qx_balance = c.qx + c.Fqx * c.dt_over_area;
  const double qy_balance = c.qy + c.Fqy * c.dt_over_area;
  const double hs_balance = balanced_sediment(c.hs, c.Fhs, c.dt_over_area);

  const double h = h_balance + c.rain;
  const double qx = qx_balance + momentum_change(c.source_qx, c.dt, h_balance);
  const double qy = qy_balance + momentum_change(c.source_qy, c.dt, h_balance);

  const bool dry = h < zero_depth;
  const bool still_x = dry || is_reversed(qx_balance, qx);
  const bool still_y = dry || is_reversed(qy_balance, qy);
  return {.h = h,
          .qx = still_x ? 0.0 : qx,
          .qy = still_y ? 0.0 : qy,
          .hs = hs_balance < 0.0 ? 0.0 : hs_balance,  // the bed rock does not erode
          .qsx = dry ? 0.0 : c.qsx,
          .qsy = dry ? 0.0 : c.qsy,
          // Intended: the largest velocity counts before the rules set a discharge to zero.
          .qx_moving = qx,
          .qy_moving = qy};
}

}  // namespace physics
