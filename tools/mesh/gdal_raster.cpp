// The rasters that GDAL reads.
#include <limits>
#include <memory>
#include <string>

#include "case/reference.hpp"
#include "mesh/quiet_gdal.hpp"
#include "mesh/raster.hpp"
#include "support/Error.hpp"
#include "utils/stop.hpp"

namespace mesh_import {

namespace {

/// `found` is null for a raster that does not tell its system.
void warn_of_other_system(const std::string& path, OGRSpatialReferenceH found, int epsg) {
  const SpatialReference expected = reference_of(epsg);
  const char* const options[] = {"IGNORE_DATA_AXIS_TO_SRS_AXIS_MAPPING=YES",
                                 "CRITERION=EQUIVALENT_EXCEPT_AXIS_ORDER_GEOGCRS", nullptr};
  if (found == nullptr || OSRIsSameEx(found, expected.get(), options)) return;
  const char* const name = OSRGetName(found);
  utils::warn(
      path + ": the raster is in " + (name != nullptr ? name : "another system") +
      ", the mesh in " + OSRGetName(expected.get()) + " (EPSG:" + std::to_string(epsg) +
      "): its values lie at other places. Expected a raster that is warped to the system of "
      "the mesh.");
}

}  // namespace

std::optional<int> epsg_of(OGRSpatialReferenceH system) {
  if (system == nullptr) return std::nullopt;
  const char* const authority = OSRGetAuthorityName(system, nullptr);
  const char* const code = OSRGetAuthorityCode(system, nullptr);
  if (authority == nullptr || code == nullptr) return std::nullopt;
  return cases::epsg_of(std::string(authority) + ":" + code);
}

SpatialReference reference_of(int epsg, const std::string& source) {
  SpatialReference reference(OSRNewSpatialReference(nullptr));
  if (OSRImportFromEPSG(reference.get(), epsg) == OGRERR_NONE) return reference;
  throw tools::Error(source + ": EPSG:" + std::to_string(epsg) +
                     " is not known; expected the code of a coordinate reference system.");
}

RasterData read_with_gdal(const std::string& path, std::optional<int> epsg) {
  const QuietGdal quiet;
  const auto refuse = [&path](const std::string& what) {
    const std::string reason = CPLGetLastErrorMsg();
    throw tools::Error(path + ": " + what + (reason.empty() ? "." : " (GDAL: " + reason + ")."));
  };
  CPLErrorReset();
  const std::unique_ptr<void, CloseDataset> dataset(
      GDALOpenEx(path.c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY | GDAL_OF_VERBOSE_ERROR, nullptr,
                 nullptr, nullptr));
  if (!dataset) refuse("the file is no raster that can be read");
  RasterData data;
  data.n_columns = GDALGetRasterXSize(dataset.get());
  data.n_rows = GDALGetRasterYSize(dataset.get());
  if (GDALGetGeoTransform(dataset.get(), data.geometry.data()) != CE_None) {
    refuse("the raster has no coordinates; expected a georeferenced one");
  }
  const OGRSpatialReferenceH system = GDALGetSpatialRef(dataset.get());
  data.epsg = epsg_of(system);
  if (epsg) warn_of_other_system(path, system, *epsg);
  const GDALRasterBandH band = GDALGetRasterBand(dataset.get(), 1);
  if (band == nullptr) refuse("the raster has no band of values");
  constexpr std::size_t most_pixels = std::size_t{1} << 28;
  const auto n = static_cast<std::size_t>(data.n_columns) * static_cast<std::size_t>(data.n_rows);
  if (n > most_pixels) refuse("the raster has more than 268435456 pixels; cut out what is needed");
  data.values.resize(n);
  if (GDALRasterIO(band, GF_Read, 0, 0, data.n_columns, data.n_rows, data.values.data(),
                   data.n_columns, data.n_rows, GDT_Float64, 0, 0) != CE_None) {
    refuse("the values of the raster cannot be read");
  }
  int has_no_data = 0;
  const double no_data = GDALGetRasterNoDataValue(band, &has_no_data);
  const double scale = GDALGetRasterScale(band, nullptr);
  const double offset = GDALGetRasterOffset(band, nullptr);
  for (double& value : data.values) {
    const bool is_missing = (has_no_data != 0 && value == no_data) || !(value - value == 0.0);
    value = is_missing ? std::numeric_limits<double>::quiet_NaN() : value * scale + offset;
  }
  return data;
}

void require_known_system(int epsg, const std::string& source) {
  const QuietGdal quiet;
  reference_of(epsg, source);
}

}  // namespace mesh_import
