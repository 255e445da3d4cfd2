// Coordinate reference systems, by their EPSG codes.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace exports {

struct Crs {
  int epsg;
  /// How CF describes it, as attributes of a grid mapping: Climate and Forecast Metadata
  /// Conventions 1.8, appendix F. Empty in a program without GDAL, which knows no codes.
  std::vector<std::pair<std::string, std::string>> texts;
  std::vector<std::pair<std::string, double>> numbers;
};

/// Throws tools::Error for a code that GDAL does not know; without GDAL in the build any code
/// holds.
Crs find_crs(int epsg);

}  // namespace exports
