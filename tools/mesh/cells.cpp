#include "mesh/cells.hpp"

#include <algorithm>
#include <map>
#include <numeric>
#include <utility>

#include "mesh/numbers.hpp"
#include "support/Error.hpp"

namespace mesh_import {

namespace {

/// Smaller ones, relative to the square of the longest side, are rounding errors.
constexpr double least_relative_area = 1e-12;

double cross(const Node& a, const Node& b, const Node& c) {
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

double square_of_distance(const Node& a, const Node& b) {
  return (b.x - a.x) * (b.x - a.x) + (b.y - a.y) * (b.y - a.y);
}

class CellPreparation {
 public:
  explicit CellPreparation(Mesh& mesh) : mesh_(mesh) {}

  CellChanges run() {
    for (Node& node : mesh_.nodes) {
      node = {as_written(node.x), as_written(node.y), as_written(node.z)};
    }
    for (std::size_t i = 0; i < mesh_.cells.size(); ++i) turn_counter_clockwise(i);
    expect_none_of(flat_);
    expect_none_of(crossed_);
    join_repeated_cells();
    split_quads();
    changes_.n_unused_nodes = drop_unused_nodes(mesh_);
    return changes_;
  }

 private:
  const Node& at(int node) const { return mesh_.nodes[static_cast<std::size_t>(node)]; }
  const Node& at(const Cell& cell, int k) const { return at(cell.node(k)); }

  /// Cells with one fault: the first is described, all are counted.
  struct Fault {
    const char* text;
    std::size_t count = 0;
    std::string first = {};
  };
  void note(Fault& fault, const Cell& cell, std::size_t i) const {
    if (fault.count++ > 0) return;
    std::string corners;
    for (int k = 0; k < cell.size(); ++k) {
      corners += (k > 0 ? ", " : "") + shown_point(at(cell, k).x, at(cell, k).y);
    }
    fault.first =
        "cell " + std::to_string(i + 1) + " of the mesh, with the corners " + corners + ", ";
  }
  void expect_none_of(const Fault& fault) const {
    if (fault.count == 0) return;
    throw tools::Error(
        fault.first + fault.text +
        (fault.count == 1 ? ""
                          : " It is the first of " + std::to_string(fault.count) + " such cells."));
  }

  /// Twice the area, positive if counter-clockwise.
  double doubled_area(const Cell& cell) const {
    const double first = cross(at(cell, 0), at(cell, 1), at(cell, 2));
    return cell.is_quad() ? first + cross(at(cell, 0), at(cell, 2), at(cell, 3)) : first;
  }

  void turn_counter_clockwise(std::size_t i) {
    Cell& cell = mesh_.cells[i];
    double longest = 0.0;
    for (int k = 0; k < cell.size(); ++k) {
      longest = std::max(longest, square_of_distance(at(cell, k), at(cell, k + 1)));
    }
    const double area = doubled_area(cell);
    if (!(std::abs(area) > least_relative_area * longest)) {
      note(flat_, cell, i);
      return;
    }
    if (area < 0.0) {
      std::reverse(cell.nodes.begin(), cell.nodes.begin() + cell.size());
      ++changes_.n_turned;
    }
    if (cell.is_quad() && !can_split(cell, 0) && !can_split(cell, 1)) {
      note(crossed_, cell, i);
    }
  }

  /// Whether the diagonal from corner k leaves two triangles that run counter-clockwise.
  bool can_split(const Cell& quad, int k) const {
    const Node &a = at(quad, k), &b = at(quad, k + 1), &c = at(quad, k + 2), &d = at(quad, k + 3);
    return cross(a, b, c) > 0.0 && cross(a, c, d) > 0.0;
  }

  void split_quads() {
    std::vector<Cell> cells;
    std::vector<int> zones;
    std::vector<double> beds;
    cells.reserve(mesh_.cells.size());
    zones.reserve(mesh_.cells.size());
    for (std::size_t i = 0; i < mesh_.cells.size(); ++i) {
      const Cell& cell = mesh_.cells[i];
      const int zone = mesh_.zone_of_cell[i];
      if (!mesh_.bed_of_cell.empty())
        beds.insert(beds.end(), cell.size() - 2, mesh_.bed_of_cell[i]);
      if (!cell.is_quad()) {
        cells.push_back(cell);
        zones.push_back(zone);
        continue;
      }
      const bool second_is_shorter = square_of_distance(at(cell, 1), at(cell, 3)) <
                                     square_of_distance(at(cell, 0), at(cell, 2));
      const int k = can_split(cell, second_is_shorter) ? second_is_shorter : !second_is_shorter;
      cells.push_back({{cell.node(k), cell.node(k + 1), cell.node(k + 2), -1}});
      cells.push_back({{cell.node(k), cell.node(k + 2), cell.node(k + 3), -1}});
      zones.insert(zones.end(), 2, zone);
      ++changes_.n_split;
    }
    mesh_.cells = std::move(cells);
    mesh_.zone_of_cell = std::move(zones);
    mesh_.bed_of_cell = std::move(beds);
  }

  /// A cell that lies in several surfaces may stand in the file once for each.
  void join_repeated_cells() {
    if (mesh_.zones.size() < 2) return;
    const auto key = [this](std::size_t i) {
      auto nodes = mesh_.cells[i].nodes;
      std::sort(nodes.begin(), nodes.end());
      return nodes;
    };
    std::vector<std::size_t> order(mesh_.cells.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::vector<std::array<int, 4>> keys(order.size());
    for (std::size_t i = 0; i < order.size(); ++i) keys[i] = key(i);
    std::stable_sort(order.begin(), order.end(),
                     [&keys](std::size_t a, std::size_t b) { return keys[a] < keys[b]; });
    std::vector<bool> is_repeated(order.size(), false);
    for (std::size_t k = 1, first = 0; k < order.size(); ++k) {
      if (keys[order[k]] != keys[order[first]]) {
        first = k;
        continue;
      }
      is_repeated[order[k]] = true;
      ++changes_.n_repeated_cells;
      join_zones(order[first], order[k]);
    }
    if (changes_.n_repeated_cells > 0) remove_cells(is_repeated);
  }

  void join_zones(std::size_t kept, std::size_t repeated) {
    const auto& a = mesh_.zones[static_cast<std::size_t>(mesh_.zone_of_cell[kept])];
    const auto& b = mesh_.zones[static_cast<std::size_t>(mesh_.zone_of_cell[repeated])];
    std::vector<int> both;
    std::set_union(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(both));
    const auto found = std::find(mesh_.zones.begin(), mesh_.zones.end(), both);
    mesh_.zone_of_cell[kept] = static_cast<int>(found - mesh_.zones.begin());
    if (found == mesh_.zones.end()) mesh_.zones.push_back(std::move(both));
  }

  void remove_cells(const std::vector<bool>& is_removed) {
    std::size_t n = 0;
    for (std::size_t i = 0; i < mesh_.cells.size(); ++i) {
      if (is_removed[i]) continue;
      mesh_.cells[n] = mesh_.cells[i];
      if (!mesh_.bed_of_cell.empty()) mesh_.bed_of_cell[n] = mesh_.bed_of_cell[i];
      mesh_.zone_of_cell[n++] = mesh_.zone_of_cell[i];
    }
    mesh_.cells.resize(n);
    if (!mesh_.bed_of_cell.empty()) mesh_.bed_of_cell.resize(n);
    mesh_.zone_of_cell.resize(n);
  }

  Mesh& mesh_;
  CellChanges changes_;
  Fault flat_{"has no area: expected corners that are not in one line."};
  Fault crossed_{"crosses itself: expected the corners in order around the cell."};
};

}  // namespace

int drop_unused_nodes(Mesh& mesh) {
  std::vector<int> number(mesh.nodes.size(), -1);
  for (const Cell& cell : mesh.cells) {
    for (int k = 0; k < cell.size(); ++k) number[static_cast<std::size_t>(cell.node(k))] = 0;
  }
  int n = 0;
  for (std::size_t i = 0; i < number.size(); ++i) {
    if (number[i] < 0) continue;
    mesh.nodes[static_cast<std::size_t>(n)] = mesh.nodes[i];
    number[i] = n++;
  }
  mesh.nodes.resize(static_cast<std::size_t>(n));
  const auto renumber = [&number](int& node) {
    if (node >= 0) node = number[static_cast<std::size_t>(node)];
  };
  for (Cell& cell : mesh.cells) {
    for (int k = 0; k < cell.size(); ++k) renumber(cell.nodes[static_cast<std::size_t>(k)]);
  }
  for (LinePiece& piece : mesh.line_pieces) {
    renumber(piece.node1);
    renumber(piece.node2);
  }
  return static_cast<int>(number.size()) - n;
}

CellChanges prepare_cells(Mesh& mesh) { return CellPreparation(mesh).run(); }

}  // namespace mesh_import
