#include "mesh/raster.hpp"
#include "support/Error.hpp"

namespace mesh_import {

RasterData read_with_gdal(const std::string& path, std::optional<int>) {
  throw tools::Error(path +
                     ": this quillmere-mesh was built without GDAL and reads no raster but ESRI "
                     "ASCII grids (.asc). Convert it, or build again with GDAL (Debian: "
                     "libgdal-dev).");
}

void require_known_system(int, const std::string&) {}

}  // namespace mesh_import
