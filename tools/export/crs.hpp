// Coordinate reference systems, by their EPSG codes.
#pragma once

#include "ugrid/UgridLayout.hpp"

namespace exports {

using ugrid::Crs;

/// Throws tools::Error for a code that GDAL does not know, which names who gave it; without GDAL in
/// the build any code holds.
Crs find_crs(int epsg, const std::string& who);

}  // namespace exports
