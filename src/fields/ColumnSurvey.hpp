// A look at one column of the results: what is below zero, and what is no number.
#pragma once

#include <cmath>

#include "case/Mesh.hpp"
#include "utils/ExactSum.hpp"

namespace fields {

/// Of two numbers of cells the lower one; -1 stands for none.
inline cases::Number first_cell(cases::Number a, cases::Number b) {
  if (a < 0 || b < 0) return a < 0 ? b : a;
  return a < b ? a : b;
}

/// Of any cells in any order. Numbers of cells are -1 where there is none.
struct ColumnSurvey {
  /// Rounding leaves less than this below zero where a cell dries, m.
  static constexpr double rounding = 1e-9;

  long below_zero = 0;      ///< values below zero by more than rounding
  utils::ExactSum deficit;  ///< what they lack to zero, times the areas of their cells
  utils::ExactSum held;     ///< what is above zero, times the areas of its cells
  double lowest = 0.0;
  cases::Number lowest_cell = -1;      ///< of several the one with the lowest number
  long not_finite = 0;                 ///< values that are infinite or not a number
  cases::Number not_finite_cell = -1;  ///< the first of them

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.below_zero, self.deficit, self.held, self.lowest, self.lowest_cell, self.not_finite,
          self.not_finite_cell);
  }

  /// What is missing as a share of all above and below zero.
  double share() const {
    const double missing = deficit.value();
    return missing > 0.0 ? missing / (held.value() + missing) : 0.0;
  }

  void add(cases::Number cell, double value, double area) {
    if (!std::isfinite(value)) {
      ++not_finite;
      not_finite_cell = first_cell(not_finite_cell, cell);
      return;
    }
    if (value > 0.0) held.add(value * area);
    if (!(value < -rounding)) return;
    ++below_zero;
    deficit.add(-value * area);
    note_lowest(value, cell);
  }
  /// Adds what was seen in other cells.
  void add(const ColumnSurvey& other) {
    below_zero += other.below_zero;
    deficit.add(other.deficit);
    held.add(other.held);
    not_finite += other.not_finite;
    not_finite_cell = first_cell(not_finite_cell, other.not_finite_cell);
    note_lowest(other.lowest, other.lowest_cell);
  }

 private:
  void note_lowest(double value, cases::Number cell) {
    if (value > lowest || cell < 0) return;
    lowest_cell = value < lowest ? cell : first_cell(lowest_cell, cell);
    lowest = value;
  }
};

}  // namespace fields
