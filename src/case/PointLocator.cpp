#include "case/PointLocator.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using cases::Number;
using physics::PlanPoint;

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

PlanPoint PointLocator::center_of(Number cell) const {
  const physics::SpacePoint center = mesh_.center_of(cell);
  return {center.x, center.y};
}

bool PointLocator::contains(Number cell, PlanPoint point) const {
  const std::span<const Number> nodes = mesh_.nodes_of(cell);
  return physics::cell_contains(
      static_cast<int>(nodes.size()), center_of(cell),
      [&](int i) { return mesh_.plan_node(nodes[cases::at(i)]); }, point);
}

PointLocator::Box PointLocator::box_of(Number cell) const {
  const PlanPoint center = center_of(cell);
  Box box = {center.x, center.y, center.x, center.y};
  for (const Number number : mesh_.nodes_of(cell)) {
    const PlanPoint node = mesh_.plan_node(number);
    box.include({node.x, node.y, node.x, node.y});
  }
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

PointLocator::PointLocator(const cases::Mesh& mesh, Number cells) : mesh_(mesh), cells_(cells) {
  if (cells_ == 0) return;
  Box all = box_of(0);
  for (Number cell = 0; cell < cells_; ++cell) all.include(box_of(cell));
  const double diameter = std::hypot(all.x_max - all.x_min, all.y_max - all.y_min);
  const double margin = answered_distance * diameter;
  answered_ = {all.x_min - margin, all.y_min - margin, all.x_max + margin, all.y_max + margin};

  // A cross product of two vectors of at most this length is wrong by six roundings at most: of its
  // four differences and its two products.
  const double longest = 2.0 * (margin + diameter);
  rounding_ = 8.0 * std::numeric_limits<double>::epsilon() * longest * longest;
  fill_bins();
}

bool PointLocator::is_reliable(Number cell) const {
  const PlanPoint c = center_of(cell);
  const std::span<const Number> nodes = mesh_.nodes_of(cell);
  for (std::size_t j = 0; j < nodes.size(); ++j) {
    const PlanPoint a = mesh_.plan_node(nodes[j]);
    const PlanPoint b = mesh_.plan_node(nodes[j + 1 < nodes.size() ? j + 1 : 0]);
    const double twice_area = (a.x - c.x) * (b.y - c.y) - (b.x - c.x) * (a.y - c.y);
    if (!(std::fabs(twice_area) > smallest_area_in_errors * rounding_)) return false;
  }
  return true;
}

PointLocator::Box PointLocator::reach_of(Number cell) const {
  const Box box = box_of(cell);
  const double dx = reach * (box.x_max - box.x_min);
  const double dy = reach * (box.y_max - box.y_min);
  return {box.x_min - dx, box.y_min - dy, box.x_max + dx, box.y_max + dy};
}

void PointLocator::fill_bins() {
  std::vector<Number> placed;
  for (Number i = 0; i < cells_; ++i) (is_reliable(i) ? placed : always_).push_back(i);
  if (placed.empty()) return;
  Box all = reach_of(placed.front());
  for (const Number i : placed) all.include(reach_of(i));

  // A mesh whose cells overlap may touch very many bins: then larger ones must do.
  std::size_t entries = 0;
  for (std::size_t bins = placed.size(); bins > 0; bins /= 4) {
    grid_ = grid_over(all, bins);
    entries = 0;
    bin_begins_.assign(grid_.nx * grid_.ny + 1, 0);
    const std::size_t limit = most_entries_per_cell * placed.size();
    for (const Number i : placed) {
      const Box touched = reach_of(i);
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
  for (const Number i : placed) {
    grid_.for_each_bin(reach_of(i), [&](std::size_t bin) { in_bins_[next[bin]++] = i; });
  }
}

Number PointLocator::cell_at(double x, double y) const {
  const Number none = cells_;
  Number found = none;
  if (!answered_.contains(x, y)) {
    for (found = 0; found < none && !contains(found, {x, y}); ++found) {
    }
  } else {
    if (!in_bins_.empty() && grid_.box.contains(x, y)) {
      const std::size_t bin = grid_.row(y) * grid_.nx + grid_.column(x);
      for (std::size_t k = bin_begins_[bin]; k < bin_begins_[bin + 1] && found == none; ++k) {
        if (contains(in_bins_[k], {x, y})) found = in_bins_[k];
      }
    }
    for (std::size_t k = 0; k < always_.size() && always_[k] < found; ++k) {
      if (contains(always_[k], {x, y})) found = always_[k];
    }
  }
  return found == none ? -1 : found;
}
