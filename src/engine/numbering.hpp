// An order of cells in which neighbours in the plane are neighbours in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "engine/ThreadTeam.hpp"

namespace engine {

/// The Hilbert curve over an extent (m). Source: Hilbert (1891), Math. Ann. 38.
class HilbertCurve {
 public:
  static constexpr int bits_of_distance = 32;  ///< distances are below 2 to the power of that

  HilbertCurve(double x_min, double x_max, double y_min, double y_max);
  /// How far along the curve a point lies.
  std::uint64_t distance_of(double x, double y) const;

 private:
  double x_min_, y_min_;
  double scale_;  ///< squares per metre
};

/// Permutation of the points (x[i], y[i]) along a Hilbert curve over their extent: entry k is the
/// point that comes k-th; of points at one distance the lower number comes first.
std::vector<int> order_along_hilbert_curve(const std::vector<double>& x,
                                           const std::vector<double>& y, ThreadTeam& team);

/// The same points in runs of a length along that curve, each run swept from one end of its longer
/// extent to the other. Sides of the edges of a run then come from two windows that move through
/// memory together, which the processor fetches ahead; along the curve alone they jump.
/// Points of a lower band come first; without bands all are alike.
std::vector<int> order_by_swept_runs(const std::vector<double>& x, const std::vector<double>& y,
                                     std::span<const std::uint8_t> bands, int run,
                                     ThreadTeam& team);

/// Where each of the numbers stands in an order of all of them.
std::vector<int> places_of(const std::vector<int>& order);

}  // namespace engine
