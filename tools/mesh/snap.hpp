// Brings drawn lines and polygons to the edges and cells of a mesh.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "mesh/edges.hpp"
#include "mesh/mesh.hpp"

namespace mesh_import {

/// A line of straight pieces.
class Polyline {
 public:
  explicit Polyline(const std::vector<Node>& points) : points_(points) {}

  struct Place {
    double distance;  // of a point from the line, m
    double along;     // of the nearest place on the line from its start, m
  };
  Place nearest(double x, double y) const;
  const Node& start() const { return points_.front(); }
  const Node& end() const { return points_.back(); }

 private:
  const std::vector<Node>& points_;
};

/// The inside of rings: a point is inside that an odd number of them encloses.
class Polygon {
 public:
  explicit Polygon(const std::vector<std::vector<Node>>& rings);
  bool holds(double x, double y) const;
  /// Whether a point lies no further from a side than `distance`, m.
  bool is_on_side(double x, double y, double distance) const;

 private:
  struct Side {
    Node a, b;
  };
  std::size_t row_of(double y) const;

  std::vector<Side> sides_;
  double low_ = 0.0, row_height_ = 1.0;  // of the rows, m
  std::vector<std::vector<int>> rows_;   // the sides that touch a row
};

/// Edges that were found, with their nodes, and how far the furthest node lies from the line, m.
struct Snapped {
  std::vector<std::pair<int, int>> pieces;
  double distance = 0.0;
};

double mean_length(const Mesh& mesh, const std::vector<Edge>& edges);

/// The edges of the boundary that a line goes along for half of their length or more, and whose
/// nodes lie no further from it than `distance`.
Snapped boundary_along(const Mesh& mesh, const std::vector<Edge>& edges, const Polyline& line,
                       double distance);

/// The edges of the boundary whose middles lie in a polygon.
Snapped boundary_inside(const Mesh& mesh, const std::vector<Edge>& edges, const Polygon& polygon);

/// A chain of inner edges from the start of a line to its end, of nodes no further from it than
/// `distance`: the shortest one, where a metre counts up to nine times far from the line. Edges
/// that are taken are left out. Empty if there is none.
Snapped chain_along(const Mesh& mesh, const std::vector<Edge>& edges,
                    const std::vector<bool>& is_taken, const Polyline& line, double distance);

}  // namespace mesh_import
