// What a set of points covers, for messages.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "mesh/mesh.hpp"
#include "mesh/numbers.hpp"

namespace mesh_import {

/// "x 0 to 100 m, y 0 to 50 m"; there is a point.
inline std::string extent_text(const std::vector<Node>& points) {
  const auto [west, east] = std::minmax_element(
      points.begin(), points.end(), [](const Node& a, const Node& b) { return a.x < b.x; });
  const auto [south, north] = std::minmax_element(
      points.begin(), points.end(), [](const Node& a, const Node& b) { return a.y < b.y; });
  return "x " + shown_coordinate(west->x) + " to " + shown_coordinate(east->x) + " m, y " +
         shown_coordinate(south->y) + " to " + shown_coordinate(north->y) + " m";
}

}  // namespace mesh_import
