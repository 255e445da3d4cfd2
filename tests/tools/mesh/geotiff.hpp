// GeoTIFF files for tests; only where GDAL is there.
#pragma once

#include <functional>
#include <string>

namespace support {

/// A raster like that of asc_grid, with -32768 for no data, in the coordinate reference system of
/// an EPSG code if one is given.
void write_geotiff(const std::string& path, int columns, int rows, double x, double y, double size,
                   const std::function<double(double, double)>& value, int epsg = 0);

}  // namespace support
