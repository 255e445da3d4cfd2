// One side of an edge, for tests of flux formulas.
#pragma once

#include "physics/edge_frame.hpp"

namespace support {

/// Water of depth h (m) on a bed (m), with a velocity along the normal of an edge and one along the
/// edge (m/s).
inline physics::EdgeSide edge_side(double zb, double h, double un, double ut, double zero_depth) {
  return physics::to_edge_frame({h, h * un, h * ut, zb, zb + h}, {1.0, 0.0, 1.0}, zero_depth);
}

/// Expects of a flux (or slot) that its three parts are near the given ones.
#define EXPECT_FLUX_NEAR(flux, Fh, Fn, Ft, tolerance) \
  EXPECT_NEAR((flux).mass, Fh, tolerance);            \
  EXPECT_NEAR((flux).normal, Fn, tolerance);          \
  EXPECT_NEAR((flux).tangential, Ft, tolerance)

}  // namespace support
