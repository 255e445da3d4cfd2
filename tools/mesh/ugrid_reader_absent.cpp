#include "mesh/ugrid_reader.hpp"
#include "support/Error.hpp"

namespace mesh_import {

Mesh read_ugrid(const std::string& path) {
  throw tools::Error(path +
                     ": this quillmere-mesh was built without the netCDF library and reads no "
                     "NetCDF. Build it again with the library (Debian: libnetcdf-dev).");
}

}  // namespace mesh_import
