// Which edge and which neighbour lie at each side of the triangles of a mesh, for a scheme that
// looks at cells from within.
#pragma once

#include <array>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "case/Part.hpp"

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

/// What a scheme cannot take, and where it stands in the order in which that is looked for, from 0
/// on.
class SideRefusal : public std::runtime_error {
 public:
  SideRefusal(const std::string& what, std::int64_t place)
      : std::runtime_error(what), place_(place) {}
  std::int64_t place() const { return place_; }

 private:
  std::int64_t place_;
};

/// The sides of all cells. Throws SideRefusal where a cell is no triangle or has no area,
/// where an edge is no side of its cells, and where two edges lie at one side; `scheme` names what
/// asks for triangles.
std::vector<TriangleSides> sides_of_triangles(const Mesh& mesh, const char* scheme);

/// Throws a SideRefusal in words and numbers of the whole mesh, where something is wrong with the
/// own cells of a part. Of those of all parts it is the first that sides_of_triangles() meets.
void require_triangles(const Part& part, const char* scheme);

}  // namespace cases
