// What points cover: their extent, and the area within a line.
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

inline Extent united(const Extent& a, const Extent& b) {
  return extent_of({a.low, a.high, b.low, b.high});
}

/// Twice the area within a closed line, positive where it runs counter-clockwise; of differences to
/// its first point, which lose no digits.
inline double twice_area_of(const std::vector<Node>& ring) {
  double sum = 0.0;
  for (std::size_t i = 1; i < ring.size(); ++i) {
    const Node &a = ring[i - 1], &b = ring[i], &origin = ring.front();
    sum += (a.x - origin.x) * (b.y - origin.y) - (b.x - origin.x) * (a.y - origin.y);
  }
  return sum;
}

/// "x 0 to 100 m, y 0 to 50 m"; there is a point.
inline std::string extent_text(const std::vector<Node>& points) {
  const auto [low, high] = extent_of(points);
  return "x " + shown_coordinate(low.x) + " to " + shown_coordinate(high.x) + " m, y " +
         shown_coordinate(low.y) + " to " + shown_coordinate(high.y) + " m";
}

}  // namespace mesh_import
