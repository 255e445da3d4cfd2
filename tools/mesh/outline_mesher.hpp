// Meshes an outline with Gmsh.
#pragma once

#include <string>

#include "mesh/mesh.hpp"
#include "mesh/mesh_size.hpp"
#include "mesh/outline.hpp"

namespace mesh_import {

/// Triangles within an outline, whose points are nodes and whose sides are chains of edges; sides
/// with a name are pieces of lines. `name` is that of the outline in messages. The same outline
/// gives the same mesh. Throws tools::Error, also where this program was built without Gmsh's
/// library.
Mesh mesh_outline(const std::string& name, const Outline& outline, const MeshSize& size);

}  // namespace mesh_import
