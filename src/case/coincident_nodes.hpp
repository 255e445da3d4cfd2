// Nodes at one place on the boundary of a mesh: a crack, which no water passes.
#pragma once

#include <array>
#include <span>
#include <utility>
#include <vector>

namespace cases {

/// Pairs of nodes of the boundary, the smaller number first, in the order of the second: those no
/// further apart than `distance` (m), or than a thousandth of the shortest boundary edge at either
/// node where that is less than zero. `x`, `y`: of all nodes, m; `boundary`: the nodes of the edges
/// with one cell.
std::vector<std::pair<int, int>> coincident_nodes(std::span<const double> x,
                                                  std::span<const double> y,
                                                  std::span<const std::array<int, 2>> boundary,
                                                  double distance = -1.0);

}  // namespace cases
