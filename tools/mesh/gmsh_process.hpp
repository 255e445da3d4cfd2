// Gmsh in a process of its own: some faulty geometries crash it, and some take all memory.
#pragma once

#include <functional>
#include <string>

#include "mesh/gmsh_module.hpp"
#include "mesh/mesh.hpp"

namespace mesh_import {

/// What Gmsh is to mesh. Both functions run in its process; what they throw is reported.
struct GmshTask {
  std::string name;  // of the geometry, for messages
  /// Called before Gmsh starts, with the folder that is its home. May be empty.
  std::function<void(const std::string& home)> prepare;
  std::function<void(const GmshModule& gmsh)> build;  // makes or reads the geometry
  /// The message where the process ends because of a system call that it must not use.
  std::string on_forbidden_call;
};

/// The mesh of the surfaces of a geometry, all of them where none is named, made on one thread and
/// without the user's settings. Throws tools::Error.
Mesh mesh_with_gmsh(const GmshTask& task);

}  // namespace mesh_import
