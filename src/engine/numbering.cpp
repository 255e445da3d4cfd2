#include "engine/numbering.hpp"

#include <algorithm>
#include <utility>

namespace engine {

namespace {

constexpr int levels = 16;
constexpr std::uint32_t side = 1U << levels;

/// Distance along the curve of the square (x, y) of a grid of side 2^levels.
std::uint64_t hilbert_distance(std::uint32_t x, std::uint32_t y) {
  std::uint64_t distance = 0;
  for (std::uint32_t s = side / 2; s > 0; s /= 2) {
    const std::uint32_t right = (x & s) != 0 ? 1 : 0;
    const std::uint32_t upper = (y & s) != 0 ? 1 : 0;
    distance += static_cast<std::uint64_t>(s) * s * ((3 * right) ^ upper);
    if (upper == 0) {  // turn the quadrant so that the curve joins
      if (right == 1) {
        x = side - 1 - x;
        y = side - 1 - y;
      }
      std::swap(x, y);
    }
  }
  return distance;
}

using Points = std::vector<int>::iterator;

double extent(Points first, Points last, const double* coordinate) {
  const auto [least, most] =
      std::minmax_element(first, last, [&](int i, int j) { return coordinate[i] < coordinate[j]; });
  return coordinate[*most] - coordinate[*least];
}

}  // namespace

std::vector<int> inverse(const std::vector<int>& order) {
  std::vector<int> number(order.size());
  for (std::size_t k = 0; k < order.size(); ++k) {
    number[static_cast<std::size_t>(order[k])] = static_cast<int>(k);
  }
  return number;
}

std::vector<int> order_by_key(const std::vector<std::uint64_t>& keys) {
  std::vector<std::pair<std::uint64_t, int>> pairs;
  pairs.reserve(keys.size());
  for (const std::uint64_t key : keys) pairs.emplace_back(key, static_cast<int>(pairs.size()));
  std::sort(pairs.begin(), pairs.end());
  std::vector<int> order;
  order.reserve(keys.size());
  for (const auto& [key, index] : pairs) order.push_back(index);
  return order;
}

std::vector<int> order_along_hilbert_curve(const std::vector<double>& x,
                                           const std::vector<double>& y) {
  if (x.empty()) return {};
  const auto [x_min, x_max] = std::minmax_element(x.begin(), x.end());
  const auto [y_min, y_max] = std::minmax_element(y.begin(), y.end());
  const double extent = std::max(*x_max - *x_min, *y_max - *y_min);
  const double scale = extent > 0.0 ? (side - 1) / extent : 0.0;

  std::vector<std::uint64_t> place(x.size());
  for (std::size_t i = 0; i < x.size(); ++i) {
    place[i] = hilbert_distance(static_cast<std::uint32_t>((x[i] - *x_min) * scale),
                                static_cast<std::uint32_t>((y[i] - *y_min) * scale));
  }
  return order_by_key(place);
}

std::vector<int> order_by_swept_runs(const std::vector<double>& x, const std::vector<double>& y,
                                     int run) {
  std::vector<int> order = order_along_hilbert_curve(x, y);
  for (Points first = order.begin(); first != order.end();) {
    const Points last = first + std::min<std::ptrdiff_t>(run, order.end() - first);
    const bool is_wide = extent(first, last, x.data()) > extent(first, last, y.data());
    const double* const longer = is_wide ? x.data() : y.data();
    std::stable_sort(first, last, [&](int i, int j) { return longer[i] < longer[j]; });
    first = last;
  }
  return order;
}

}  // namespace engine
