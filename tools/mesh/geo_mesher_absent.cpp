#include "mesh/geo_mesher.hpp"
#include "support/Error.hpp"

namespace mesh_import {

Mesh mesh_geo(const std::string& path, bool /*allows_commands*/) {
  throw tools::Error(path +
                     ": this quillmere-mesh was built without Gmsh's library and meshes no .geo. "
                     "Mesh it (gmsh -2) and import the .msh, or build again with the library "
                     "(Debian: libgmsh-dev).");
}

}  // namespace mesh_import
