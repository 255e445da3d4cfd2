// Where the coordinates of an imported case begin.
#pragma once

#include <ostream>

#include "mesh/case_writer.hpp"

namespace mesh_import {

/// Takes the origin of `contents`, which is complete, from the coordinates of its nodes and gauges,
/// and warns of cells that lose digits of their areas all the same.
void move_to_origin(Case& contents, std::ostream& out);

}  // namespace mesh_import
