#include "mesh/outline_mesher.hpp"
#include "support/Error.hpp"

namespace mesh_import {

Mesh mesh_outline(const std::string& name, const Outline&, const MeshSize&) {
  throw tools::Error(name +
                     ": this quillmere-mesh was built without Gmsh's library and meshes no "
                     "outlines. Build it again with the library (Debian: libgmsh-dev).");
}

}  // namespace mesh_import
