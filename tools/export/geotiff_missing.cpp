// In place of the writer of GeoTIFF where the library for it is not installed.
#include "export/geotiff_writer.hpp"
#include "support/Error.hpp"

namespace exports {

void write_geotiff(const Mesh&, const MapField&, const GeotiffOptions&) {
  throw tools::Error(
      "This program was built without GeoTIFF. Install GDAL (Debian: libgdal-dev) and build it "
      "again.");
}

}  // namespace exports
