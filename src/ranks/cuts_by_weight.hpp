// A Hilbert curve over the cells of all ranks, and where to cut it into runs, one for each.
#pragma once

#include <cstdint>
#include <span>
#include <tuple>
#include <vector>

#include "engine/numbering.hpp"
#include "physics/cell_geometry.hpp"
#include "ranks/Group.hpp"

namespace ranks {

/// A place along the curve, where a cell lies.
struct CurvePlace {
  std::uint64_t distance;
  cases::Number cell;

  friend bool operator<(const CurvePlace& a, const CurvePlace& b) {
    return std::tie(a.distance, a.cell) < std::tie(b.distance, b.cell);
  }

  /// For utils/bytes.hpp.
  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.distance, self.cell);
  }
};

/// The curve over the centres of the cells of all ranks; here are those of this one. Called by all
/// ranks.
engine::HilbertCurve curve_over(Group& group, std::span<const physics::SpacePoint> centers);

/// Where the runs begin that weigh about as much as each other, of patches that do not part, and
/// the end of the last. A run weighs less than the mean and one patch more, unless runs behind it
/// would have no patch. Weights are finite and not below 0. There are as many runs as are wanted,
/// at least 1; fewer where there are fewer patches.
std::vector<int> cuts_of(std::span<const double> weights, int runs);

}  // namespace ranks
