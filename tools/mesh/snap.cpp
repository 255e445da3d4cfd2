#include "mesh/snap.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <queue>
#include <tuple>

namespace mesh_import {

namespace {

double length_of(const Mesh& mesh, const Edge& edge) {
  const Node& a = mesh.nodes[static_cast<std::size_t>(edge.node1)];
  const Node& b = mesh.nodes[static_cast<std::size_t>(edge.node2)];
  return std::hypot(b.x - a.x, b.y - a.y);
}

Node middle_of(const Mesh& mesh, const Edge& edge) {
  const Node& a = mesh.nodes[static_cast<std::size_t>(edge.node1)];
  const Node& b = mesh.nodes[static_cast<std::size_t>(edge.node2)];
  return {0.5 * (a.x + b.x), 0.5 * (a.y + b.y), 0.0};
}

/// The nodes near a line and the edges between them, as a graph.
class Corridor {
 public:
  Corridor(const Mesh& mesh, const std::vector<Edge>& edges, const std::vector<bool>& is_taken,
           const Polyline& line, double distance)
      : mesh_(mesh), line_(line), distance_(distance), local_(mesh.nodes.size(), -1) {
    for (std::size_t i = 0; i < mesh.nodes.size(); ++i) {
      const double found = line.nearest(mesh.nodes[i].x, mesh.nodes[i].y).distance;
      if (found > distance) continue;
      local_[i] = static_cast<int>(nodes_.size());
      nodes_.push_back({static_cast<int>(i), found, {}});
    }
    for (std::size_t i = 0; i < edges.size(); ++i) {
      if (!edges[i].is_boundary() && !is_taken[i]) join(edges[i]);
    }
  }

  /// The chain between the nodes nearest to the line's ends.
  Snapped chain() const {
    if (nodes_.empty()) return {};
    const int start = nearest(line_.start()), end = nearest(line_.end());
    const std::vector<int> before = find_paths(start);
    Snapped snapped;
    if (start == end || at(before, end) < 0) return {};
    for (int node = end; node != start; node = at(before, node)) {
      snapped.pieces.push_back({at(nodes_, at(before, node)).node, at(nodes_, node).node});
      snapped.distance = std::max(snapped.distance, at(nodes_, node).distance);
    }
    snapped.distance = std::max(snapped.distance, at(nodes_, start).distance);
    std::reverse(snapped.pieces.begin(), snapped.pieces.end());
    return snapped;
  }

 private:
  struct Way {
    int to;
    double cost;
  };
  struct NearNode {
    int node;
    double distance;
    std::vector<Way> ways;
  };

  template <class T>
  static const T& at(const std::vector<T>& values, int i) {
    return values[static_cast<std::size_t>(i)];
  }

  void join(const Edge& edge) {
    const int a = at(local_, edge.node1), b = at(local_, edge.node2);
    if (a < 0 || b < 0) return;
    const Node middle = middle_of(mesh_, edge);
    const double far = line_.nearest(middle.x, middle.y).distance / distance_;
    const double cost = length_of(mesh_, edge) * (1.0 + 8.0 * far * far);
    nodes_[static_cast<std::size_t>(a)].ways.push_back({b, cost});
    nodes_[static_cast<std::size_t>(b)].ways.push_back({a, cost});
  }

  int nearest(const Node& point) const {
    const auto found =
        std::min_element(nodes_.begin(), nodes_.end(), [&](const NearNode& a, const NearNode& b) {
          const auto distance = [&](const NearNode& near) {
            const Node& node = at(mesh_.nodes, near.node);
            return std::hypot(node.x - point.x, node.y - point.y);
          };
          return distance(a) < distance(b);
        });
    return static_cast<int>(found - nodes_.begin());
  }

  /// The node before each one on the cheapest way from a start; -1 without a way.
  std::vector<int> find_paths(int start) const {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    std::vector<int> before(nodes_.size(), -1);
    std::vector<double> costs(nodes_.size(), infinity);
    using Visit = std::tuple<double, int>;
    std::priority_queue<Visit, std::vector<Visit>, std::greater<>> open;
    costs[static_cast<std::size_t>(start)] = 0.0;
    open.push({0.0, start});
    while (!open.empty()) {
      const auto [cost, node] = open.top();
      open.pop();
      if (cost > at(costs, node)) continue;
      for (const Way& way : at(nodes_, node).ways) {
        const auto to = static_cast<std::size_t>(way.to);
        if (!(cost + way.cost < costs[to])) continue;
        costs[to] = cost + way.cost;
        before[to] = node;
        open.push({costs[to], way.to});
      }
    }
    return before;
  }

  const Mesh& mesh_;
  const Polyline& line_;
  double distance_;
  std::vector<int> local_;  // number of a mesh's node in nodes_, or -1
  std::vector<NearNode> nodes_;
};

}  // namespace

Polyline::Place Polyline::nearest(double x, double y) const {
  Place best{std::hypot(points_.front().x - x, points_.front().y - y), 0.0};
  double before = 0.0;
  for (std::size_t i = 1; i < points_.size(); ++i) {
    const Node &a = points_[i - 1], &b = points_[i];
    const double dx = b.x - a.x, dy = b.y - a.y, length = std::hypot(dx, dy);
    if (!(length > 0.0)) continue;
    const double part = std::clamp(((x - a.x) * dx + (y - a.y) * dy) / (length * length), 0.0, 1.0);
    const double distance = std::hypot(a.x + part * dx - x, a.y + part * dy - y);
    if (distance < best.distance) best = {distance, before + part * length};
    before += length;
  }
  return best;
}

Polygon::Polygon(const std::vector<std::vector<Node>>& rings) {
  constexpr std::size_t most_rows = 128;  // a long side may touch all of them
  low_ = std::numeric_limits<double>::infinity();
  double high = -low_;
  for (const std::vector<Node>& ring : rings) {
    for (std::size_t i = 0; i < ring.size(); ++i) {
      sides_.push_back({ring[i], ring[(i + 1) % ring.size()]});
      low_ = std::min(low_, ring[i].y);
      high = std::max(high, ring[i].y);
    }
  }
  rows_.resize(std::min(most_rows, sides_.size()));
  row_height_ =
      std::max(high - low_, std::numeric_limits<double>::min()) / static_cast<double>(rows_.size());
  for (std::size_t i = 0; i < sides_.size(); ++i) {
    const auto [low, high_end] = std::minmax(sides_[i].a.y, sides_[i].b.y);
    const std::size_t last = row_of(high_end);
    for (std::size_t row = row_of(low); row <= last; ++row) {
      rows_[row].push_back(static_cast<int>(i));
    }
  }
}

std::size_t Polygon::row_of(double y) const {
  const double row = std::floor((y - low_) / row_height_);
  return static_cast<std::size_t>(std::clamp(row, 0.0, static_cast<double>(rows_.size() - 1)));
}

bool Polygon::holds(double x, double y) const {
  bool is_inside = false;
  for (const int i : rows_[row_of(y)]) {
    const Side& side = sides_[static_cast<std::size_t>(i)];
    if ((side.a.y > y) == (side.b.y > y)) continue;
    const double part = (y - side.a.y) / (side.b.y - side.a.y);
    if (x < side.a.x + part * (side.b.x - side.a.x)) is_inside = !is_inside;
  }
  return is_inside;
}

bool Polygon::is_on_side(double x, double y, double distance) const {
  const std::size_t last = row_of(y + distance);
  for (std::size_t row = row_of(y - distance); row <= last; ++row) {
    for (const int i : rows_[row]) {
      const Side& side = sides_[static_cast<std::size_t>(i)];
      const auto [west, east] = std::minmax(side.a.x, side.b.x);
      if (x < west - distance || x > east + distance) continue;
      const std::vector<Node> line = {side.a, side.b};
      if (Polyline(line).nearest(x, y).distance <= distance) return true;
    }
  }
  return false;
}

double mean_length(const Mesh& mesh, const std::vector<Edge>& edges) {
  double sum = 0.0;
  for (const Edge& edge : edges) sum += length_of(mesh, edge);
  return sum / static_cast<double>(edges.size());
}

Snapped boundary_along(const Mesh& mesh, const std::vector<Edge>& edges, const Polyline& line,
                       double distance) {
  Snapped snapped;
  for (const Edge& edge : edges) {
    if (!edge.is_boundary()) continue;
    const Node& a = mesh.nodes[static_cast<std::size_t>(edge.node1)];
    const Node& b = mesh.nodes[static_cast<std::size_t>(edge.node2)];
    const Polyline::Place at_a = line.nearest(a.x, a.y), at_b = line.nearest(b.x, b.y);
    const double furthest = std::max(at_a.distance, at_b.distance);
    if (furthest > distance) continue;
    if (std::fabs(at_b.along - at_a.along) < 0.5 * length_of(mesh, edge)) continue;
    snapped.pieces.push_back({edge.node1, edge.node2});
    snapped.distance = std::max(snapped.distance, furthest);
  }
  return snapped;
}

Snapped boundary_inside(const Mesh& mesh, const std::vector<Edge>& edges, const Polygon& polygon) {
  Snapped snapped;
  for (const Edge& edge : edges) {
    if (!edge.is_boundary()) continue;
    const Node middle = middle_of(mesh, edge);
    if (polygon.holds(middle.x, middle.y)) snapped.pieces.push_back({edge.node1, edge.node2});
  }
  return snapped;
}

Snapped chain_along(const Mesh& mesh, const std::vector<Edge>& edges,
                    const std::vector<bool>& is_taken, const Polyline& line, double distance) {
  return Corridor(mesh, edges, is_taken, line, distance).chain();
}

}  // namespace mesh_import
