// Lengths that make hand calculations of a shallow flow short.
#pragma once

namespace support {

/// Depth (m) whose gravity waves run at 1 m/s: g k = 1. A depth of m^2 k has celerity m, the thrust
/// g h^2 / 2 of a depth of m k is m^2 k / 2, and the advection q^2 / h of q = m k, h = n k is
/// m^2 k / n.
inline constexpr double k = 1.0 / 9.81;

}  // namespace support
