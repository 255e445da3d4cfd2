// An order of cells in which neighbours in the plane are neighbours in memory.
#pragma once

#include <cstdint>
#include <vector>

namespace engine {

/// Permutation of the points (x[i], y[i]) along a Hilbert curve over their extent: entry k is the
/// point that comes k-th. Source: Hilbert (1891), Math. Ann. 38.
std::vector<int> order_along_hilbert_curve(const std::vector<double>& x,
                                           const std::vector<double>& y);

/// Permutation that sorts keys: entry k is the index of the k-th smallest; equal keys keep their
/// order.
std::vector<int> order_by_key(const std::vector<std::uint64_t>& keys);

}  // namespace engine
