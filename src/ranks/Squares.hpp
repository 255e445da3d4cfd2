// Equal squares over a mesh, by which ranks tell each other roughly where something is.
#pragma once

#include <vector>

#include "case/Part.hpp"
#include "engine/aligned_vector.hpp"
#include "ranks/Group.hpp"

namespace ranks {

class Squares {
 public:
  /// In rows from the south-west corner of an extent on; `side`: m, above 0.
  Squares(double x_min, double y_min, double side, int columns, int rows)
      : x_min_(x_min), y_min_(y_min), per_metre_(1.0 / side), columns_(columns), rows_(rows) {}

  int columns() const { return columns_; }
  int rows() const { return rows_; }
  int count() const { return columns_ * rows_; }
  /// The square that holds a point of the extent.
  int at_point(double x, double y) const {
    return place(y, y_min_, rows_) * columns_ + place(x, x_min_, columns_);
  }
  /// The numbers of all of them along a Hilbert curve.
  std::vector<int> along_curve() const;

 private:
  int place(double x, double x_min, int count) const {
    const int k = static_cast<int>((x - x_min) * per_metre_);
    return k < count ? k : count - 1;
  }

  double x_min_, y_min_, per_metre_;
  int columns_, rows_;
};

/// Some hundreds for every rank, as far as several cells are left for each. Called by all ranks.
Squares squares_over(Group& group, const cases::Part& part);

/// The squares of the cells of a part, ghosts included.
std::vector<int> squares_of(const Squares& squares, const cases::Part& part);

/// Numbers of all ranks, added up one by one; on rank 0, on the others anything. Called by all
/// ranks.
void add_up_on_first(Group& group, std::vector<int>& numbers);

}  // namespace ranks
