#include "export/geotiff_writer.hpp"

#include <cpl_error.h>
#include <gdal_priv.h>
#include <ogr_spatialref.h>

#include <cmath>
#include <memory>
#include <vector>

#include "export/raster.hpp"
#include "support/Error.hpp"
#include "support/PartialFile.hpp"

namespace exports {

namespace {

constexpr float no_data = -9999.0f;

[[noreturn]] void refuse(const std::string& name) {
  throw tools::Error("The file " + name + " couldn't be written: " + CPLGetLastErrorMsg() + ".");
}

struct Closer {
  void operator()(GDALDataset* dataset) const { GDALClose(dataset); }
};

/// The values of one row of pixels.
std::vector<float> row_of(const MapField& field, const Triangulation& triangles,
                          const std::vector<int>& pixels, const Grid& grid, int row) {
  std::vector<float> values(static_cast<std::size_t>(grid.columns), no_data);
  const std::size_t first = static_cast<std::size_t>(row) * values.size();
  for (std::size_t i = 0; i < values.size(); ++i) {
    const int triangle = pixels[first + i];
    if (triangle < 0) continue;
    const int cell = triangles.cell[static_cast<std::size_t>(triangle)];
    const float value = field.values[static_cast<std::size_t>(cell)];
    if (!std::isnan(value)) values[i] = value;
  }
  return values;
}

void set_reference(GDALDataset& dataset, int epsg, const std::string& name) {
  OGRSpatialReference reference;
  if (reference.importFromEPSG(epsg) != OGRERR_NONE ||
      dataset.SetSpatialRef(&reference) != CE_None) {
    refuse(name);
  }
}

}  // namespace

void write_geotiff(const Mesh& mesh, const MapField& field, const GeotiffOptions& options) {
  const Grid grid = grid_over(extent_of(mesh), options.resolution);
  const Triangulation triangles = triangulate(mesh);
  const std::vector<int> pixels = rasterize(mesh, triangles, grid);

  GDALAllRegister();
  CPLSetErrorHandler(CPLQuietErrorHandler);  // its messages stand in ours
  tools::PartialFile file(options.output);
  const char* const settings[] = {"COMPRESS=DEFLATE", "PREDICTOR=3", "TILED=YES",
                                  "BIGTIFF=IF_SAFER", nullptr};
  std::unique_ptr<GDALDataset, Closer> dataset(
      GetGDALDriverManager()->GetDriverByName("GTiff")->Create(file.part().c_str(), grid.columns,
                                                               grid.rows, 1, GDT_Float32,
                                                               const_cast<char**>(settings)));
  if (!dataset) refuse(options.output);
  double place[] = {grid.west, grid.resolution, 0.0, grid.north, 0.0, -grid.resolution};
  GDALRasterBand& band = *dataset->GetRasterBand(1);
  if (dataset->SetGeoTransform(place) != CE_None ||
      band.SetNoDataValue(static_cast<double>(no_data)) != CE_None ||
      band.SetUnitType(field.unit.c_str()) != CE_None) {
    refuse(options.output);
  }
  band.SetDescription(field.long_name.c_str());
  if (options.crs) set_reference(*dataset, options.crs->epsg, options.output);
  for (int row = 0; row < grid.rows; ++row) {
    std::vector<float> values = row_of(field, triangles, pixels, grid, row);
    if (band.RasterIO(GF_Write, 0, row, grid.columns, 1, values.data(), grid.columns, 1,
                      GDT_Float32, 0, 0) != CE_None) {
      refuse(options.output);
    }
  }
  CPLErrorReset();
  dataset.reset();
  if (CPLGetLastErrorType() >= CE_Failure) refuse(options.output);
  file.commit();
}

}  // namespace exports
