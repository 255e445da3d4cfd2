#include "mesh/outline_mesher.hpp"

#include <cmath>

#include "mesh/gmsh_process.hpp"

namespace mesh_import {

namespace {

/// A point near another one, from which coordinates are counted without rounding.
Node round_origin(const Node& near) {
  constexpr double step = 1024.0;  // m; a power of two
  return {std::floor(near.x / step) * step, std::floor(near.y / step) * step, 0.0};
}

}  // namespace

Mesh mesh_outline(const std::string& name, const Outline& outline, const MeshSize& size) {
  const Node origin =
      round_origin(outline.points[static_cast<std::size_t>(outline.rings.front().front())]);
  GmshTask task;
  task.name = name;
  task.build = [&](const GmshModule& gmsh) {
    gmsh.draw(
        outline, [&size](double x, double y) { return size.at(x, y); }, origin);
  };
  Mesh mesh = mesh_with_gmsh(task);
  for (Node& node : mesh.nodes) {
    node.x += origin.x;
    node.y += origin.y;
  }
  return mesh;
}

}  // namespace mesh_import
