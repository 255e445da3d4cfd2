// Which cell contains a point, for many points: a grid of bins over the plane.
#pragma once

#include <vector>

#include "case/Mesh.hpp"

/// Gives the same answer as trying the cells one after the other, rounding included.
class PointLocator {
 public:
  /// The mesh must stay as it is while the locator is in use.
  explicit PointLocator(const cases::Mesh& mesh) : PointLocator(mesh, mesh.n_cells()) {}
  /// Among the first so many cells.
  PointLocator(const cases::Mesh& mesh, cases::Number cells);

  /// The first cell, in their order, with a triangle (centre, node, next node) that contains the
  /// point; -1 if there is none.
  cases::Number cell_at(double x, double y) const;

 private:
  /// A rectangle in the plane, m.
  struct Box {
    double x_min, y_min, x_max, y_max;
    bool contains(double x, double y) const {
      return x >= x_min && x <= x_max && y >= y_min && y <= y_max;
    }
    void include(const Box& box);
  };
  /// Bins of equal size that cover a box, numbered row by row.
  struct Grid {
    Box box;
    std::size_t nx, ny;
    double bins_per_x, bins_per_y;  ///< 1/m
    std::size_t column(double x) const;
    std::size_t row(double y) const;
    /// Calls visit(bin) for every bin that a box touches.
    template <class Visit>
    void for_each_bin(const Box& touched, Visit visit) const;
  };

  physics::PlanPoint center_of(cases::Number cell) const;
  bool contains(cases::Number cell, physics::PlanPoint point) const;
  Box box_of(cases::Number cell) const;
  static Grid grid_over(const Box& box, std::size_t bins);
  bool is_reliable(cases::Number cell) const;
  Box reach_of(cases::Number cell) const;
  void fill_bins();

  const cases::Mesh& mesh_;
  cases::Number cells_;
  Box answered_{};                     ///< points outside are tried with every cell
  double rounding_ = 0.0;              ///< bound of the error of a cross product, m2
  std::vector<cases::Number> always_;  ///< cells that no bin can hold, tried for every point
  Grid grid_{};
  std::vector<cases::Number> in_bins_;   ///< cells of the first bin, of the second, ...
  std::vector<std::size_t> bin_begins_;  ///< where each bin begins in in_bins_, and the end
};
