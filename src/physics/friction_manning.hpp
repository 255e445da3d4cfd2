// Manning bed friction, explicit, per unit of g h dt.
#pragma once

#include "physics/pointwise.hpp"

namespace physics {

/// Momentum source of a cell before its factor g h dt.
struct MomentumSource {
  double qx, qy;
};

/// -n^2 |q| q / h^(10/3) of a wet cell (n in s/m^(1/3), h in m and 1/h); must not be asked of a dry
/// one.
QM_HD inline MomentumSource friction_manning(double n, double h, double reciprocal_h, double qx,
                                             double qy) {
  const double r = reciprocal_h;
  const double c = ((n * n) * std::sqrt(fused(qx, qx, qy * qy)) * r) * power_minus_4_3(h, r) * r;
  return {-c * qx, -c * qy};
}

}  // namespace physics
