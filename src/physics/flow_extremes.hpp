// The most extreme of many states, and how many of them are no numbers.
#pragma once

#include "physics/pointwise.hpp"

namespace physics {

/// Froude number that water deeper than the dry depth is taken to have at most; what is beyond it is
/// a film that races.
inline constexpr double largest_froude = 20.0;

/// The extremes of a set of states; states that are not finite are only counted.
struct FlowExtremes {
  double speed_squared = 0.0;            ///< largest, m2/s2
  double speed_squared_per_depth = 0.0;  ///< largest, m/s2: the order of Froude numbers
  int not_finite = 0;
  int films = 0;  ///< states beyond the largest Froude number
};

QM_HD inline bool is_finite_state(double h, double qx, double qy) {
  const double sum = h + qx + qy;
  return sum - sum == 0.0;
}

/// Those of one state; a dry one does not move.
QM_HD inline FlowExtremes extremes_of_state(double h, double qx, double qy,
                                            const DepthTerms& depth) {
  const bool finite = is_finite_state(h, qx, qy);
  const double u = qx * depth.reciprocal;
  const double v = qy * depth.reciprocal;
  const double speed_squared = finite ? u * u + v * v : 0.0;
  const double per_depth = finite ? speed_squared * depth.reciprocal : 0.0;
  const bool is_film = per_depth > largest_froude * largest_froude * 9.81;
  return {speed_squared, per_depth, finite ? 0 : 1, is_film ? 1 : 0};
}

/// Those of two sets together.
QM_HD inline FlowExtremes united(const FlowExtremes& a, const FlowExtremes& b) {
  return {larger(a.speed_squared, b.speed_squared),
          larger(a.speed_squared_per_depth, b.speed_squared_per_depth),
          a.not_finite + b.not_finite, a.films + b.films};
}

/// Froude number |u| / sqrt(g h) of a state by its squared speed over its depth (m/s2).
QM_HD inline double froude_number(double speed_squared_per_depth) {
  return std::sqrt(speed_squared_per_depth / 9.81);
}

/// Whether a state is a film by |q|^2 > Fr^2 g h^3: without a branch or a division, so that a look
/// at many cells is cheap.
QM_HD inline bool is_film(double h, double qx, double qy, double zero_depth) {
  const bool is_fast = qx * qx + qy * qy > largest_froude * largest_froude * 9.81 * (h * h * h);
  return is_wet(h, zero_depth) & is_fast;
}

/// The largest value so far, and the cell that had it; of several, the one with the lowest number.
struct FlowRecord {
  double value = 0.0;
  int cell = -1;  ///< -1: no value above 0 yet

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.value, self.cell);
  }
};

/// Notes the value of a cell where it is larger; cells come in their order.
QM_HD inline void note(FlowRecord& record, double value, int cell) {
  if (value > record.value) record = {value, cell};
}

/// What a step tells of the flow.
struct StepNotes {
  /// The cell whose wave set the stable step; -1 where dry cells did, or nothing. Of several cells
  /// the one that set the step before, or else the one with the lowest number.
  int limiting_cell = -1;
  FlowRecord speed_squared;            ///< m2/s2
  FlowRecord speed_squared_per_depth;  ///< m/s2
  int not_finite = 0;                  ///< cells whose state is not finite after the step
  int films = 0;                       ///< cells beyond the largest Froude number after it

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.limiting_cell, self.speed_squared, self.speed_squared_per_depth, self.not_finite,
          self.films);
  }
};

}  // namespace physics
