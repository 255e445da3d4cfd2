// Codes of the edges file, and of the flux schemes that stand in for an interior edge.
#pragma once

namespace edge_code {
inline constexpr int interior = -1;
inline constexpr int transmissive = -2;
inline constexpr int discharge = -3;
inline constexpr int water_level = -4;
inline constexpr int wall = -5;
inline constexpr int hydrograph = -33;
inline constexpr int limnigraph = -44;

inline constexpr int scheme_lhllc = 1;
inline constexpr int scheme_roe = 2;

/// Whether an edge of this code stands between two cells.
inline constexpr bool is_between_cells(int code) {
  return code == interior || code == scheme_lhllc;
}
}  // namespace edge_code
