// Gmsh, in a module that is loaded when something is to be meshed: with it come 70 libraries,
// which take longer to load than most commands to run.
#pragma once

#include <functional>
#include <string>

#include "mesh/outline.hpp"

namespace mesh_import {

/// What the module offers. What its functions throw may be an exception of Gmsh.
struct GmshModule {
  const char* version;  // of Gmsh

  /// The geometry of a file of Gmsh.
  void (*open)(const std::string& path);
  /// The geometry of an outline, with edges as long (m) as a function of x and y says, in points
  /// that count from an origin: Gmsh rounds as if all of them were near.
  void (*draw)(const Outline& outline, const std::function<double(double, double)>& size_at,
               const Node& origin);
  /// Meshes the surfaces of the geometry that `build` opens or draws into a file; the errors, none
  /// if all is well. `report` gets them where nothing can be returned, and ends the process.
  std::string (*mesh)(const std::function<void()>& build, const std::string& msh,
                      void (*report)(const std::string& errors));
};

/// Loads the module. Throws tools::Error where it, or a library that it needs, is not there.
const GmshModule& load_gmsh();

}  // namespace mesh_import
