// Terrain and fields on a regular grid.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "mesh/mesh.hpp"

namespace mesh_import {

/// Pixel values, row by row from the top; NaN where there is no data.
struct RasterData {
  int n_columns = 0;
  int n_rows = 0;
  /// x = g[0] + g[1] * column + g[2] * row, y = g[3] + g[4] * column + g[5] * row, of the upper
  /// left corner of a pixel.
  std::array<double, 6> geometry{};
  std::vector<double> values;
  std::optional<int> epsg;  ///< code of the reference system, where the file tells it
};

class Raster {
 public:
  /// Reads an ESRI ASCII grid (.asc), or else what GDAL reads, and warns of one that is in another
  /// coordinate reference system than `epsg`. Throws tools::Error.
  explicit Raster(const std::string& path, std::optional<int> epsg = std::nullopt);

  /// "x 0 to 100 m, y 0 to 50 m", for messages.
  std::string coverage() const;

  const std::string& path() const { return path_; }
  /// Code of the reference system, where the file tells it.
  std::optional<int> epsg() const { return data_.epsg; }

  /// Bilinear interpolation between the centres of the pixels; within half a pixel of the raster's
  /// border the outer pixels hold. Pixels without data are left out as long as the others have half
  /// of the weight; otherwise, and outside, there is no value.
  std::optional<double> interpolate(double x, double y) const;
  /// Mean over a cell: of the pixels whose centres lie in it, or, in a cell with fewer than four,
  /// by a quadrature of seven points for each triangle.
  std::optional<double> mean(const Mesh& mesh, const Cell& cell) const;
  /// The most frequent value among the pixels whose centres lie in a cell (the smallest of equals);
  /// in a cell without any, the pixel at its centre.
  std::optional<double> most_frequent(const Mesh& mesh, const Cell& cell) const;

 private:
  struct Point {
    double u, v;  // columns and rows; whole numbers at the centres of pixels
  };
  Point locate(double x, double y) const;
  double value(int column, int row) const {
    return data_.values[static_cast<std::size_t>(row) * static_cast<std::size_t>(data_.n_columns) +
                        static_cast<std::size_t>(column)];
  }
  std::optional<double> interpolate_at(Point point) const;
  std::vector<double> values_inside(const std::vector<Point>& corners) const;
  std::vector<Point> corners_of(const Mesh& mesh, const Cell& cell) const;

  std::string path_;
  RasterData data_;
  std::array<double, 6> inverse_{};
};

/// Reads an ESRI ASCII grid.
RasterData read_asc(const std::string& path);
/// Reads the first band of what GDAL knows, and warns where it is in another coordinate reference
/// system than `epsg`; throws tools::Error also where this program was built without GDAL.
RasterData read_with_gdal(const std::string& path, std::optional<int> epsg);
/// Refuses a reference system that GDAL does not know, with a tools::Error that names its source
/// (an option or a file); a program without GDAL refuses none.
void require_known_system(int epsg, const std::string& source);

}  // namespace mesh_import
