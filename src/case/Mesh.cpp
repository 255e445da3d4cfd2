#include "case/Mesh.hpp"

#include <algorithm>

namespace cases {

void Mesh::add_cell(std::span<const Number> nodes) {
  if (first_node.empty() && nodes.size() != 3) {
    const Number triangles = n_cells();
    for (Number cell = 0; cell <= triangles; ++cell) first_node.push_back(3 * std::int64_t{cell});
  }
  cell_nodes.insert(cell_nodes.end(), nodes.begin(), nodes.end());
  if (!first_node.empty()) first_node.push_back(static_cast<std::int64_t>(cell_nodes.size()));
}

physics::SpacePoint Mesh::center_of(Number cell) const {
  const std::span<const Number> nodes = nodes_of(cell);
  return physics::cell_center(static_cast<int>(nodes.size()), [&](int i) {
    const std::size_t node = at(nodes[at(i)]);
    return physics::SpacePoint{x[node], y[node], z[node]};
  });
}

CellGeometry Mesh::geometry_of(Number cell) const {
  const std::span<const Number> nodes = nodes_of(cell);
  const auto plan = [&](int i) { return plan_node(nodes[at(i)]); };
  const int n = static_cast<int>(nodes.size());
  const physics::SpacePoint center = center_of(cell);
  double highest_node = -1e20;
  for (const Number node : nodes) highest_node = std::max(highest_node, z[at(node)]);
  return {center, physics::cell_area(n, {center.x, center.y}, plan),
          physics::cell_perimeter(n, plan), highest_node};
}

std::vector<double> Mesh::areas() const {
  std::vector<double> areas(at(n_cells()));
  for (Number cell = 0; cell < n_cells(); ++cell) areas[at(cell)] = geometry_of(cell).area;
  return areas;
}

double Mesh::accurate_area_of(Number cell) const {
  const std::span<const Number> nodes = nodes_of(cell);
  return physics::cell_area_of_differences(static_cast<int>(nodes.size()),
                                           [&](int i) { return plan_node(nodes[at(i)]); });
}

bool Mesh::points_into_left_cell(Number edge) const {
  return points_towards(center_of(left[at(edge)]), plan_node(node1[at(edge)]),
                        plan_node(node2[at(edge)]));
}

bool points_towards(const physics::SpacePoint& center, physics::PlanPoint a, physics::PlanPoint b) {
  const physics::PlanPoint middle{(a.x + b.x) / 2.0, (a.y + b.y) / 2.0};
  const physics::Edge normal = physics::edge_between(a, b);
  return (middle.x - center.x) * normal.nx + (middle.y - center.y) * normal.ny < 0.0;
}

const Boundary* Mesh::boundary_on(Number edge) const {
  const auto found =
      std::lower_bound(boundaries.begin(), boundaries.end(), edge,
                       [](const Boundary& boundary, Number e) { return boundary.edge < e; });
  return found != boundaries.end() && found->edge == edge ? &*found : nullptr;
}

}  // namespace cases
