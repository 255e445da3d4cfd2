// A small mesh in every file format.
#pragma once

#include <functional>
#include <string>

namespace support {

/// Squares of 1 m in a row of `nx` by `ny`, each cut into two triangles by its rising diagonal. The
/// surface "left" holds the columns west of `middle`, "right" the others; the lines are "west" and
/// "east" on the boundary, and "gate" at x = middle, from south to north.
class SampleMesh {
 public:
  int nx = 4, ny = 3, middle = 2;
  double x0 = 0.0, y0 = 0.0;  ///< south-west corner
  bool clockwise = false;     ///< whether the nodes of cells run clockwise
  std::function<double(double, double)> z = [](double, double) { return 0.0; };

  int n_nodes() const { return (nx + 1) * (ny + 1); }
  int n_cells() const { return 2 * nx * ny; }

  /// Gmsh 2.2.
  std::string msh2(bool is_binary) const;
  /// Gmsh 4.1.
  std::string msh4(bool is_binary) const;
  /// SMS, with squares left whole if `quads`.
  std::string sms(bool quads = false) const;

 private:
  int node(int i, int j) const { return j * (nx + 1) + i; }
};

/// An ESRI ASCII grid of pixels of size `size`, whose values are a function of their centres.
std::string asc_grid(int columns, int rows, double x, double y, double size,
                     const std::function<double(double, double)>& value);

}  // namespace support
