// How well a mesh will run.
#pragma once

#include <ostream>

#include "mesh/mesh.hpp"

namespace mesh_import {

/// Tells the smallest angle, the smallest cell, which sets the time step, and about how many steps
/// an hour takes there.
void tell_quality(const Mesh& mesh, std::ostream& out);

}  // namespace mesh_import
