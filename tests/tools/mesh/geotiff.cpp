#include "tools/mesh/geotiff.hpp"

#include <gdal.h>
#include <ogr_srs_api.h>

#include <stdexcept>
#include <vector>

namespace support {

void write_geotiff(const std::string& path, int columns, int rows, double x, double y, double size,
                   const std::function<double(double, double)>& value, int epsg) {
  GDALAllRegister();
  std::vector<float> values;
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) {
      values.push_back(
          static_cast<float>(value(x + (column + 0.5) * size, y + (rows - row - 0.5) * size)));
    }
  }
  const GDALDatasetH dataset = GDALCreate(GDALGetDriverByName("GTiff"), path.c_str(), columns, rows,
                                          1, GDT_Float32, nullptr);
  if (dataset == nullptr) throw std::runtime_error("no GeoTIFF can be made");
  double geometry[] = {x, size, 0.0, y + rows * size, 0.0, -size};
  GDALSetGeoTransform(dataset, geometry);
  if (epsg > 0) {
    const OGRSpatialReferenceH reference = OSRNewSpatialReference(nullptr);
    OSRImportFromEPSG(reference, epsg);
    GDALSetSpatialRef(dataset, reference);
    OSRDestroySpatialReference(reference);
  }
  const GDALRasterBandH band = GDALGetRasterBand(dataset, 1);
  GDALSetRasterNoDataValue(band, -32768.0);
  const CPLErr error = GDALRasterIO(band, GF_Write, 0, 0, columns, rows, values.data(), columns,
                                    rows, GDT_Float32, 0, 0);
  GDALClose(dataset);
  if (error != CE_None) throw std::runtime_error("no GeoTIFF can be written");
}

}  // namespace support
