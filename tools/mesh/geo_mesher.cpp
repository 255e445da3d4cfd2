#include "mesh/geo_mesher.hpp"

#include <stdlib.h>

#include <algorithm>
#include <regex>

#include "mesh/forbid_processes.hpp"
#include "mesh/gmsh_process.hpp"
#include "mesh/mesh_file.hpp"
#include "support/Error.hpp"
#include "utils/stop.hpp"

namespace mesh_import {

namespace {

/// Keeps the geometry's program from running others; throws where that is impossible.
void forbid_commands(const std::string& home) {
  setenv("HOME", home.c_str(), 1);  // Gmsh leaves sockets and settings there
  unsetenv("GMSHPLUGINSHOME");
  if (!forbid_processes()) {
    throw tools::Error(
        "commands that the geometry may run can't be hindered on this system; "
        "expected --allow-commands, if you trust it");
  }
}

/// ", line 3: SystemCall" for the first call in the text that runs commands; empty if there is
/// none. For messages only: a geometry may read other files, and build names of calls.
std::string place_of_command(const std::string& text) {
  static const std::regex call("\\b(NonBlockingSystemCall|SystemCall|OnelabRun)\\b");
  std::smatch found;
  if (!std::regex_search(text, found, call)) return "";
  const auto line = 1 + std::count(text.begin(), found[0].first, '\n');
  return ", line " + std::to_string(line) + ": " + found.str();
}

}  // namespace

Mesh mesh_geo(const std::string& path, bool allows_commands) {
  const std::string text = read_whole_file(path);
  if (text.back() != '\n') {
    throw tools::Error(path +
                       ": the last line has no end, and Gmsh may leave out what it says; expected "
                       "a line end.");
  }
  const std::string place = path + place_of_command(text);
  if (allows_commands && place != path) utils::warn(place + ": the geometry may run commands.");
  GmshTask task;
  task.name = path;
  if (!allows_commands) task.prepare = forbid_commands;
  task.build = [&path](const GmshModule& gmsh) { gmsh.open(path); };
  task.on_forbidden_call =
      place +
      ": the geometry runs a command, itself or through a file that it reads; expected one that "
      "runs none, or --allow-commands, if you trust it.";
  return mesh_with_gmsh(task);
}

}  // namespace mesh_import
