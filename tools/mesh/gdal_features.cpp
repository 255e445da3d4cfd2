// The features that GDAL reads.
#include <ogr_api.h>

#include <cmath>
#include <filesystem>

#include "mesh/features.hpp"
#include "mesh/quiet_gdal.hpp"
#include "mesh/small_letters.hpp"
#include "support/Error.hpp"

namespace mesh_import {

namespace {

struct DestroyTransformation {
  void operator()(void* transformation) const {
    OCTDestroyCoordinateTransformation(transformation);
  }
};

struct DestroyFeature {
  void operator()(void* feature) const { OGR_F_Destroy(feature); }
};

/// Whether coordinates in degrees may be meant: GeoJSON without a reference system counts as such.
bool looks_like_degrees(OGRLayerH layer) {
  OGREnvelope extent;
  if (OGR_L_GetExtent(layer, &extent, 1) != OGRERR_NONE) return true;
  return std::fabs(extent.MinX) <= 360.0 && std::fabs(extent.MaxX) <= 360.0 &&
         std::fabs(extent.MinY) <= 90.0 && std::fabs(extent.MaxY) <= 90.0;
}

/// Moves points from the reference system of a layer to that of the mesh, where both are known.
class ToMesh {
 public:
  ToMesh(const std::string& path, OGRLayerH layer, std::optional<int> epsg) : path_(path) {
    const OGRSpatialReferenceH found = OGR_L_GetSpatialRef(layer);
    if (!epsg || found == nullptr) return;
    if (OSRIsGeographic(found) && !looks_like_degrees(layer)) return;
    const SpatialReference from(OSRClone(found)), to = reference_of(*epsg);
    OSRSetAxisMappingStrategy(from.get(), OAMS_TRADITIONAL_GIS_ORDER);
    OSRSetAxisMappingStrategy(to.get(), OAMS_TRADITIONAL_GIS_ORDER);
    if (OSRIsSame(from.get(), to.get())) return;
    transformation_.reset(OCTNewCoordinateTransformation(from.get(), to.get()));
    if (!transformation_) refuse();
  }

  Node operator()(double x, double y) const {
    if (transformation_ && !OCTTransform(transformation_.get(), 1, &x, &y, nullptr)) refuse();
    return {x, y, 0.0};
  }

 private:
  [[noreturn]] void refuse() const {
    throw tools::Error(path_ +
                       ": its coordinates cannot be transformed to the reference system of the "
                       "mesh; expected a file in that of --crs.");
  }

  std::string path_;
  std::unique_ptr<void, DestroyTransformation> transformation_;
};

class Parts {
 public:
  Parts(const ToMesh& to_mesh, Feature& feature) : to_mesh_(to_mesh), feature_(feature) {}

  /// Adds the points, lines or rings of a geometry and of its parts.
  void add(OGRGeometryH geometry) {
    const auto kind = wkbFlatten(OGR_G_GetGeometryType(geometry));
    if (kind == wkbPoint || kind == wkbLineString) {
      add_points(geometry, kind == wkbPoint ? Feature::Shape::points : Feature::Shape::lines);
      return;
    }
    const bool is_polygon = kind == wkbPolygon;
    const bool has_parts = is_polygon || kind == wkbMultiPoint || kind == wkbMultiLineString ||
                           kind == wkbMultiPolygon || kind == wkbGeometryCollection;
    if (!has_parts) refuse(OGRGeometryTypeToName(kind));
    for (int i = 0; i < OGR_G_GetGeometryCount(geometry); ++i) {
      const OGRGeometryH part = OGR_G_GetGeometryRef(geometry, i);
      if (is_polygon) {
        add_points(part, Feature::Shape::polygons);
      } else {
        add(part);
      }
    }
  }

 private:
  void add_points(OGRGeometryH geometry, Feature::Shape shape) {
    if (!feature_.parts.empty() && feature_.shape != shape) refuse("shapes of several kinds");
    feature_.shape = shape;
    std::vector<Node> points;
    for (int i = 0; i < OGR_G_GetPointCount(geometry); ++i) {
      points.push_back(to_mesh_(OGR_G_GetX(geometry, i), OGR_G_GetY(geometry, i)));
      if (!std::isfinite(points.back().x) || !std::isfinite(points.back().y)) {
        refuse("a coordinate that is no finite number");
      }
    }
    if (!points.empty()) feature_.parts.push_back(std::move(points));
  }
  [[noreturn]] void refuse(const std::string& found) const {
    throw tools::Error(feature_.place + ": found " + found +
                       ", expected points, lines or polygons, of one kind in a feature.");
  }

  const ToMesh& to_mesh_;
  Feature& feature_;
};

void read_attributes(OGRFeatureH source, Feature& feature) {
  for (int i = 0; i < OGR_F_GetFieldCount(source); ++i) {
    if (!OGR_F_IsFieldSetAndNotNull(source, i)) continue;
    const std::string name = small_letters(OGR_Fld_GetNameRef(OGR_F_GetFieldDefnRef(source, i)));
    const std::string value = OGR_F_GetFieldAsString(source, i);
    if (!value.empty()) feature.attributes[name] = value;
  }
}

std::unique_ptr<void, CloseDataset> open_features(const std::string& path) {
  if (!std::filesystem::exists(path)) throw tools::Error(path + ": the file cannot be opened.");
  std::unique_ptr<void, CloseDataset> dataset(
      GDALOpenEx(path.c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY, nullptr, nullptr, nullptr));
  if (!dataset) {
    throw tools::Error(path + ": no features can be read (" + CPLGetLastErrorMsg() +
                       "); expected GeoJSON, a GeoPackage or a shapefile.");
  }
  return dataset;
}

}  // namespace

FeatureSystem system_of_features(const std::string& path) {
  const QuietGdal quiet;
  const auto dataset = open_features(path);
  if (GDALDatasetGetLayerCount(dataset.get()) == 0) return {};
  const OGRLayerH layer = GDALDatasetGetLayer(dataset.get(), 0);
  const OGRSpatialReferenceH system = OGR_L_GetSpatialRef(layer);
  if (system == nullptr) return {};
  if (!OSRIsGeographic(system)) return {epsg_of(system), false};
  const std::string format = GDALGetDriverShortName(GDALGetDatasetDriver(dataset.get()));
  return {std::nullopt, format != "GeoJSON" && looks_like_degrees(layer)};
}

std::vector<Feature> read_features(const std::string& path, std::optional<int> epsg) {
  const QuietGdal quiet;
  const auto dataset = open_features(path);
  std::vector<Feature> features;
  const int n_layers = GDALDatasetGetLayerCount(dataset.get());
  for (int i = 0; i < n_layers; ++i) {
    const OGRLayerH layer = GDALDatasetGetLayer(dataset.get(), i);
    const ToMesh to_mesh(path, layer, epsg);
    const std::string place =
        path + (n_layers > 1 ? std::string(", layer ") + OGR_L_GetName(layer) : "") + ", feature ";
    OGR_L_ResetReading(layer);
    for (int number = 1;; ++number) {
      const std::unique_ptr<void, DestroyFeature> source(OGR_L_GetNextFeature(layer));
      if (!source) break;
      Feature feature;
      feature.place = place + std::to_string(number);
      const OGRGeometryH geometry = OGR_F_GetGeometryRef(source.get());
      if (geometry != nullptr) Parts(to_mesh, feature).add(geometry);
      if (feature.parts.empty()) throw tools::Error(feature.place + ": it has no shape.");
      read_attributes(source.get(), feature);
      features.push_back(std::move(feature));
    }
  }
  if (features.empty()) throw tools::Error(path + ": found no feature, expected one or more.");
  return features;
}

}  // namespace mesh_import
