#include "ranks/Squares.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <numeric>
#include <span>

#include "engine/numbering.hpp"
#include "ranks/values.hpp"

namespace ranks {

using cases::Number;
using engine::at;

namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr int squares_of_rank = 512, cells_of_square = 8, most_squares = 1 << 20;

/// What squares over some cells depend on.
struct Extent {
  double x_min = infinite, x_max = -infinite, y_min = infinite, y_max = -infinite;
  double area = 0.0, cells = 0.0;

  void add(const Extent& more) {
    x_min = std::min(x_min, more.x_min);
    x_max = std::max(x_max, more.x_max);
    y_min = std::min(y_min, more.y_min);
    y_max = std::max(y_max, more.y_max);
    area += more.area;
    cells += more.cells;
  }
};

Extent extent_of(const cases::Part& part) {
  Extent extent;
  for (Number cell = 0; cell < part.owned; ++cell) {
    const cases::CellGeometry geometry = part.contents.mesh.geometry_of(cell);
    const physics::SpacePoint& center = geometry.center;
    extent.add({center.x, center.x, center.y, center.y, geometry.area, 1.0});
  }
  return extent;
}

}  // namespace

std::vector<int> Squares::along_curve() const {
  const engine::HilbertCurve curve(0.0, columns_, 0.0, rows_);
  std::vector<std::uint64_t> distances;
  distances.reserve(at(count()));
  for (int row = 0; row < rows_; ++row) {
    for (int column = 0; column < columns_; ++column) {
      distances.push_back(curve.distance_of(column + 0.5, row + 0.5));
    }
  }
  std::vector<int> order(distances.size());
  std::iota(order.begin(), order.end(), 0);
  std::sort(order.begin(), order.end(),
            [&](int a, int b) { return distances[at(a)] < distances[at(b)]; });
  return order;
}

Squares squares_over(Group& group, const cases::Part& part) {
  Extent all;
  for (const Extent& of_rank : gather_all_plain(group, extent_of(part))) all.add(of_rank);
  const double width = all.x_max - all.x_min, height = all.y_max - all.y_min;
  const double wanted =
      std::min(all.cells / cells_of_square, static_cast<double>(squares_of_rank) * group.size());
  double side = std::sqrt(all.area / std::max(1.0, wanted));
  // Of a mesh that winds through its extent most squares hold nothing.
  side = std::max({side, std::sqrt(width * height / (most_squares / 4)),
                   std::max(width, height) / (most_squares / 4)});
  if (!(side > 0.0)) return {all.x_min, all.y_min, 1.0, 1, 1};
  return {all.x_min, all.y_min, side, 1 + static_cast<int>(width / side),
          1 + static_cast<int>(height / side)};
}

std::vector<int> squares_of(const Squares& squares, const cases::Part& part) {
  const cases::Mesh& mesh = part.contents.mesh;
  std::vector<int> squares_of_cells;
  squares_of_cells.reserve(at(mesh.n_cells()));
  for (Number cell = 0; cell < mesh.n_cells(); ++cell) {
    const physics::SpacePoint center = mesh.center_of(cell);
    squares_of_cells.push_back(squares.at_point(center.x, center.y));
  }
  return squares_of_cells;
}

/// Each rank hears those that stand above it in a tree of pairs, and tells the one below.
void add_up_on_first(Group& group, std::vector<int>& numbers) {
  std::vector<int> more(numbers.size());
  for (int distance = 1; distance < group.size(); distance *= 2) {
    const int rank = group.rank();
    if (rank % (2 * distance) != 0) {
      return group.send(std::as_bytes(std::span(numbers)), rank - distance);
    }
    if (rank + distance >= group.size()) continue;
    group.receive(std::as_writable_bytes(std::span(more)), rank + distance);
    std::transform(numbers.begin(), numbers.end(), more.begin(), numbers.begin(), std::plus<>());
  }
}

}  // namespace ranks
