// A look at one column of the results: what is below zero, and what is no number.
#pragma once

#include <cmath>

/// Numbers of cells are -1 where there is none.
struct ColumnSurvey {
  /// Rounding leaves less than this below zero where a cell dries, m.
  static constexpr double rounding = 1e-9;

  long below_zero = 0;   ///< values below zero by more than rounding
  double deficit = 0.0;  ///< what they lack to zero, times the areas of their cells
  double held = 0.0;     ///< what is above zero, times the areas of its cells
  double lowest = 0.0;
  int lowest_cell = -1;
  long not_finite = 0;       ///< values that are infinite or not a number
  int not_finite_cell = -1;  ///< the first of them

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.below_zero, self.deficit, self.held, self.lowest, self.lowest_cell, self.not_finite,
          self.not_finite_cell);
  }

  /// What is missing as a share of all above and below zero.
  double share() const { return deficit > 0.0 ? deficit / (held + deficit) : 0.0; }

  void add(int cell, double value, double area) {
    if (!std::isfinite(value)) {
      if (not_finite++ == 0) not_finite_cell = cell;
      return;
    }
    if (value > 0.0) held += value * area;
    if (!(value < -rounding)) return;
    ++below_zero;
    deficit -= value * area;
    if (value < lowest) {
      lowest = value;
      lowest_cell = cell;
    }
  }
};
