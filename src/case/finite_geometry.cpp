#include "case/finite_geometry.hpp"

#include <algorithm>
#include <cmath>

#include "utils/TextBuffer.hpp"

namespace cases {

namespace {

double size_of(const Mesh& mesh, Number node) {
  return std::max(
      {std::fabs(mesh.x[at(node)]), std::fabs(mesh.y[at(node)]), std::fabs(mesh.z[at(node)])});
}

}  // namespace

bool is_finite(const CellGeometry& cell) {
  const physics::SpacePoint& c = cell.center;
  return std::isfinite(c.x) && std::isfinite(c.y) && std::isfinite(c.z) &&
         std::isfinite(cell.area) && std::isfinite(cell.perimeter);
}

std::string overflow_of(const Mesh& mesh, std::span<const Number> nodes) {
  const std::size_t farthest =
      at(*std::max_element(nodes.begin(), nodes.end(), [&](Number a, Number b) {
        return size_of(mesh, a) < size_of(mesh, b);
      }));
  utils::TextBuffer text;
  text << "found a node at (" << mesh.x[farthest] << ", " << mesh.y[farthest] << ", "
       << mesh.z[farthest]
       << "), expected coordinates in metres whose sums and products are finite numbers";
  return std::string(text.text());
}

}  // namespace cases
