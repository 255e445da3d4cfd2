#include "mesh/outline_mesher.hpp"

#include <gmsh.h>

#include <cmath>
#include <map>
#include <vector>

#include "mesh/gmsh_process.hpp"

namespace mesh_import {

namespace {

namespace geometry = gmsh::model::geo;

/// A geometry of Gmsh, whose points count from an origin: it rounds as if all of them were near.
class OutlineGeometry {
 public:
  OutlineGeometry(const Outline& outline, const MeshSize& size, const Node& origin)
      : outline_(outline), size_(size), origin_(origin) {}

  void build() {
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
    gmsh::model::mesh::setSizeCallback([this](int, int, double x, double y, double, auto...) {
      return size_.at(x + origin_.x, y + origin_.y);
    });
  }

 private:
  int point(int index) {
    const auto [found, is_new] = points_.try_emplace(index, 0);
    if (is_new) {
      const Node& node = outline_.points[static_cast<std::size_t>(index)];
      found->second =
          geometry::addPoint(node.x - origin_.x, node.y - origin_.y, 0.0, size_.at(node.x, node.y));
    }
    return found->second;
  }
  int line(int from, int to) {
    const int first = point(from), last = point(to);
    return geometry::addLine(first, last);
  }

  const Outline& outline_;
  const MeshSize& size_;
  Node origin_;
  std::map<int, int> points_;  // of the outline -> of Gmsh
};

/// A point near another one, from which coordinates are counted without rounding.
Node round_origin(const Node& near) {
  constexpr double step = 1024.0;  // m; a power of two
  return {std::floor(near.x / step) * step, std::floor(near.y / step) * step, 0.0};
}

}  // namespace

Mesh mesh_outline(const std::string& name, const Outline& outline, const MeshSize& size) {
  const Node origin =
      round_origin(outline.points[static_cast<std::size_t>(outline.rings.front().front())]);
  OutlineGeometry geometry_of_outline(outline, size, origin);
  GmshTask task;
  task.name = name;
  task.build = [&geometry_of_outline] { geometry_of_outline.build(); };
  Mesh mesh = mesh_with_gmsh(task);
  for (Node& node : mesh.nodes) {
    node.x += origin.x;
    node.y += origin.y;
  }
  return mesh;
}

}  // namespace mesh_import
