// How much of their areas the cells of a mesh lose to rounding, far from the origin.
#pragma once

#include <optional>
#include <string>

#include "physics/cell_geometry.hpp"

class AreaLoss {
 public:
  /// Adds the next cell: its area (m2) as the scheme takes it, and from differences.
  void add(physics::PlanPoint center, double area, double accurate_area);
  /// Adds the cells of another, which follow those of this one.
  void add(const AreaLoss& next);

  /// What was found and what helps, without a full stop; empty if no cell loses more than 1e-6.
  std::optional<std::string> remark() const;

  /// For utils/bytes.hpp.
  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.cells_, self.losing_cells_, self.largest_, self.worst_cell_, self.worst_center_.x,
          self.worst_center_.y);
  }

 private:
  int cells_ = 0;
  int losing_cells_ = 0;
  double largest_ = 0.0;
  int worst_cell_ = -1;
  physics::PlanPoint worst_center_{};
};
