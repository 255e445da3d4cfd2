// What is drawn in a geographic information system, as parts of a mesh and requests for them.
#pragma once

#include <ostream>
#include <vector>

#include "mesh/case_writer.hpp"
#include "mesh/import_options.hpp"
#include "mesh/spread.hpp"

namespace mesh_import {

// Each tells `out` what became of every feature, and throws tools::Error.

/// Makes polygons surfaces of the mesh, whose values come before those that `options` names.
void add_drawn_zones(ImportOptions& options, Mesh& mesh, std::ostream& out);

/// Makes lines, and polygons around edges, boundary lines of the mesh, with their conditions.
void add_drawn_boundaries(const ImportOptions& options, Case& contents, BoundaryRequests& requests,
                          std::ostream& out);

/// Makes lines sections of inner edges that are not `is_taken`, which takes theirs.
void add_drawn_sections(const ImportOptions& options, const EdgeIndex& index,
                        std::vector<bool>& is_taken, Case& contents, std::ostream& out);

/// Adds points as gauges; those outside of the mesh move into the nearest cell.
void add_drawn_gauges(const ImportOptions& options, Case& contents, std::ostream& out);

}  // namespace mesh_import
