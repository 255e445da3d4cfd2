// Rings that straight sides form.
#pragma once

#include <utility>
#include <vector>

#include "mesh/mesh.hpp"

namespace mesh_import {

/// The rings of directed sides, of which as many end in every point as begin there. Where several
/// sides begin in a point, a ring turns to the right as sharply as it can: rings around holes of
/// the region on their left touch in such a point, and do not become one.
std::vector<std::vector<int>> rings_of(const std::vector<Node>& points,
                                       const std::vector<std::pair<int, int>>& sides);

}  // namespace mesh_import
