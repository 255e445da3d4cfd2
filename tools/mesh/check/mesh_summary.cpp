#include "mesh/check/mesh_summary.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <tuple>
#include <utility>

#include "case/AreaLoss.hpp"
#include "case/finite_geometry.hpp"
#include "mesh/check/numbers.hpp"

namespace tools::check {

namespace {

/// Smallest angle between neighbouring sides of a cell, degrees.
double smallest_angle_of(const CaseMesh& mesh, int cell) {
  double smallest = 180.0;
  const int size = mesh.n_nodes_of(cell);
  const auto corners = mesh.corners(cell);
  for (int i = 0; i < size; ++i) {
    const MeshNode& here = *corners[static_cast<std::size_t>(i)];
    const MeshNode& next = *corners[static_cast<std::size_t>((i + 1) % size)];
    const MeshNode& before = *corners[static_cast<std::size_t>((i + size - 1) % size)];
    const double ax = next.x - here.x, ay = next.y - here.y;
    const double bx = before.x - here.x, by = before.y - here.y;
    const double angle = std::atan2(std::fabs(ax * by - ay * bx), ax * bx + ay * by);
    smallest = std::min(smallest, angle * 180.0 / std::numbers::pi);
  }
  return smallest;
}

std::vector<int> smallest_cells_of(const std::vector<CellValues>& cells) {
  constexpr std::size_t shown = 10;
  std::vector<int> order(cells.size());
  std::iota(order.begin(), order.end(), 0);
  const auto end = order.begin() + static_cast<std::ptrdiff_t>(std::min(shown, order.size()));
  std::partial_sort(order.begin(), end, order.end(), [&](int a, int b) {
    const double la = cells[static_cast<std::size_t>(a)].char_length;
    const double lb = cells[static_cast<std::size_t>(b)].char_length;
    return la < lb || (la == lb && a < b);
  });
  order.erase(end, order.end());
  return order;
}

}  // namespace

MeshSummary mesh_summary(const CaseMesh& mesh, const std::vector<CellValues>& cells) {
  MeshSummary summary;
  summary.nodes = mesh.n_nodes();
  summary.cells = mesh.n_cells();
  summary.edges = mesh.n_edges();
  if (!mesh.nodes.empty()) {
    const auto range = [&](double MeshNode::*coordinate) {
      const auto [low, high] = std::minmax_element(
          mesh.nodes.begin(), mesh.nodes.end(),
          [&](const MeshNode& a, const MeshNode& b) { return a.*coordinate < b.*coordinate; });
      return std::pair((*low).*coordinate, (*high).*coordinate);
    };
    std::tie(summary.x_min, summary.x_max) = range(&MeshNode::x);
    std::tie(summary.y_min, summary.y_max) = range(&MeshNode::y);
    std::tie(summary.z_min, summary.z_max) = range(&MeshNode::z);
  }
  for (int c = 0; c < mesh.n_cells(); ++c) {
    summary.area += cells[static_cast<std::size_t>(c)].area;
    const double angle = smallest_angle_of(mesh, c);
    if (angle < summary.smallest_angle) {
      summary.smallest_angle = angle;
      summary.sharpest_cell = c;
    }
  }
  summary.smallest_cells = smallest_cells_of(cells);
  return summary;
}

WaterSummary water_summary(const DataFile& data, const std::vector<CellValues>& cells) {
  WaterSummary water;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    water.volume += cells[i].depth * cells[i].area;
    if (cells[i].depth > data.zero_depth) {
      ++water.wet_cells;
      water.area += cells[i].area;
    }
    if (cells[i].depth > water.largest_depth) {
      water.largest_depth = cells[i].depth;
      water.deepest_cell = static_cast<int>(i);
    }
  }
  return water;
}

namespace {

std::string overflow_of(const std::vector<const MeshNode*>& nodes) {
  std::vector<physics::SpacePoint> points;
  for (const MeshNode* node : nodes) points.push_back({node->x, node->y, node->z});
  return cases::overflow_of(points);
}

}  // namespace

void check_finite_geometry(const CaseMesh& mesh, const std::vector<CellValues>& cells,
                           Findings& findings) {
  for (int c = 0; c < mesh.n_cells(); ++c) {
    if (cells[static_cast<std::size_t>(c)].has_finite_geometry) continue;
    findings.error("lost cell", "cell " + std::to_string(c) + ": " + overflow_of(mesh.corners(c)));
  }
  if (!mesh.has_edges) return;
  for (int e = 0; e < mesh.n_edges(); ++e) {
    const CaseEdge& edge = mesh.edges[static_cast<std::size_t>(e)];
    const MeshNode& a = mesh.nodes[static_cast<std::size_t>(edge.node1)];
    const MeshNode& b = mesh.nodes[static_cast<std::size_t>(edge.node2)];
    if (std::isfinite(a.horizontal_distance(b))) continue;
    findings.error("lost edge", "edge " + std::to_string(e) + ": " + overflow_of({&a, &b}));
  }
}

void check_quality(const MeshSummary& mesh, const std::vector<CellValues>& cells,
                   Findings& findings) {
  AreaLoss loss;
  for (const CellValues& cell : cells) {
    loss.add({cell.center.x, cell.center.y}, cell.area, cell.accurate_area);
  }
  findings.add_remark("area", loss.remark());
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (cells[i].area > 0.0 || !cells[i].has_finite_geometry) continue;
    findings.warning("zero area", "cell " + std::to_string(i) + " at " +
                                      point(cells[i].center.x, cells[i].center.y) +
                                      " has no area: its values are not numbers");
  }
  constexpr double sharp = 5.0;  // degrees
  if (mesh.sharpest_cell >= 0 && mesh.smallest_angle < sharp) {
    const MeshNode& center = cells[static_cast<std::size_t>(mesh.sharpest_cell)].center;
    findings.warning("sharp angle", "cell " + std::to_string(mesh.sharpest_cell) + " at " +
                                        point(center.x, center.y) + " has an angle of " +
                                        number(mesh.smallest_angle) +
                                        " degrees: slivers cost accuracy and time");
  }
}

}  // namespace tools::check
