#include "mesh/geo_mesher.hpp"

#include <gmsh.h>
#include <sys/wait.h>
#include <unistd.h>

#include <exception>
#include <filesystem>

#include "mesh/gmsh_reader.hpp"
#include "mesh/mesh_file.hpp"
#include "support/Error.hpp"
#include "support/TemporaryFolder.hpp"

namespace mesh_import {

namespace {

/// What Gmsh calls errors, one a line. It goes on after most of them, with a part of the mesh.
std::string logged_errors() {
  std::vector<std::string> lines;
  gmsh::logger::get(lines);
  std::string errors;
  const std::string mark = "Error: ";
  for (const auto& line : lines) {
    if (line.compare(0, mark.size(), mark) == 0) errors += "\n  " + line.substr(mark.size());
  }
  return errors;
}

/// Meshes with Gmsh; the errors, none if all is well.
std::string run_gmsh(const std::string& geo, const std::string& msh) {
  std::string thrown;
  try {
    gmsh::initialize();
    gmsh::option::setNumber("General.Terminal", 0);
    gmsh::logger::start();
    gmsh::open(geo);
    gmsh::model::mesh::generate(2);
    gmsh::vectorpair surfaces;
    gmsh::model::getPhysicalGroups(surfaces, 2);
    // Without a named surface, all of them are meant.
    if (surfaces.empty()) gmsh::option::setNumber("Mesh.SaveAll", 1);
    gmsh::option::setNumber("Mesh.MshFileVersion", 4.1);
    gmsh::option::setNumber("Mesh.Binary", 1);
    gmsh::write(msh);
  } catch (const std::exception& error) {
    thrown = std::string("\n  ") + error.what();
  } catch (...) {  // some releases throw texts and numbers
    thrown = "\n  no mesh could be made";
  }
  const std::string errors = logged_errors();
  return errors.empty() ? thrown : errors;
}

std::string read_all(int descriptor) {
  std::string text;
  char buffer[4096];
  for (ssize_t n = 0; (n = ::read(descriptor, buffer, sizeof buffer)) > 0;) {
    text.append(buffer, static_cast<std::size_t>(n));
  }
  return text;
}

}  // namespace

// Intended: a process of its own, since some faulty geometries crash Gmsh.
Mesh mesh_geo(const std::string& path) {
  const std::string text = read_whole_file(path);
  if (text.back() != '\n') {
    throw tools::Error(path +
                       ": the last line has no end, and Gmsh may leave out what it says; expected "
                       "a line end.");
  }
  const tools::TemporaryFolder folder;
  const std::string msh = folder.file("mesh.msh");
  int ends[2];
  if (pipe(ends) != 0) throw tools::Error("No process can be started for Gmsh.");
  const pid_t child = fork();
  if (child < 0) throw tools::Error("No process can be started for Gmsh.");
  if (child == 0) {
    close(ends[0]);
    const std::string errors = run_gmsh(path, msh);
    const bool is_said = write(ends[1], errors.data(), errors.size()) >= 0;
    _exit(errors.empty() && is_said ? 0 : 1);
  }
  close(ends[1]);
  const std::string errors = read_all(ends[0]);
  close(ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (WIFSIGNALED(status)) throw tools::Error(path + ": Gmsh crashed on this geometry.");
  if (status != 0 || !std::filesystem::exists(msh))
    throw tools::Error(path + ": Gmsh reports:" + errors);
  Mesh mesh = read_msh(msh);
  mesh.format = "meshed with Gmsh " + std::string(GMSH_API_VERSION);
  return mesh;
}

}  // namespace mesh_import
