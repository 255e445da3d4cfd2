// What boundaries impose on their edges.
#pragma once

#include "case/Case.hpp"
#include "mesh/boundaries.hpp"

namespace mesh_import {

/// Adds the series of the boundaries, and their conditions in the order of the edges. The values of
/// an edge keep all digits of its share: together they are the total that was given.
void impose(const Boundaries& boundaries, cases::Case& contents);

}  // namespace mesh_import
