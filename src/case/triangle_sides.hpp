// Which edge and which neighbour lie at each side of the triangles of a mesh, for a scheme that
// looks at cells from within.
#pragma once

#include <array>
#include <vector>

#include "case/Mesh.hpp"

namespace cases {

/// A side of a triangle: from its node k to the next one, counter-clockwise from its first.
struct TriangleSide {
  Number edge = -1;       ///< -1: no edge of the file lies here, and nothing passes
  Number neighbour = -1;  ///< cell across an interior edge; else -1
  int neighbour_side = -1;
};

using TriangleSides = std::array<TriangleSide, 3>;

/// The side of a triangle at which an edge of its lies.
int side_at_edge(const TriangleSides& sides, Number edge);

/// The nodes of a triangle, counter-clockwise from its first.
std::array<Number, 3> nodes_counter_clockwise(const Mesh& mesh, Number cell);

/// The sides of all cells. Throws std::runtime_error where a cell is no triangle or has no area,
/// where an edge is no side of its cells, and where two edges lie at one side; `scheme` names what
/// asks for triangles.
std::vector<TriangleSides> sides_of_triangles(const Mesh& mesh, const char* scheme);

}  // namespace cases
