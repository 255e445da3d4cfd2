// How much of their areas the cells of a mesh lose to rounding, far from the origin.
#pragma once

#include <optional>
#include <string>

#include "physics/cell_geometry.hpp"

class AreaLoss {
 public:
  /// Adds the next cell: its area (m2) as the scheme takes it, and from differences.
  void add(physics::PlanPoint center, double area, double accurate_area);

  /// What was found and what helps, without a full stop; empty if no cell loses more than 1e-6.
  std::optional<std::string> remark() const;

 private:
  int cells_ = 0;
  int losing_cells_ = 0;
  double largest_ = 0.0;
  int worst_cell_ = -1;
  physics::PlanPoint worst_center_{};
};
