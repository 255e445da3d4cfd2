#include "mesh/check/mesh_summary.hpp"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <tuple>
#include <utility>

#include "case/AreaLoss.hpp"
#include "case/finite_geometry.hpp"
#include "mesh/check/numbers.hpp"
#include "support/smallest_angle.hpp"

namespace tools::check {

namespace {

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

MeshSummary mesh_summary(const cases::Mesh& mesh, const std::vector<CellValues>& cells) {
  MeshSummary summary;
  summary.nodes = mesh.n_nodes();
  summary.cells = mesh.n_cells();
  summary.edges = mesh.n_edges();
  if (mesh.n_nodes() > 0) {
    const auto range = [](const std::vector<double>& coordinate) {
      const auto [low, high] = std::minmax_element(coordinate.begin(), coordinate.end());
      return std::pair(*low, *high);
    };
    std::tie(summary.x_min, summary.x_max) = range(mesh.x);
    std::tie(summary.y_min, summary.y_max) = range(mesh.y);
    std::tie(summary.z_min, summary.z_max) = range(mesh.z);
  }
  for (int c = 0; c < mesh.n_cells(); ++c) {
    summary.area += cells[static_cast<std::size_t>(c)].area;
    const std::span<const cases::Number> nodes = mesh.nodes_of(c);
    const double angle = smallest_angle(static_cast<int>(nodes.size()), [&](int k) {
      return mesh.plan_node(nodes[static_cast<std::size_t>(k)]);
    });
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

void check_finite_geometry(const CheckedCase& checked, const std::vector<CellValues>& cells,
                           Findings& findings) {
  const cases::Mesh& mesh = checked.contents.mesh;
  for (int c = 0; c < mesh.n_cells(); ++c) {
    if (cells[static_cast<std::size_t>(c)].has_finite_geometry) continue;
    findings.error("lost cell",
                   "cell " + std::to_string(c) + ": " + cases::overflow_of(mesh, mesh.nodes_of(c)));
  }
  if (!checked.has_edges) return;
  for (int e = 0; e < mesh.n_edges(); ++e) {
    if (std::isfinite(mesh.edge_of(e).length)) continue;
    const cases::Number nodes[] = {mesh.node1[cases::at(e)], mesh.node2[cases::at(e)]};
    findings.error("lost edge",
                   "edge " + std::to_string(e) + ": " + cases::overflow_of(mesh, nodes));
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
    const physics::SpacePoint& center = cells[cases::at(mesh.sharpest_cell)].center;
    findings.warning("sharp angle", "cell " + std::to_string(mesh.sharpest_cell) + " at " +
                                        point(center.x, center.y) + " has an angle of " +
                                        number(mesh.smallest_angle) +
                                        " degrees: slivers cost accuracy and time");
  }
}

}  // namespace tools::check
