// The sharpest corner of a cell.
#pragma once

#include <algorithm>
#include <cmath>
#include <numbers>

#include "physics/cell_geometry.hpp"

namespace tools {

/// The smallest angle between neighbouring sides of a cell of n nodes, degrees.
template <class NodeAt>
double smallest_angle(int n, const NodeAt& node_at) {
  double smallest = 180.0;
  for (int i = 0; i < n; ++i) {
    const physics::PlanPoint here = node_at(i), next = node_at((i + 1) % n),
                             before = node_at((i + n - 1) % n);
    const double ax = next.x - here.x, ay = next.y - here.y;
    const double bx = before.x - here.x, by = before.y - here.y;
    const double angle = std::atan2(std::fabs(ax * by - ay * bx), ax * bx + ay * by);
    smallest = std::min(smallest, angle * 180.0 / std::numbers::pi);
  }
  return smallest;
}

}  // namespace tools
