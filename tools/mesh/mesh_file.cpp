#include "mesh/mesh_file.hpp"

#include <filesystem>
#include <fstream>
#include <sstream>

#include "mesh/geo_mesher.hpp"
#include "mesh/gmsh_reader.hpp"
#include "mesh/sms_reader.hpp"
#include "support/Error.hpp"

namespace mesh_import {

Mesh read_mesh_file(const std::string& path) {
  const std::string extension = std::filesystem::path(path).extension().string();
  if (extension == ".msh") return read_msh(path);
  if (extension == ".geo") return mesh_geo(path);
  if (extension == ".2dm") return read_2dm(path);
  throw tools::Error(path + ": found the extension \"" + extension +
                     "\", expected .msh, .geo or .2dm.");
}

std::string read_whole_file(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  if (file) text << file.rdbuf();
  if (!file || text.str().empty()) {
    throw tools::Error(path + ": the file cannot be read, or is empty.");
  }
  return text.str();
}

}  // namespace mesh_import
