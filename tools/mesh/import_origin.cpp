#include "mesh/import_origin.hpp"

#include "case/AreaLoss.hpp"
#include "mesh/numbers.hpp"
#include "physics/cell_geometry.hpp"
#include "utils/stop.hpp"

namespace mesh_import {

namespace {

void move(Node& node, const Node& origin) {
  node.x -= origin.x;
  node.y -= origin.y;
}

void warn_of_area_loss(const Mesh& mesh) {
  AreaLoss loss;
  for (const Cell& cell : mesh.cells) {
    const auto node_at = [&](int k) {
      const Node& node = mesh.nodes[static_cast<std::size_t>(cell.node(k))];
      return physics::PlanPoint{node.x, node.y};
    };
    const Node center = mesh.center(cell);
    loss.add({center.x, center.y}, physics::cell_area(cell.size(), {center.x, center.y}, node_at),
             physics::cell_area_of_differences(cell.size(), node_at));
  }
  if (const auto remark = loss.remark()) utils::warn(*remark + ".");
}

}  // namespace

void move_to_origin(Case& contents, std::ostream& out) {
  if (contents.origin) {
    for (Node& node : contents.mesh.nodes) move(node, *contents.origin);
    for (Gauge& gauge : contents.gauges) move(gauge.place, *contents.origin);
    out << "All coordinates of the case count from "
        << shown_point(contents.origin->x, contents.origin->y) << ".\n";
  }
  warn_of_area_loss(contents.mesh);
}

}  // namespace mesh_import
