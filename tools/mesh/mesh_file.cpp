#include "mesh/mesh_file.hpp"

#include <filesystem>

#include "mesh/geo_mesher.hpp"
#include "mesh/gmsh_reader.hpp"
#include "mesh/selafin_reader.hpp"
#include "mesh/small_letters.hpp"
#include "mesh/sms_reader.hpp"
#include "mesh/ugrid_reader.hpp"
#include "support/Error.hpp"
#include "support/read_file.hpp"
#include "utils/text_encoding.hpp"

namespace mesh_import {

Mesh read_mesh_file(const std::string& path, bool allows_commands) {
  const std::string found = std::filesystem::path(path).extension().string();
  const std::string extension = small_letters(found);
  if (extension == ".msh") return read_msh(path);
  if (extension == ".geo") return mesh_geo(path, allows_commands);
  if (extension == ".2dm") return read_2dm(path);
  if (extension == ".slf" || extension == ".sel") return read_selafin(path);
  if (extension == ".nc") return read_ugrid(path);
  throw tools::Error(path + ": found the extension \"" + found +
                     "\", expected .msh, .geo, .2dm, .slf, .sel or .nc.");
}

std::string read_whole_file(const std::string& path) {
  std::string text = tools::read_file(path);
  if (text.empty()) throw tools::Error(path + ": the file is empty.");
  if (utils::is_utf16(text)) {
    throw tools::Error("Error in file " + path + ": " + utils::found_utf16 + ".");
  }
  return text;
}

}  // namespace mesh_import
