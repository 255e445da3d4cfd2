#include "mesh/rings.hpp"

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>

namespace mesh_import {

namespace {

class RingTracer {
 public:
  RingTracer(const std::vector<Node>& points, const std::vector<std::pair<int, int>>& sides)
      : points_(points) {
    for (const auto& [from, to] : sides) next_[from].push_back(to);
  }

  std::vector<std::vector<int>> trace() {
    std::vector<std::vector<int>> rings;
    while (!next_.empty()) rings.push_back(trace_one());
    return rings;
  }

 private:
  std::vector<int> trace_one() {
    const int start = next_.begin()->first;
    std::vector<int> ring = {start};
    int before = start, here = next_.begin()->second.front();
    take(before, here);
    while (here != start) {
      ring.push_back(here);
      const int after = rightmost(before, here);
      take(here, after);
      before = here;
      here = after;
    }
    return ring;
  }

  void take(int from, int to) {
    const auto sides = next_.find(from);
    std::erase(sides->second, to);
    if (sides->second.empty()) next_.erase(sides);
  }

  /// Of the points that follow, the first one counter-clockwise from where the ring comes from.
  int rightmost(int before, int here) const {
    const std::vector<int>& candidates = next_.at(here);
    const auto turn_to = [&](int point) {
      const double angle = direction(here, point) - direction(here, before);
      return angle > 0.0 ? angle : angle + 2.0 * std::numbers::pi;
    };
    return *std::min_element(candidates.begin(), candidates.end(),
                             [&](int a, int b) { return turn_to(a) < turn_to(b); });
  }
  double direction(int from, int to) const {
    const Node &a = points_[static_cast<std::size_t>(from)],
               &b = points_[static_cast<std::size_t>(to)];
    return std::atan2(b.y - a.y, b.x - a.x);
  }

  const std::vector<Node>& points_;
  std::map<int, std::vector<int>> next_;  // points that follow a point
};

}  // namespace

std::vector<std::vector<int>> rings_of(const std::vector<Node>& points,
                                       const std::vector<std::pair<int, int>>& sides) {
  return RingTracer(points, sides).trace();
}

}  // namespace mesh_import
