#include "mesh/mesh_quality.hpp"

#include <cmath>
#include <cstddef>
#include <limits>

#include "mesh/numbers.hpp"
#include "physics/cell_geometry.hpp"
#include "physics/stable_step.hpp"
#include "support/smallest_angle.hpp"
#include "utils/number_text.hpp"

namespace mesh_import {

namespace {

/// Of a cell, and the least or most of its kind in a mesh.
struct Extreme {
  double value = std::numeric_limits<double>::infinity();
  const Cell* cell = nullptr;

  void note(double candidate, const Cell& of) {
    if (candidate < value) *this = {candidate, &of};
  }
};

physics::PlanPoint corner(const Mesh& mesh, const Cell& cell, int k) {
  const Node& node = mesh.nodes[static_cast<std::size_t>(cell.node(k))];
  return {node.x, node.y};
}

double characteristic_length_of(const Mesh& mesh, const Cell& cell) {
  const auto node_at = [&](int k) { return corner(mesh, cell, k); };
  return physics::characteristic_length(physics::cell_area_of_differences(cell.size(), node_at),
                                        physics::cell_perimeter(cell.size(), node_at));
}

std::string center_text(const Mesh& mesh, const Cell& cell) {
  const Node center = mesh.center(cell);
  return shown_point(center.x, center.y);
}

}  // namespace

void tell_quality(const Mesh& mesh, std::ostream& out) {
  Extreme angle, length;
  for (const Cell& cell : mesh.cells) {
    const auto node_at = [&](int k) { return corner(mesh, cell, k); };
    angle.note(tools::smallest_angle(cell.size(), node_at), cell);
    length.note(characteristic_length_of(mesh, cell), cell);
  }
  constexpr double hour = 3600.0, depth = 1.0;  // s, m
  const double step = physics::stable_step(depth, 0.0, 0.0, length.value, 0.0);
  out << "The smallest angle is " << utils::number_text(angle.value, 3) << " degrees, at "
      << center_text(mesh, *angle.cell) << ".\nThe smallest cell, with a length of "
      << utils::number_text(length.value, 3) << " m, lies at " << center_text(mesh, *length.cell)
      << ": under 1 m of water at rest an hour takes about "
      << utils::fixed_text(std::ceil(hour / step), 0)
      << " steps (divided by --cfl), deep or fast water more.\n";
}

}  // namespace mesh_import
