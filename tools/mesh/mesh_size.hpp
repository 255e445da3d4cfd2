// How long the edges of a mesh are to be, where.
#pragma once

#include <map>
#include <utility>
#include <vector>

#include "mesh/extent.hpp"
#include "mesh/snap.hpp"

namespace mesh_import {

/// A region whose edges are to be shorter than elsewhere.
struct Refinement {
  std::vector<std::vector<Node>> rings;  // closed
  double size;                           // of edges, m
};

class MeshSize {
 public:
  /// `size` (m) holds wherever no region is near. The regions must outlive this.
  MeshSize(double size, const std::vector<Refinement>& regions);

  /// Edges near a side that is shorter than they would be are as short as it.
  void add_side(const Node& from, const Node& to);

  /// The length of edges at a point, m: that of the region around it, and of short sides, and from
  /// there on outwards more by a fifth of the distance.
  double at(double x, double y) const;
  double smallest() const;
  /// About how many cells a mesh of an area (m2) has: equilateral triangles, where no region lies
  /// outside of it.
  double expected_cells(double area) const;

 private:
  struct Region {
    explicit Region(const Refinement& refinement);
    double distance(double x, double y) const;

    double size;
    std::vector<Polyline> sides;
    Polygon polygon;
    double area = 0.0, perimeter = 0.0;
    Extent extent;
  };

  struct ShortSide {
    Node middle;
    double length;
  };
  using Square = std::pair<long long, long long>;
  Square square_of(double x, double y) const;

  double size_;
  std::vector<Region> regions_;
  std::map<Square, std::vector<ShortSide>> short_sides_;  // squares as large as they reach
};

}  // namespace mesh_import
