// Handles of GDAL that close themselves, and its silence.
#pragma once

#include <cpl_error.h>
#include <gdal.h>
#include <ogr_srs_api.h>

#include <memory>
#include <optional>
#include <string>

namespace mesh_import {

/// GDAL's messages go into our own errors, not to standard error.
class QuietGdal {
 public:
  QuietGdal() {
    GDALAllRegister();
    CPLPushErrorHandler(CPLQuietErrorHandler);
  }
  ~QuietGdal() { CPLPopErrorHandler(); }
  QuietGdal(const QuietGdal&) = delete;
  QuietGdal& operator=(const QuietGdal&) = delete;
};

struct CloseDataset {
  void operator()(void* dataset) const { GDALClose(dataset); }
};

struct DestroyReference {
  void operator()(void* reference) const { OSRDestroySpatialReference(reference); }
};

using SpatialReference = std::unique_ptr<void, DestroyReference>;

/// The reference system of --crs, or of another source; throws tools::Error, which names that, for
/// an unknown code.
SpatialReference reference_of(int epsg, const std::string& source = "--crs");

/// None where it is not one of EPSG, or null.
std::optional<int> epsg_of(OGRSpatialReferenceH system);

}  // namespace mesh_import
