// Whether cells and edges fit together.
#pragma once

#include <vector>

#include "case/Mesh.hpp"
#include "mesh/check/cell_values.hpp"
#include "mesh/check/findings.hpp"

namespace tools::check {

/// Reports sides of cells without an edge, edges that stand twice or name a cell they do not bound,
/// and cells that are no triangles. The mesh must be whole, here and below.
void check_sides(const cases::Mesh& mesh, Findings& findings);

/// Reports edges without length, edges whose normal points into their left cell, and boundary codes
/// between two cells.
void check_orientation(const cases::Mesh& mesh, Findings& findings);

/// Reports dry cells that stand left of lower water; returns the number of all interior edges that
/// name the higher cell first.
long check_shores(const cases::Mesh& mesh, const std::vector<CellValues>& cells, double zero_depth,
                  Findings& findings);

/// Reports nodes of the boundary that lie at one place: a crack.
void check_cracks(const cases::Mesh& mesh, Findings& findings);

/// Reports parts of the mesh that water can't pass between, and nodes in no cell; returns the
/// number of cells of each part, the largest first.
std::vector<long> check_regions(const cases::Mesh& mesh, const std::vector<CellValues>& cells,
                                Findings& findings);

}  // namespace tools::check
