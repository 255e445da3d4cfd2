// The water of a cell at the start of a run.
#pragma once

#include "physics/arithmetic.hpp"

namespace physics {

/// Depth (m) and unit discharges (m2/s).
struct InitialWater {
  double h, qx, qy;
};

/// From a free-surface level and a bed with its sediments, both in m. A film of water is kept, its
/// discharges are not.
QM_HD inline InitialWater initial_water(double level, double bed, double qx, double qy,
                                        double zero_depth) {
  const double h = larger(level - bed, 0.0);
  const bool is_film = h < zero_depth;
  return {h, is_film ? 0.0 : qx, is_film ? 0.0 : qy};
}

}  // namespace physics
