// One field as a GeoTIFF.
#pragma once

#include <optional>
#include <string>

#include "export/Mesh.hpp"
#include "export/crs.hpp"
#include "export/quantities.hpp"

namespace exports {

struct GeotiffOptions {
  std::string output;       ///< name of the file
  double resolution = 0.0;  ///< side of a pixel, m
  std::optional<Crs> crs;
};

/// Writes the field: a pixel has the value of the cell in which its centre lies; one outside the
/// mesh or without a value is "no data". Without GDAL in the build it is refused.
void write_geotiff(const Mesh& mesh, const MapField& field, const GeotiffOptions& options);

}  // namespace exports
