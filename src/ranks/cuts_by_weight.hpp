// Where ranks cut a Hilbert curve over the cells of all of them into runs, one for each, by what
// the cells weigh.
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

/// The weights of the runs between cuts.
std::vector<double> weights_of_runs(std::span<const double> weights, const std::vector<int>& cuts);

/// A run of the curve for every rank.
struct CutCurve {
  std::vector<CurvePlace> begins;  ///< of all runs but the first
  std::vector<double> weights;     ///< of the runs

  int owner_of(const CurvePlace& place) const;
};

struct WeighedCell {
  CurvePlace place;
  double weight;
};

/// What a cell weighs at least, of the mean of all: a rank whose cells weigh nothing, as they are
/// dry, holds no more than some times the mean number, for the sake of its memory, and of the time
/// that it takes when they get other ranks.
constexpr double least_weight = 0.3;

/// Cuts the curve over the cells of all ranks by their weights; here are those of this rank, in any
/// order. Where every rank has a run of the curve already, in the order of the ranks, runs weigh
/// about as much as each other, but for some hundredths of what a rank has now. Fewer runs than
/// ranks where there are fewer cells. Called by all ranks.
CutCurve cuts_by_weight(Group& group, std::vector<WeighedCell> cells);

}  // namespace ranks
