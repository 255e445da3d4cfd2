// What a set of points covers.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "mesh/mesh.hpp"
#include "mesh/numbers.hpp"

namespace mesh_import {

struct Extent {
  Node low, high;

  /// With a margin around it, m.
  bool holds(const Node& point, double margin = 0.0) const {
    return point.x >= low.x - margin && point.x <= high.x + margin && point.y >= low.y - margin &&
           point.y <= high.y + margin;
  }
};

/// There is a point.
inline Extent extent_of(const std::vector<Node>& points) {
  Extent extent{points.front(), points.front()};
  for (const Node& point : points) {
    extent.low = {std::min(extent.low.x, point.x), std::min(extent.low.y, point.y), 0.0};
    extent.high = {std::max(extent.high.x, point.x), std::max(extent.high.y, point.y), 0.0};
  }
  return extent;
}

/// "x 0 to 100 m, y 0 to 50 m"; there is a point.
inline std::string extent_text(const std::vector<Node>& points) {
  const auto [low, high] = extent_of(points);
  return "x " + shown_coordinate(low.x) + " to " + shown_coordinate(high.x) + " m, y " +
         shown_coordinate(low.y) + " to " + shown_coordinate(high.y) + " m";
}

}  // namespace mesh_import
