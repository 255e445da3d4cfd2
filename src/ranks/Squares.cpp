#include "ranks/Squares.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
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
constexpr int squares_of_rank = 512, cells_of_square = 4, most_squares = 1 << 20;

/// What the number of squares over some cells depends on.
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

/// How many cells of all ranks lie where between the ends of their extent.
class Spread {
 public:
  Spread(Group& group, const cases::Part& part, const Extent& all) : all_(all) {
    counts_.assign(2 * bins, 0);
    for (Number cell = 0; cell < part.owned; ++cell) {
      const physics::SpacePoint center = part.contents.mesh.center_of(cell);
      ++counts_[bin_of(center.x, all.x_min, all.x_max)];
      ++counts_[bins + bin_of(center.y, all.y_min, all.y_max)];
    }
    sum_over_ranks(group, counts_);
  }

  /// The lines between so many parts, of about as many cells each.
  std::vector<double> x_lines(int parts) const {
    return lines(std::span(counts_).first(bins), all_.x_min, all_.x_max, parts);
  }
  std::vector<double> y_lines(int parts) const {
    return lines(std::span(counts_).last(bins), all_.y_min, all_.y_max, parts);
  }

 private:
  static constexpr std::size_t bins = std::size_t{1} << 14;

  static std::size_t bin_of(double x, double x_min, double x_max) {
    const double place = (x - x_min) / (x_max - x_min) * static_cast<double>(bins);
    return place > 0.0 ? std::min(bins - 1, static_cast<std::size_t>(place)) : 0;
  }

  std::vector<double> lines(std::span<const std::int64_t> counts, double x_min, double x_max,
                            int parts) const {
    const double width = (x_max - x_min) / static_cast<double>(bins);
    std::vector<double> lines;
    std::size_t bin = 0;
    double before = 0.0;  // cells before the bin
    for (int part = 1; part < parts; ++part) {
      const double wanted = all_.cells * part / parts;
      while (bin + 1 < bins && before + static_cast<double>(counts[bin]) < wanted) {
        before += static_cast<double>(counts[bin++]);
      }
      const double within = (wanted - before) / std::max(1.0, static_cast<double>(counts[bin]));
      lines.push_back(x_min + width * (static_cast<double>(bin) + within));
    }
    return lines;
  }

  const Extent& all_;
  std::vector<std::int64_t> counts_;  ///< by x, then by y
};

}  // namespace

double Squares::middle(int place, const std::vector<double>& lines) {
  if (lines.empty()) return 0.0;
  const std::size_t next = at(place), last = lines.size() - 1;
  if (last == 0) return lines[0] + (place == 0 ? -0.5 : 0.5);
  if (next == 0) return lines[0] - 0.5 * (lines[1] - lines[0]);
  if (next > last) return lines[last] + 0.5 * (lines[last] - lines[last - 1]);
  return 0.5 * (lines[next - 1] + lines[next]);
}

std::vector<int> Squares::along_curve() const {
  const engine::HilbertCurve curve(0.0, columns(), 0.0, rows());
  std::vector<std::uint64_t> distances;
  distances.reserve(at(count()));
  for (int row = 0; row < rows(); ++row) {
    for (int column = 0; column < columns(); ++column) {
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
  side = std::max({side, std::sqrt(width * height / (most_squares / 4)),
                   std::max(width, height) / (most_squares / 4)});
  if (!(side > 0.0)) return {{}, {}};
  const Spread spread(group, part, all);
  return {spread.x_lines(1 + static_cast<int>(width / side)),
          spread.y_lines(1 + static_cast<int>(height / side))};
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

}  // namespace ranks
