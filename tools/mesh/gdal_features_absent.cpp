#include "mesh/features.hpp"
#include "support/Error.hpp"

namespace mesh_import {

FeatureSystem system_of_features(const std::string&) { return {}; }

std::vector<Feature> read_features(const std::string& path, std::optional<int>) {
  throw tools::Error(path +
                     ": this quillmere-mesh was built without GDAL and reads no drawn features. "
                     "Build it again with GDAL (Debian: libgdal-dev).");
}

}  // namespace mesh_import
