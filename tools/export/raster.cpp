#include "export/raster.hpp"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "support/Error.hpp"
#include "utils/number_text.hpp"

namespace exports {

namespace {

constexpr double most_pixels = 5e8;

struct Point {
  double x, y;
};

/// First column whose centre is not west of x.
int column_from(const Grid& grid, double x) {
  const double column = std::ceil((x - grid.west) / grid.resolution - 0.5);
  return static_cast<int>(std::clamp(column, 0.0, static_cast<double>(grid.columns)));
}
/// First row whose centre is not north of y.
int row_from(const Grid& grid, double y) {
  const double row = std::ceil((grid.north - y) / grid.resolution - 0.5);
  return static_cast<int>(std::clamp(row, 0.0, static_cast<double>(grid.rows)));
}

/// Where the line through a and b crosses y. The points are put in order first, so that both
/// triangles at an edge find the same crossing to the last bit.
double crossing(Point a, Point b, double y) {
  if (std::pair(b.y, b.x) < std::pair(a.y, a.x)) std::swap(a, b);
  return a.x + (y - a.y) / (b.y - a.y) * (b.x - a.x);
}

void fill(const Grid& grid, const Point (&corner)[3], int triangle, std::vector<int>& pixels) {
  const auto [low, high] = std::minmax({corner[0].y, corner[1].y, corner[2].y});
  const int last_row = std::min(row_from(grid, low) + 1, grid.rows);
  for (int row = row_from(grid, high); row < last_row; ++row) {
    const double y = grid.north - (row + 0.5) * grid.resolution;
    double west = HUGE_VAL, east = -HUGE_VAL;
    for (int k = 0; k < 3; ++k) {
      const Point a = corner[k], b = corner[(k + 1) % 3];
      if ((a.y <= y) == (b.y <= y)) continue;
      const double x = crossing(a, b, y);
      west = std::min(west, x);
      east = std::max(east, x);
    }
    if (!(west < east)) continue;
    const auto line = pixels.begin() + static_cast<std::ptrdiff_t>(row) * grid.columns;
    std::fill(line + column_from(grid, west), line + column_from(grid, east), triangle);
  }
}

}  // namespace

Grid grid_over(const Extent& extent, double resolution) {
  const double west = std::floor(extent.west / resolution) * resolution;
  const double north = std::ceil(extent.north / resolution) * resolution;
  const double columns = std::max(1.0, std::ceil((extent.east - west) / resolution));
  const double rows = std::max(1.0, std::ceil((north - extent.south) / resolution));
  if (!(columns * rows <= most_pixels)) {
    throw tools::Error("A resolution of " + utils::number_text(resolution) + " m gives " +
                       utils::number_text(columns) + " x " + utils::number_text(rows) +
                       " pixels, expected at most " + utils::number_text(most_pixels) +
                       ": choose a coarser one.");
  }
  return {west, north, resolution, static_cast<int>(columns), static_cast<int>(rows)};
}

std::vector<int> rasterize(const Mesh& mesh, const Triangulation& triangles, const Grid& grid) {
  std::vector<int> pixels(
      static_cast<std::size_t>(grid.columns) * static_cast<std::size_t>(grid.rows), -1);
  for (std::size_t t = 0; t < triangles.nodes.size(); ++t) {
    Point corner[3];
    for (std::size_t k = 0; k < 3; ++k) {
      const auto node = static_cast<std::size_t>(triangles.nodes[t][k]);
      corner[k] = {mesh.x[node], mesh.y[node]};
    }
    fill(grid, corner, static_cast<int>(t), pixels);
  }
  return pixels;
}

}  // namespace exports
