#include "engine/numbering.hpp"

#include <algorithm>
#include <utility>

#include "engine/Range.hpp"

namespace engine {

namespace {

constexpr int levels = HilbertCurve::bits_of_distance / 2;
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

/// A point and its place on the curve; equal places keep the order of the points.
struct Placed {
  std::uint64_t distance;
  int point;
  friend bool operator<(const Placed& a, const Placed& b) {
    return a.distance != b.distance ? a.distance < b.distance : a.point < b.point;
  }
};

/// Every thread sorts its share; then neighbours are merged.
void sort(std::vector<Placed>& points, ThreadTeam& team) {
  const auto begin_of = [&](int member) {
    return points.begin() + share_of(member, team.size(), points.size()).begin;
  };
  const auto end_of = [&](int member) {
    return member < team.size() ? begin_of(member) : points.end();
  };
  team.run([&](int member) { std::sort(begin_of(member), end_of(member + 1)); });
  for (int merged = 1; merged < team.size(); merged *= 2) {
    for (int member = 0; member + merged < team.size(); member += 2 * merged) {
      std::inplace_merge(begin_of(member), begin_of(member + merged),
                         end_of(std::min(member + 2 * merged, team.size())));
    }
  }
}

}  // namespace

HilbertCurve::HilbertCurve(double x_min, double x_max, double y_min, double y_max)
    : x_min_(x_min), y_min_(y_min) {
  const double extent = std::max(x_max - x_min, y_max - y_min);
  scale_ = extent > 0.0 ? (side - 1) / extent : 0.0;
}

std::uint64_t HilbertCurve::distance_of(double x, double y) const {
  return hilbert_distance(static_cast<std::uint32_t>((x - x_min_) * scale_),
                          static_cast<std::uint32_t>((y - y_min_) * scale_));
}

std::vector<int> places_of(const std::vector<int>& order) {
  std::vector<int> places(order.size());
  for (std::size_t k = 0; k < order.size(); ++k) {
    places[static_cast<std::size_t>(order[k])] = static_cast<int>(k);
  }
  return places;
}

std::vector<int> order_along_hilbert_curve(const std::vector<double>& x,
                                           const std::vector<double>& y, ThreadTeam& team) {
  if (x.empty()) return {};
  const auto [west, east] = std::minmax_element(x.begin(), x.end());
  const auto [south, north] = std::minmax_element(y.begin(), y.end());
  const HilbertCurve curve(*west, *east, *south, *north);
  std::vector<Placed> points(x.size());
  team.run([&](int member) {
    const Range share = share_of(member, team.size(), x.size());
    for (int k = share.begin; k < share.end; ++k) {
      const auto i = static_cast<std::size_t>(k);
      points[i] = {curve.distance_of(x[i], y[i]), k};
    }
  });
  sort(points, team);
  std::vector<int> order;
  order.reserve(points.size());
  for (const Placed& placed : points) order.push_back(placed.point);
  return order;
}

std::vector<int> order_by_swept_runs(const std::vector<double>& x, const std::vector<double>& y,
                                     std::span<const std::uint8_t> bands, int run,
                                     ThreadTeam& team) {
  std::vector<int> order = order_along_hilbert_curve(x, y, team);
  if (!bands.empty()) {
    std::stable_sort(order.begin(), order.end(), [&](int i, int j) {
      return bands[static_cast<std::size_t>(i)] < bands[static_cast<std::size_t>(j)];
    });
  }
  const std::size_t runs =
      (order.size() + static_cast<std::size_t>(run) - 1) / static_cast<std::size_t>(run);
  team.run([&](int member) {
    const Range share = share_of(member, team.size(), runs);
    for (int r = share.begin; r < share.end; ++r) {
      const Points first = order.begin() + std::ptrdiff_t{r} * run;
      const Points last = first + std::min<std::ptrdiff_t>(run, order.end() - first);
      const bool is_wide = extent(first, last, x.data()) > extent(first, last, y.data());
      const double* const longer = is_wide ? x.data() : y.data();
      std::stable_sort(first, last, [&](int i, int j) { return longer[i] < longer[j]; });
    }
  });
  return order;
}

}  // namespace engine
