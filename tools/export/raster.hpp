// Cells of the mesh as pixels of a regular grid.
#pragma once

#include <vector>

#include "export/Mesh.hpp"

namespace exports {

/// Square pixels, row by row from the north, whose edges lie on multiples of the resolution.
struct Grid {
  double west, north;  ///< of the outer corner, m
  double resolution;   ///< side of a pixel, m
  int columns, rows;
};

/// The grid that covers an extent; refuses one of too many pixels to be meant.
Grid grid_over(const Extent& extent, double resolution);

/// The triangle in which the centre of every pixel lies; -1 outside the mesh. A centre on the edge
/// of two triangles belongs to one of them: neighbours leave no gap.
std::vector<int> rasterize(const Mesh& mesh, const Triangulation& triangles, const Grid& grid);

}  // namespace exports
