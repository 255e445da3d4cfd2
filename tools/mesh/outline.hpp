// What a mesh is made of: an outline, the holes in it, and the lines along which its edges run.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "mesh/features.hpp"
#include "mesh/mesh.hpp"

namespace mesh_import {

/// The features as they were drawn, all in one reference system.
struct DrawnOutline {
  std::vector<Feature> outline;  // one polygon
  std::vector<Feature> holes;    // polygons, whose own holes count as part of them
  std::vector<Feature> breaklines;
};

/// The same as points and the sides between them. No two sides cross, and none ends on another.
struct Outline {
  /// A side of a breakline, which edges of the mesh are to follow.
  struct Side {
    int from, to;  // points
    int line;      // index into line_names; negative without a name
  };

  std::vector<Node> points;
  /// The border: rings of points, with the mesh on their left. The first one is the outer one.
  std::vector<std::vector<int>> rings;
  std::vector<Side> sides;
  std::vector<std::string> line_names;
  double area = 0.0;             // within the border, m2
  std::size_t n_courtyards = 0;  // holes in holes, which are left out
};

/// Brings together what was drawn: points within `tolerance` (m) become one. Throws tools::Error,
/// with the features and the place, where the outline or a hole is not closed or crosses itself,
/// where holes overlap or reach out of the outline or cut it in parts, or a breakline leaves it.
Outline join_outline(const DrawnOutline& drawn, double tolerance);

}  // namespace mesh_import
