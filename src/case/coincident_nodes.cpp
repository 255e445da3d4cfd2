#include "case/coincident_nodes.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <unordered_map>

#include "case/Mesh.hpp"

namespace cases {

namespace {

constexpr double share_of_edge = 1e-3;

/// Points in squares, of which a point's neighbours are looked up.
class Squares {
 public:
  explicit Squares(double size) : size_(size) {}

  void add(double x, double y, int node) { nodes_[key(column(x), column(y))].push_back(node); }
  template <class Visit>
  void for_each_near(double x, double y, Visit visit) const {
    for (std::int64_t i = column(x) - 1; i <= column(x) + 1; ++i) {
      for (std::int64_t j = column(y) - 1; j <= column(y) + 1; ++j) {
        const auto found = nodes_.find(key(i, j));
        if (found == nodes_.end()) continue;
        for (const int node : found->second) visit(node);
      }
    }
  }

 private:
  std::int64_t column(double x) const {
    constexpr double most = 1e15;
    return static_cast<std::int64_t>(std::floor(std::clamp(x / size_, -most, most)));
  }
  /// Squares may share a key: all their nodes are visited then.
  static std::uint64_t key(std::int64_t i, std::int64_t j) {
    return static_cast<std::uint64_t>(i) * 0x9E3779B97F4A7C15u + static_cast<std::uint64_t>(j);
  }

  double size_;
  std::unordered_map<std::uint64_t, std::vector<int>> nodes_;
};

}  // namespace

std::vector<std::pair<int, int>> coincident_nodes(std::span<const double> x,
                                                  std::span<const double> y,
                                                  std::span<const std::array<int, 2>> boundary,
                                                  double distance) {
  constexpr double none = std::numeric_limits<double>::infinity();
  std::vector<double> reach(x.size(), none);  // of the nodes of the boundary, m
  double farthest = 0.0;
  for (const auto& [a, b] : boundary) {
    const double length = std::hypot(x[at(b)] - x[at(a)], y[at(b)] - y[at(a)]);
    for (const int node : {a, b}) {
      reach[at(node)] =
          std::min(reach[at(node)], distance < 0.0 ? share_of_edge * length : distance);
    }
    farthest = std::max(farthest, std::min(reach[at(a)], reach[at(b)]));
  }
  Squares squares(farthest > 0.0 ? farthest : 1.0);
  std::vector<std::pair<int, int>> pairs;
  for (int node = 0; node < static_cast<int>(x.size()); ++node) {
    const double here = reach[at(node)];
    if (here == none || !std::isfinite(x[at(node)]) || !std::isfinite(y[at(node)])) continue;
    const std::size_t first = pairs.size();
    squares.for_each_near(x[at(node)], y[at(node)], [&](int other) {
      const double apart = std::hypot(x[at(other)] - x[at(node)], y[at(other)] - y[at(node)]);
      if (apart <= std::min(here, reach[at(other)])) pairs.emplace_back(other, node);
    });
    std::sort(pairs.begin() + static_cast<std::ptrdiff_t>(first), pairs.end());
    squares.add(x[at(node)], y[at(node)], node);
  }
  return pairs;
}

}  // namespace cases
