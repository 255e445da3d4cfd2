#include "case/finite_geometry.hpp"

#include <algorithm>
#include <cmath>

#include "utils/TextBuffer.hpp"

namespace cases {

namespace {

double size_of(const physics::SpacePoint& node) {
  return std::max({std::fabs(node.x), std::fabs(node.y), std::fabs(node.z)});
}

}  // namespace

bool is_finite(const CellGeometry& cell) {
  const physics::SpacePoint& c = cell.center;
  return std::isfinite(c.x) && std::isfinite(c.y) && std::isfinite(c.z) &&
         std::isfinite(cell.area) && std::isfinite(cell.perimeter);
}

std::string overflow_of(const std::vector<physics::SpacePoint>& nodes) {
  const physics::SpacePoint& farthest =
      *std::max_element(nodes.begin(), nodes.end(),
                        [](const auto& a, const auto& b) { return size_of(a) < size_of(b); });
  utils::TextBuffer text;
  text << "found a node at (" << farthest.x << ", " << farthest.y << ", " << farthest.z
       << "), expected coordinates in metres whose sums and products are finite numbers";
  return std::string(text.text());
}

}  // namespace cases
