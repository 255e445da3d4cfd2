// Squares over a mesh, by which ranks tell each other roughly where something is.
#pragma once

#include <algorithm>
#include <utility>
#include <vector>

#include "case/Part.hpp"
#include "engine/aligned_vector.hpp"
#include "physics/cell_geometry.hpp"
#include "ranks/Group.hpp"

namespace ranks {

/// They are numbered in rows from the south-west corner on. Where a mesh is fine, they are narrow,
/// so that none holds very many cells.
class Squares {
 public:
  /// Between lines of one x (m) each, in ascending order, and of one y.
  Squares(std::vector<double> x_lines, std::vector<double> y_lines)
      : x_lines_(std::move(x_lines)), y_lines_(std::move(y_lines)) {}

  int columns() const { return static_cast<int>(x_lines_.size()) + 1; }
  int rows() const { return static_cast<int>(y_lines_.size()) + 1; }
  int count() const { return columns() * rows(); }
  /// The square that holds a point.
  int at_point(double x, double y) const {
    return place(y, y_lines_) * columns() + place(x, x_lines_);
  }
  /// Between the lines around it, m; one at the rim is taken to be as wide as the one before, or a
  /// metre where there is but one line.
  physics::PlanPoint center(int square) const {
    return {middle(square % columns(), x_lines_), middle(square / columns(), y_lines_)};
  }
  /// The numbers of all of them along a Hilbert curve.
  std::vector<int> along_curve() const;

 private:
  static int place(double x, const std::vector<double>& lines) {
    return static_cast<int>(std::upper_bound(lines.begin(), lines.end(), x) - lines.begin());
  }

  static double middle(int place, const std::vector<double>& lines);

  std::vector<double> x_lines_, y_lines_;
};

/// Some hundreds with cells for every rank, as far as several cells are left for each, and all of
/// them are not too many for one rank: on a mesh that winds through its extent most hold nothing.
/// As many cells lie between two neighbouring lines as between any others. Called by all ranks.
Squares squares_over(Group& group, const cases::Part& part);

/// The squares of the cells of a part, ghosts included.
std::vector<int> squares_of(const Squares& squares, const cases::Part& part);

}  // namespace ranks
