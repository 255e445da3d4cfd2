#include "domain/PointLocator.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// Whether the point p lies in the triangle (center, a, b). Strict comparisons: a triangle that
/// runs counter-clockwise accepts its inside only, one that runs clockwise its sides too.
bool triangle_contains(const MeshNode& center, const MeshNode& node_a, const MeshNode& node_b,
                       double x, double y) {
  const MeshNode c(center.x - x, center.y - y, 0.0);
  const MeshNode a(node_a.x - x, node_a.y - y, 0.0);
  const MeshNode b(node_b.x - x, node_b.y - y, 0.0);
  const int count = (a.x * b.y > b.x * a.y) + (c.x * a.y > a.x * c.y) + (b.x * c.y > c.x * b.y);
  return count == 0 || count == 3;
}

// How far beyond its nodes a triangle can accept a point. Three comparisons that hold make the
// point lie within the rectangle of its nodes, in spite of rounding: differences and products are
// rounded monotonically. Three that fail say that no cross product exceeds its rounding error e, so
// that the barycentric coordinates of the point are at least -e/(2 A), with A the area of the
// triangle: it lies no farther outside than 3 e/(2 A) times the extent of the triangle. With
// 2 A > 24 e that is an eighth of the extent. Smaller triangles are tried for every point.
constexpr double smallest_area_in_errors = 24.0;
constexpr double reach = 0.125;

/// Points are answered from the bins up to this distance from the mesh, in diameters of the mesh.
constexpr double answered_distance = 10.0;

constexpr std::size_t most_entries_per_cell = 16;

}  // namespace

bool cell_contains(const ComputationalCell& cell, double x, double y) {
  for (int j = 0; j < cell.number_of_nodes(); ++j) {
    if (triangle_contains(cell.center, *cell.get_node(j), *cell.next_node(j), x, y)) return true;
  }
  return false;
}

void PointLocator::Box::include(const Box& box) {
  x_min = std::min(x_min, box.x_min);
  y_min = std::min(y_min, box.y_min);
  x_max = std::max(x_max, box.x_max);
  y_max = std::max(y_max, box.y_max);
}

std::size_t PointLocator::Grid::column(double x) const {
  return std::min(nx - 1, static_cast<std::size_t>((x - box.x_min) * bins_per_x));
}

std::size_t PointLocator::Grid::row(double y) const {
  return std::min(ny - 1, static_cast<std::size_t>((y - box.y_min) * bins_per_y));
}

template <class Visit>
void PointLocator::Grid::for_each_bin(const Box& touched, Visit visit) const {
  const std::size_t last_column = column(touched.x_max);
  const std::size_t last_row = row(touched.y_max);
  for (std::size_t j = row(touched.y_min); j <= last_row; ++j) {
    for (std::size_t i = column(touched.x_min); i <= last_column; ++i) visit(j * nx + i);
  }
}

PointLocator::Box PointLocator::box_of(const ComputationalCell& cell) {
  Box box = {cell.center.x, cell.center.y, cell.center.x, cell.center.y};
  for (const MeshNode* node : cell.nodes) box.include({node->x, node->y, node->x, node->y});
  return box;
}

PointLocator::Grid PointLocator::grid_over(const Box& box, std::size_t bins) {
  const double width = box.x_max - box.x_min;
  const double height = box.y_max - box.y_min;
  if (!(width > 0.0 && height > 0.0)) return {box, 1, 1, 0.0, 0.0};
  const auto most = static_cast<double>(bins);
  const auto nx = std::clamp(std::round(std::sqrt(most * (width / height))), 1.0, most);
  const auto ny = std::clamp(std::round(most / nx), 1.0, most);
  return {box, static_cast<std::size_t>(nx), static_cast<std::size_t>(ny), nx / width, ny / height};
}

PointLocator::PointLocator(const Cells& cells) : cells_(cells) {
  if (cells_.empty()) return;
  Box mesh = box_of(*cells_.front());
  for (const auto& cell : cells_) mesh.include(box_of(*cell));
  const double diameter = std::hypot(mesh.x_max - mesh.x_min, mesh.y_max - mesh.y_min);
  const double margin = answered_distance * diameter;
  answered_ = {mesh.x_min - margin, mesh.y_min - margin, mesh.x_max + margin, mesh.y_max + margin};

  // A cross product of two vectors of at most this length is wrong by six roundings at most: of its
  // four differences and its two products.
  const double longest = 2.0 * (margin + diameter);
  rounding_ = 8.0 * std::numeric_limits<double>::epsilon() * longest * longest;
  fill_bins();
}

bool PointLocator::is_reliable(const ComputationalCell& cell) const {
  const MeshNode& c = cell.center;
  for (int j = 0; j < cell.number_of_nodes(); ++j) {
    const MeshNode& a = *cell.get_node(j);
    const MeshNode& b = *cell.next_node(j);
    const double twice_area = (a.x - c.x) * (b.y - c.y) - (b.x - c.x) * (a.y - c.y);
    if (!(std::fabs(twice_area) > smallest_area_in_errors * rounding_)) return false;
  }
  return true;
}

PointLocator::Box PointLocator::reach_of(const ComputationalCell& cell) const {
  const Box box = box_of(cell);
  const double dx = reach * (box.x_max - box.x_min);
  const double dy = reach * (box.y_max - box.y_min);
  return {box.x_min - dx, box.y_min - dy, box.x_max + dx, box.y_max + dy};
}

void PointLocator::fill_bins() {
  std::vector<int> placed;
  for (int i = 0; i < static_cast<int>(cells_.size()); ++i) {
    (is_reliable(*cells_[static_cast<std::size_t>(i)]) ? placed : always_).push_back(i);
  }
  if (placed.empty()) return;
  const auto reach_of_number = [&](int i) {
    return reach_of(*cells_[static_cast<std::size_t>(i)]);
  };
  Box all = reach_of_number(placed.front());
  for (const int i : placed) all.include(reach_of_number(i));

  // A mesh whose cells overlap may touch very many bins: then larger ones must do.
  std::size_t entries = 0;
  for (std::size_t bins = placed.size(); bins > 0; bins /= 4) {
    grid_ = grid_over(all, bins);
    entries = 0;
    bin_begins_.assign(grid_.nx * grid_.ny + 1, 0);
    const std::size_t limit = most_entries_per_cell * placed.size();
    for (const int i : placed) {
      const Box touched = reach_of_number(i);
      entries += (grid_.column(touched.x_max) - grid_.column(touched.x_min) + 1) *
                 (grid_.row(touched.y_max) - grid_.row(touched.y_min) + 1);
      if (entries > limit) break;
      grid_.for_each_bin(touched, [&](std::size_t bin) { ++bin_begins_[bin + 1]; });
    }
    if (entries <= limit) break;
  }
  for (std::size_t bin = 1; bin < bin_begins_.size(); ++bin) {
    bin_begins_[bin] += bin_begins_[bin - 1];
  }
  in_bins_.resize(entries);
  std::vector<std::size_t> next(bin_begins_.begin(), bin_begins_.end() - 1);
  for (const int i : placed) {
    grid_.for_each_bin(reach_of_number(i), [&](std::size_t bin) { in_bins_[next[bin]++] = i; });
  }
}

ComputationalCell* PointLocator::cell_at(double x, double y) const {
  const auto contains = [&](int i) {
    return cell_contains(*cells_[static_cast<std::size_t>(i)], x, y);
  };
  const int none = static_cast<int>(cells_.size());
  int found = none;
  if (!answered_.contains(x, y)) {
    for (found = 0; found < none && !contains(found); ++found) {
    }
  } else {
    if (!in_bins_.empty() && grid_.box.contains(x, y)) {
      const std::size_t bin = grid_.row(y) * grid_.nx + grid_.column(x);
      for (std::size_t k = bin_begins_[bin]; k < bin_begins_[bin + 1] && found == none; ++k) {
        if (contains(in_bins_[k])) found = in_bins_[k];
      }
    }
    for (std::size_t k = 0; k < always_.size() && always_[k] < found; ++k) {
      if (contains(always_[k])) found = always_[k];
    }
  }
  return found == none ? nullptr : cells_[static_cast<std::size_t>(found)].get();
}
