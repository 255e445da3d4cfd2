// Points, lines and polygons with attributes, as geographic information systems draw them.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "mesh/mesh.hpp"

namespace mesh_import {

struct Feature {
  enum class Shape { points, lines, polygons };

  std::string place;  // for messages: "inlets.geojson, feature 2"
  Shape shape = Shape::points;
  std::vector<std::vector<Node>> parts;  // points alone, lines, or the closed rings of polygons
  std::map<std::string, std::string> attributes;  // by names in small letters; empty ones left out
};

/// The features of all layers of a file that GDAL reads (GeoJSON, GeoPackage, shapefile), in the
/// coordinate reference system `epsg` where their file names its own; otherwise as they are.
/// Throws tools::Error, also where this program was built without GDAL.
std::vector<Feature> read_features(const std::string& path, std::optional<int> epsg);

/// The coordinate reference system of a file of features.
struct FeatureSystem {
  std::optional<int> epsg;     // none where it is unknown, or in degrees
  bool is_in_degrees = false;  // false for a GeoJSON that names none, whose unit nobody knows
};

/// That of the first layer. Throws tools::Error as read_features() does.
FeatureSystem system_of_features(const std::string& path);

/// The attributes of a feature, and which of them mean something.
class Attributes {
 public:
  explicit Attributes(const Feature& feature) : feature_(feature) {}

  std::optional<std::string> text(const std::string& name);
  /// Throws tools::Error where it is no number.
  std::optional<double> number(const std::string& name);
  /// Whether it is true, yes or 1; false where there is none. Throws tools::Error for other words.
  bool flag(const std::string& name);
  /// The names that were not asked for.
  std::vector<std::string> others() const;

  [[noreturn]] void refuse(const std::string& fault) const;

 private:
  const Feature& feature_;
  std::vector<std::string> known_;
};

/// The features of a file, and a word on the attributes that mean nothing.
class FeatureFile {
 public:
  FeatureFile(const std::string& path, std::optional<int> epsg)
      : path_(path), features_(read_features(path, epsg)) {}

  const std::vector<Feature>& features() const { return features_; }
  /// Remembers the attributes that were not asked for.
  void note(const Attributes& attributes);
  /// "zones.gpkg: attributes without a meaning here: area, id."; empty if there are none.
  std::string remark() const;

 private:
  std::string path_;
  std::vector<Feature> features_;
  std::vector<std::string> others_;
};

}  // namespace mesh_import
