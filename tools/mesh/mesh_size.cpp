#include "mesh/mesh_size.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace mesh_import {

namespace {

constexpr double growth = 0.2;  // of the length of edges, m per m

}  // namespace

MeshSize::Region::Region(const Refinement& refinement)
    : size(refinement.size),
      polygon(refinement.rings),
      extent(extent_of(refinement.rings.front())) {
  for (const std::vector<Node>& ring : refinement.rings) {
    sides.emplace_back(ring);
    area += 0.5 * std::fabs(twice_area_of(ring));
    for (std::size_t i = 1; i < ring.size(); ++i) {
      perimeter += std::hypot(ring[i].x - ring[i - 1].x, ring[i].y - ring[i - 1].y);
    }
    extent = united(extent, extent_of(ring));
  }
}

double MeshSize::Region::distance(double x, double y) const {
  if (polygon.holds(x, y)) return 0.0;
  double least = std::numeric_limits<double>::infinity();
  for (const Polyline& side : sides) least = std::min(least, side.nearest(x, y).distance);
  return least;
}

MeshSize::MeshSize(double size, const std::vector<Refinement>& regions) : size_(size) {
  for (const Refinement& region : regions) regions_.emplace_back(region);
}

MeshSize::Square MeshSize::square_of(double x, double y) const {
  const double reach = size_ / growth;
  return {std::llround(std::floor(x / reach)), std::llround(std::floor(y / reach))};
}

void MeshSize::add_side(const Node& from, const Node& to) {
  const Node middle{0.5 * (from.x + to.x), 0.5 * (from.y + to.y), 0.0};
  const double length = std::hypot(to.x - from.x, to.y - from.y);
  if (!(length < at(middle.x, middle.y))) return;
  short_sides_[square_of(middle.x, middle.y)].push_back({middle, length});
}

double MeshSize::at(double x, double y) const {
  double least = size_;
  for (const Region& region : regions_) {
    const double reach = (least - region.size) / growth;
    if (!region.extent.holds({x, y, 0.0}, reach)) continue;
    least = std::min(least, region.size + growth * region.distance(x, y));
  }
  const auto [column, row] = square_of(x, y);
  for (long long i = column - 1; i <= column + 1; ++i) {
    for (long long j = row - 1; j <= row + 1; ++j) {
      const auto square = short_sides_.find({i, j});
      if (square == short_sides_.end()) continue;
      for (const ShortSide& side : square->second) {
        const double distance = std::hypot(x - side.middle.x, y - side.middle.y);
        least = std::min(least, side.length + growth * distance);
      }
    }
  }
  return least;
}

double MeshSize::smallest() const {
  double least = size_;
  for (const Region& region : regions_) least = std::min(least, region.size);
  return least;
}

double MeshSize::expected_cells(double area) const {
  const double shape = std::sqrt(3.0) / 4.0;  // area of an equilateral triangle of sides of 1
  double n = area / (shape * size_ * size_);
  for (const Region& region : regions_) {
    n += std::min(region.area, area) / (shape * region.size * region.size);
    n += region.perimeter / (shape * growth) * (1.0 / region.size - 1.0 / size_);
  }
  return n;
}

}  // namespace mesh_import
