#include "mesh/OutlineGeometry.hpp"

#include <gmsh.h>

#include <vector>

namespace mesh_import {

namespace geometry = gmsh::model::geo;

void OutlineGeometry::build() {
  std::vector<int> rings;
  for (const std::vector<int>& ring : outline_.rings) {
    std::vector<int> lines;
    for (std::size_t i = 0; i < ring.size(); ++i) {
      lines.push_back(line(ring[i], ring[(i + 1) % ring.size()]));
    }
    rings.push_back(geometry::addCurveLoop(lines));
  }
  const int surface = geometry::addPlaneSurface(rings);
  std::vector<int> embedded;
  std::map<int, std::vector<int>> of_name;
  for (const Outline::Side& side : outline_.sides) {
    embedded.push_back(line(side.from, side.to));
    if (side.line >= 0) of_name[side.line].push_back(embedded.back());
  }
  geometry::synchronize();
  if (!embedded.empty()) gmsh::model::mesh::embed(1, embedded, 2, surface);
  for (const auto& [name, lines] : of_name) {
    const int group = gmsh::model::addPhysicalGroup(1, lines);
    gmsh::model::setPhysicalName(1, group, outline_.line_names[static_cast<std::size_t>(name)]);
  }
  gmsh::option::setNumber("Mesh.MeshSizeExtendFromBoundary", 0);  // sizes grow as they say
  // From Gmsh 4.9 on, the callback takes the size so far, too.
  gmsh::model::mesh::setSizeCallback(
      [size_at = size_at_, origin = origin_](int, int, double x, double y, double, auto...) {
        return size_at(x + origin.x, y + origin.y);
      });
}

int OutlineGeometry::point(int index) {
  const auto [found, is_new] = points_.try_emplace(index, 0);
  if (is_new) {
    const Node& node = outline_.points[static_cast<std::size_t>(index)];
    found->second =
        geometry::addPoint(node.x - origin_.x, node.y - origin_.y, 0.0, size_at_(node.x, node.y));
  }
  return found->second;
}

int OutlineGeometry::line(int from, int to) {
  const int first = point(from), last = point(to);
  return geometry::addLine(first, last);
}

}  // namespace mesh_import
